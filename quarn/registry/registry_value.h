// Win32Quarn::RegistryValue: one value of a registry key, read and written as text, as a number, as bytes or
// as a record of several items. DWORDRegistryValue: a value that counts.
//
// A value refers to its key, which must live as long, and be open when the value is read or written. Errors
// are the key's: a call that fails leaves its code in RegistryKey::GetLastError. Nothing throws but
// std::bad_alloc. A value belongs to one thread at a time. A copy has the same key, name and type.
//
//   RegistryValue window(key, "Window");
//   window.Writef("iiii", left, top, right, bottom);
//   window.Readf("iiii", &left, &top, &right, &bottom);
#pragma once

#include "quarn/export.h"
#include "quarn/registry/registry_key.h"
#include "quarn/text/string.h"

#include <concepts>

namespace Win32Quarn {

class QUARN_API RegistryValue
{
public:
    // The value of that name, the default value for an empty one; its type is not known yet (0).
    RegistryValue(RegistryKey& key, Quarn::string const& name);

    // Valid until SetName.
    Quarn::string const& GetName() const { return m_name; }
    // The type is unknown again.
    void SetName(Quarn::string const& name);

    // Whether the key is open.
    bool IsOpen() const { return m_key.IsOpen(); }
    // Whether there is such a value with data; one of size 0 deliberately counts as absent. Records no error.
    bool Exists() const;

    // Reading. The registry type (REG_...) is remembered, and stored in `type` where that is not null. False
    // when the value is missing or cannot be read; then nothing else is stored.

    // The bytes up to the first zero byte, whatever their type; environment variables stay as they are.
    bool Read(Quarn::string& text, unsigned long* type);
    // The bytes, at most `size`; ERROR_MORE_DATA (234) when there are more. The pointer form stores the
    // number of bytes in `size`, also when there are more.
    bool Read(unsigned char* buffer, unsigned long size, unsigned long* type);
    bool Read(unsigned char* buffer, unsigned long* size, unsigned long* type);
    template<std::integral T>
    bool Read(unsigned char* buffer, T size, unsigned long* type)
    {
        return Read(buffer, static_cast<unsigned long>(size), type);
    }
    // At most 4 bytes as a number, the missing ones being 0, whatever their type. The number is written
    // whole.
    bool Read(unsigned long* number);

    // Writing.

    // The text with its terminator as REG_SZ (1).
    bool Write(Quarn::string const& text);
    // The low 32 bits as REG_DWORD (4).
    bool Write(unsigned long number);
    // The bytes as the given type; for 0 as the type that this object has read or written last, REG_BINARY
    // (3) when there is none.
    bool Write(unsigned char* data, unsigned long size, unsigned long type);

    // Records: the language of Quarn::PropertyValue::Writef and Readf (properties/property_value.h), except
    // that a text which begins like a path with a drive is read as every other. Writef writes the record as a
    // text. Readf is also false when the value cannot be read.
    bool Writef(char const* format, ...);
    bool Readf(char const* format, ...);

private:
    // Stores a code other than 0 as the key's last error; true for 0.
    bool Record(long code) const;
    long Query(unsigned char* buffer, unsigned long& size, unsigned long& type) const;

    RegistryKey& m_key;
    Quarn::string m_name;
    unsigned long m_type = 0;
};

// A value that is a number of 32 bits, and counts.
class QUARN_API DWORDRegistryValue : public RegistryValue
{
public:
    // As RegistryValue.
    DWORDRegistryValue(RegistryKey& key, Quarn::string const& name);

    // The number; 0 when it cannot be read.
    unsigned long Read();
    // As RegistryValue::Write.
    bool Write(unsigned long number);

    // Both add or subtract 1 modulo 2^32, beginning at 0 where there is no value, write the new number and
    // return it, also when it could not be written. Another process that counts at the same moment may get
    // lost: nothing is held between reading and writing.
    unsigned long Increment();
    unsigned long Decrement();

private:
    unsigned long Add(unsigned int difference);
};

} // namespace Win32Quarn
