// Quarn::Win32::QuarnProperties: an application's settings, a property collection bound to one XML settings
// file in the machine's data folder. It loads on request, saves only what has changed, and saves itself when
// it is destroyed.
//
//     Quarn::Win32::QuarnProperties settings("Station.xml", "Station");
//     settings.Populate();
//     long port = settings.GetValueInt32("Link:Port", 4001);
//
// Nothing is thrown or reported beyond the results. One thread at a time uses a store; several processes may
// share its file, and everybody sees a whole document (the last saver's).
#pragma once

#include "quarn/export.h"
#include "quarn/properties/property_collection.h"
#include "quarn/text/string.h"

namespace Quarn::Win32 {

class QUARN_API QuarnProperties : public PropertyCollection
{
public:
    // The document description of all stores, "Quarn_Properties".
    static Quarn::string const m_documentType;

    // An empty, clean store for `fileName` in the data folder (see GetXMLFolder); without any data folder
    // `fileName` is relative to the current folder. `name` is the name of the collection. No file is touched.
    QuarnProperties(Quarn::string const& fileName, Quarn::string const& name);
    // A deep copy, bound to the same file.
    QuarnProperties(QuarnProperties const& other) = default;
    QuarnProperties& operator=(QuarnProperties const& other) = default;
    // Saves a dirty store, as Persist does, unless SetAutoPersist has switched that off. A failure is silent.
    ~QuarnProperties() override;

    // Empties the store and loads the file into it. True when it could be loaded (see
    // XMLPropPersist::Populate); the store is then as in the file and clean. When the file exists but could
    // not be loaded, or not all of it, the store is clean with what was read, and the next save gives the old
    // file a second name before it replaces it. When there is no file the store is empty and dirty.
    bool Populate();
    // Saves the whole store (see XMLPropPersist::Persist) when it is dirty or `force` is set, and makes it
    // clean. False where that failed; the store then stays dirty and the old file is as it was.
    bool Persist(bool force);

    // Empties the store, which makes it dirty, and looks the file's folder up again.
    void Clear();

    // The full path of the file.
    Quarn::string const& GetXMLFilePath() const { return m_xmlFilePath; }
    // Writes the data folder into `folder`, a buffer of at least MAX_PATH (260) bytes, without a separator at
    // its end: the first that the system has of the common documents, the common application data, the user's
    // application data, the user's local application data and the user's documents. False, with `folder` as
    // it was, where there is none, and for null.
    static bool GetXMLFolder(char* folder);

    // Whether the destructor saves; true from the start.
    void SetAutoPersist(bool on) { m_autoPersist = on; }
    // The result of the last Populate; false before the first.
    bool PopulatedOK() const { return m_populatedOK; }

private:
    static Quarn::string MakeFilePath(Quarn::string const& fileName);

    Quarn::string m_fileName;
    Quarn::string m_xmlFilePath;
    bool m_populatedOK = false;
    bool m_autoPersist = true;
    // The file holds something that the last Populate did not load.
    bool m_spoiled = false;
};

} // namespace Quarn::Win32
