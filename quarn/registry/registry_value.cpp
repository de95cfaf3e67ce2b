#include "quarn/registry/registry_value.h"

#include "quarn/platform/win32_api.h"
#include "quarn/text/narrowing.h"
#include "quarn/text/packed_record.h"

#include <cstdint>
#include <vector>

#include <string.h>

namespace Win32Quarn {

namespace {

Quarn::string TextOf(unsigned char const* bytes, unsigned long size)
{
    auto const* const text = reinterpret_cast<char const*>(bytes);
    return {text, ::strnlen(text, size)};
}

} // namespace

RegistryValue::RegistryValue(RegistryKey& key, Quarn::string const& name) : m_key(key), m_name(name) {}

void RegistryValue::SetName(Quarn::string const& name)
{
    m_name = name;
    m_type = 0;
}

bool RegistryValue::Record(long code) const
{
    if (code != 0) {
        m_key.m_lastError = code;
    }
    return code == 0;
}

long RegistryValue::Query(unsigned char* buffer, unsigned long& size, unsigned long& type) const
{
    auto bytes = static_cast<DWORD>(size);
    DWORD found = 0;
    long const code = ::RegQueryValueExA(m_key.GetHKey(), m_name.c_str(), nullptr, &found, buffer, &bytes);
    size = bytes;
    type = found;
    return code;
}

bool RegistryValue::Exists() const
{
    unsigned long size = 0;
    unsigned long type = 0;
    return Query(nullptr, size, type) == 0 && size != 0;
}

bool RegistryValue::Read(Quarn::string& text, unsigned long* type)
{
    unsigned char small[255];
    unsigned long size = sizeof small;
    unsigned long found = 0;
    long code = Query(small, size, found);
    if (code == 0) {
        text = TextOf(small, size);
    } else if (code == long{ERROR_MORE_DATA}) {
        std::vector<unsigned char> large(std::size_t{size} + 1);
        size = static_cast<unsigned long>(large.size());
        code = Query(large.data(), size, found);
        if (code == 0) {
            text = TextOf(large.data(), size);
        }
    }
    if (code == 0) {
        m_type = found;
        if (type != nullptr) {
            *type = found;
        }
    }
    return Record(code);
}

bool RegistryValue::Read(unsigned char* buffer, unsigned long size, unsigned long* type)
{
    return Read(buffer, &size, type);
}

bool RegistryValue::Read(unsigned char* buffer, unsigned long* size, unsigned long* type)
{
    unsigned long bytes = size != nullptr ? *size : 0;
    unsigned long found = 0;
    long const code = Query(buffer, bytes, found);
    if (size != nullptr) {
        *size = bytes;
    }
    if (code == 0) {
        m_type = found;
        if (type != nullptr) {
            *type = found;
        }
    }
    return Record(code);
}

bool RegistryValue::Read(unsigned long* number)
{
    std::uint32_t bits = 0;
    unsigned char bytes[sizeof bits] = {};
    if (!Read(bytes, sizeof bytes, nullptr)) {
        return false;
    }
    ::memcpy(&bits, bytes, sizeof bits);
    *number = bits;
    return true;
}

bool RegistryValue::Write(Quarn::string const& text)
{
    DWORD const size = Quarn::detail::NarrowCount(text.size() + 1);
    m_type = REG_SZ;
    return Record(::RegSetValueExA(m_key.GetHKey(), m_name.c_str(), 0, REG_SZ,
                                   reinterpret_cast<BYTE const*>(text.c_str()), size));
}

bool RegistryValue::Write(unsigned long number)
{
    std::uint32_t const bits = Quarn::detail::NarrowLong(number);
    BYTE bytes[sizeof bits];
    ::memcpy(bytes, &bits, sizeof bits);
    m_type = REG_DWORD;
    return Record(::RegSetValueExA(m_key.GetHKey(), m_name.c_str(), 0, REG_DWORD, bytes, sizeof bytes));
}

bool RegistryValue::Write(unsigned char* data, unsigned long size, unsigned long type)
{
    if (type == 0) {
        type = m_type != 0 ? m_type : REG_BINARY;
    }
    m_type = type;
    return Record(::RegSetValueExA(m_key.GetHKey(), m_name.c_str(), 0, static_cast<DWORD>(type), data,
                                   Quarn::detail::NarrowLong(size)));
}

bool RegistryValue::Writef(char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    Quarn::string const record = Quarn::detail::WritePackedRecord(format, args);
    va_end(args);
    return Write(record);
}

bool RegistryValue::Readf(char const* format, ...)
{
    Quarn::string record;
    if (!Read(record, nullptr)) {
        return false;
    }
    std::va_list args;
    va_start(args, format);
    bool const complete =
        Quarn::detail::ReadPackedRecord(record, Quarn::detail::DrivePaths::Escaped, format, args);
    va_end(args);
    return complete;
}

DWORDRegistryValue::DWORDRegistryValue(RegistryKey& key, Quarn::string const& name) : RegistryValue(key, name)
{}

unsigned long DWORDRegistryValue::Read()
{
    unsigned long number = 0;
    return RegistryValue::Read(&number) ? number : 0;
}

bool DWORDRegistryValue::Write(unsigned long number)
{
    return RegistryValue::Write(number);
}

unsigned long DWORDRegistryValue::Increment()
{
    return Add(1);
}

unsigned long DWORDRegistryValue::Decrement()
{
    return Add(UINT32_MAX);
}

unsigned long DWORDRegistryValue::Add(unsigned int difference)
{
    auto const number = static_cast<std::uint32_t>(Exists() ? Read() : 0) + difference;
    Write(number);
    return number;
}

} // namespace Win32Quarn
