// Quarn::Win32::XMLPropPersist: a property collection in one XML settings file.
//
// The file's layout is that of docs/formats.md: a root element named after the collection's document
// description, in it one "Key" element for the collection, in a key its "Value" elements and then its
// sub-keys' "Key" elements; XML 1.0, saved in UTF-8 without a declaration. Names and texts in the program are
// bytes in the process code page.
//
// Nothing is thrown or reported beyond the results. Objects may be used on any thread, each by one at a time,
// as the collection. Several processes may load and save one file: everybody sees a whole document.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

namespace Quarn {

class PropertyCollection;

namespace Win32 {

class QUARN_API XMLPropPersist
{
public:
    // For the file at `path`, which need not exist. Starts the XML library, whose users in the process are
    // counted; the destructor is its counterpart. The first start, which takes some 15 ms, lasts until the
    // process ends.
    XMLPropPersist(Quarn::string const& path);
    // The same path, and what is known of the file there.
    XMLPropPersist(XMLPropPersist const& other);
    XMLPropPersist& operator=(XMLPropPersist const& other);
    ~XMLPropPersist();

    // There is a file, or anything else, under the path.
    bool Exists() const;

    // Saves the whole collection; its dirty flags stay as they are. The file is replaced, never changed: the
    // document goes to a temporary file beside it, which is flushed to the device and moved over the old one
    // with its permissions. A symbolic link is followed. Only in a folder where this process may create
    // nothing the file is overwritten, with a copy of its old content in the user's own data folder
    // meanwhile.
    //
    // When the last Populate of this object could not load the file, or not all of it, the old file first
    // gets a second name beside it, made as those of backups: "_" and the time in hexadecimal before the
    // extension.
    //
    // Saves of one file, in this process and in others, take turns. A saver that is held up for 5 s goes on
    // without its turn: the file is still replaced as a whole, and the last one stays.
    //
    // False, and the old file is as it was, when the file cannot be written, or cannot carry the collection:
    // control characters other than tab and line ends, bytes that are no text in the process code page, a
    // document description that is no element name (or has a colon), more than 1,000 levels of keys, a name
    // of more than 16 MiB, a document of more than 256 MiB; also for null. False, with the new file in place,
    // where only its folder could not be flushed to the device.
    bool Persist(PropertyCollection const* collection) const;

    // Adds what the file holds to the collection: keys of one name are merged, values of one name
    // overwritten, and what is added is dirty. The collection gets the root element's name as its document
    // description and its key's name. A key name with a path delimiter makes nested keys, an empty one none.
    //
    // True when the file is well-formed and its root has a key. An element without "Name" in a key, a value
    // without "Type", a comment, a processing instruction or a CDATA section between the elements of a key
    // ends the reading there, with what was read before it. Elements of other names are skipped.
    //
    // False, and the collection is as it was, when the file is missing, is no well-formed XML, has a document
    // type or anything else beside the root element, or exceeds the bounds of Persist (or 10,000 nested
    // elements); also for null. No other file is ever read. When the root has no key the result is false too,
    // and the collection has the document description.
    bool Populate(PropertyCollection* collection) const;

    // Does nothing, deliberately; false.
    bool Remove() const;

private:
    Quarn::string m_path;
    bool m_xmlStarted;
    // The file holds something that the last Populate did not load.
    mutable bool m_spoiled = false;
};

} // namespace Win32

} // namespace Quarn
