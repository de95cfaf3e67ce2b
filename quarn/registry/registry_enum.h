// Win32Quarn::RegistryKeyEnum and RegistryValueEnum: the names of a key's sub-keys and of its values. Both
// refer to a key, which must live as long and be open when names are read, and belong to that key's thread.
#pragma once

#include "quarn/export.h"
#include "quarn/registry/registry_key.h"
#include "quarn/text/string_list.h"

namespace Win32Quarn {

// Lists the sub-keys of a key.
class QUARN_API RegistryKeyEnum
{
public:
    // Of an open key, which must outlive this object.
    explicit RegistryKeyEnum(RegistryKey& key) : m_key(key) {}

    // Appends the names of the direct sub-keys, in the registry's order. False after an error, which becomes
    // the key's last error; a name of 512 bytes or more is one (ERROR_MORE_DATA, 234). The names before it
    // have been appended then.
    bool Read(Quarn::StringList& names) const;

private:
    RegistryKey& m_key;
};

// Lists the values of a key.
class QUARN_API RegistryValueEnum
{
public:
    // Of an open key, which must outlive this object.
    explicit RegistryValueEnum(RegistryKey& key) : m_key(key) {}

    // The same for the names of the values; the default value's is empty.
    bool Read(Quarn::StringList& names) const;

private:
    RegistryKey& m_key;
};

} // namespace Win32Quarn
