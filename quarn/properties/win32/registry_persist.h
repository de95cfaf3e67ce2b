// Quarn::Win32::RegistryPropPersist: reads a registry key with all below into a settings tree. The registry
// is a source alone: nothing is written back. An object belongs to one thread at a time.
//
// A text (REG_SZ), a block of bytes (REG_BINARY) and a number (REG_DWORD) become values of the same name and
// bytes, the default value becomes "DefaultValue"; values of other types are left out. Sub-keys become keys;
// one whose name holds a slash, a semicolon or a comma becomes a chain of keys, as in every key path.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/win32_types.h"

namespace Quarn {

class PropertyData;
class PropertyKey;

namespace Win32 {

class QUARN_API RegistryPropPersist
{
public:
    // Reads from this key, which is the caller's, to be open as long as the object is used.
    explicit RegistryPropPersist(HKEY key) : m_key(key) {}

    // Whether the key can be opened for reading.
    bool Exists() const;
    // Adds what the key holds to `target`; values that are there are replaced, nothing is removed, and the
    // tree counts as changed. False when the key or a direct sub-key cannot be opened for reading, or the
    // list of the direct sub-keys breaks off; what was read until then stays. A failure deeper in the tree is
    // deliberately not reported. A value with a name of 512 bytes or more, or with more than 8,192 bytes of
    // data, or one that the system fails to read, ends the reading of its key's values without a word.
    bool Populate(PropertyKey* target) const;

private:
    static void PopulateValues(PropertyKey* target, HKEY key);
    static bool PopulatePropKey(PropertyKey* target, HKEY key);
    static bool CreatePropertyData(unsigned long type, unsigned char* bytes, unsigned long size,
                                   PropertyData* out);

    HKEY m_key;
};

} // namespace Win32

} // namespace Quarn
