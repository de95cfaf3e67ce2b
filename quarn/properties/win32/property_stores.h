// Quarn::Win32::QuarnProperties: an application's settings, a property collection bound to one XML settings
// file in the machine's data folder. It loads on request, the first time from a registry key where the
// application has one, saves only what has changed, and saves itself when it is destroyed. HolvekProperties
// is the store of the online stations, of which a process has one.
//
//     Quarn::Win32::QuarnProperties settings("Station.xml", "Station");
//     settings.Populate();
//     long port = settings.GetValueInt32("Link:Port", 4001);
//
// Nothing is thrown or reported beyond the results. One thread at a time uses a store; several processes may
// share its file, and everybody sees a whole document (the last saver's).
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"
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
    // The same, for a store that the registry key at `registryPath` below `registryRoot` seeds.
    QuarnProperties(Quarn::string const& fileName, Quarn::string const& name, HKEY registryRoot,
                    Quarn::string const& registryPath);
    // A deep copy, bound to the same file and the same registry key.
    QuarnProperties(QuarnProperties const& other) = default;
    QuarnProperties& operator=(QuarnProperties const& other) = default;
    // Saves a dirty store, as Persist does, unless SetAutoPersist has switched that off. A failure is silent.
    ~QuarnProperties() override;

    // Empties the store and loads the file into it. True when it could be loaded (see
    // XMLPropPersist::Populate); the store is then as in the file and clean. When the file exists but could
    // not be loaded, or not all of it, the store is clean with what was read, and the next save gives the old
    // file a second name before it replaces it. When there is no file the store is dirty, and holds what
    // RegistryPopulate, whose result this is then, has read.
    bool Populate();
    // Adds what the store's registry key holds, as RegistryPropPersist does, and marks the store dirty, so
    // that the next save makes the file; then calls OnPopulateFromRegistry. True when the key could be read.
    // False, without that call, for a store without a key and where the key cannot be opened for reading.
    bool RegistryPopulate();
    // Saves the whole store (see XMLPropPersist::Persist) when it is dirty or `force` is set, and makes it
    // clean. False where that failed; the store then stays dirty. A store that has never been loaded looks at
    // the file first, so that one that cannot be loaded gets its second name here too.
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

    // Copies the file, as it is on the disk, to a new backup beside it and writes the backup's full path into
    // `backupPath`, a buffer of at least MAX_PATH (260) bytes. The backup is named after the file: "_" and
    // the seconds since 2008-04-16 14:44:30 UTC, modulo 2^32 and in lower-case hexadecimal, stand before the
    // extension (Station_22e5ab5f.xml). It has the file's permissions, and its name only once it is complete.
    // False, with the buffer as it was and no backup made, where there is no file, where it cannot be copied,
    // where the backup's path does not fit, where there is a backup of this second already, and for null.
    bool BackupXML(char* backupPath);
    // Puts the content of a backup, or of any other settings file, back in place and loads it; what the store
    // held, saved or not, is given up. Then deletes the backup; the result is whether that succeeded. The
    // file is replaced in one step and keeps its permissions. Before the backup is loaded the store is once
    // emptied and, where Populate would do so, seeded from the registry.
    //
    // False, and neither the file, the backup nor the store have changed, where `backupPath` is missing,
    // cannot be loaded or is the file itself, and where the file is missing, read-only or otherwise not to be
    // deleted. False with the backup in place, and kept, where it cannot be loaded from there after all.
    bool RestoreXML(Quarn::string const& backupPath);
    // Deletes the file for good and does a Populate, whatever comes of it. False, and the store has not
    // changed, where the file cannot be deleted, as when there is none. The backups stay.
    bool RemoveXML();

    // Whether the destructor saves; true from the start.
    void SetAutoPersist(bool on) { m_autoPersist = on; }
    // The result of the last Populate; false before the first.
    bool PopulatedOK() const { return m_populatedOK; }

protected:
    // Called at the end of every RegistryPopulate that could open its key, for a derived store to add its
    // own; the result does not count. True.
    virtual bool OnPopulateFromRegistry();

    // Deletes the file of this name in the data folder and all its backups: every file there whose name
    // begins as the file's does up to its extension, goes on in any way and has that extension; but none
    // whose name begins with a dot. What cannot be deleted stays. Always false, deliberately.
    static bool RemoveAllXML(Quarn::string const& fileName);

    // Whether Populate asks the registry where there is no file; true from the start.
    void SetRegistryFallback(bool on) { m_registryFallback = on; }

private:
    static Quarn::string MakeFilePath(Quarn::string const& fileName);

    Quarn::string m_fileName;
    HKEY m_registryRoot = nullptr;
    Quarn::string m_registryPath;
    Quarn::string m_xmlFilePath;
    bool m_populatedOK = false;
    bool m_autoPersist = true;
    bool m_registryFallback = true;
    // The file holds something that cannot be loaded, or that the last Populate did not load; known once the
    // file has been examined.
    bool m_spoiled = false;
    bool m_isExamined = false;
};

// The settings of an online station, in "Holvek40.xml". They are seeded from SOFTWARE\Tessary\Holvek of the
// local machine; their key "Common", which several applications share, from SOFTWARE\Tessary\Common.
class QUARN_API HolvekProperties : public QuarnProperties
{
public:
    // The name of the file.
    static Quarn::string const RootFileName;

    // A store of the name "Holvek" with an empty key "Common", dirty. No file is touched.
    HolvekProperties();
    HolvekProperties(HolvekProperties const& other) = default;
    HolvekProperties& operator=(HolvekProperties const& other) = default;
    // As that of every store.
    ~HolvekProperties() override;

    // Deletes the file and all its backups; always false, deliberately.
    static bool RemoveAllXML();

protected:
    // Adds the shared part to the key "Common", which is made where it is missing, and marks the store dirty.
    // True when the registry's key could be read.
    bool OnPopulateFromRegistry() override;
};

// The station's settings, one instance for the process: made and loaded by the first call of this function or
// of CommonProps, saved when it is dirty and destroyed when the process returns from main or calls exit. The
// first call must not race with another one; then the instance is for one thread at a time.
QUARN_API HolvekProperties& HolvekProps();
// The key "Common" of the same instance, made where it is missing. It stays at its address until the store is
// cleared or loaded again.
QUARN_API PropertyKey& CommonProps();

} // namespace Quarn::Win32
