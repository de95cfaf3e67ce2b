#include "quarn/platform/version_info.h"

#include "quarn/platform/fault_guard.h"
#include "quarn/platform/win32_api.h"

#include <cstring>
#include <new>

namespace Win32Quarn {

namespace {

// More than any real block, whose length is a 16-bit number.
constexpr DWORD MaxSize = 1 << 20;

} // namespace

CVersionInfo::CVersionInfo()
{
    char path[MAX_PATH];
    DWORD const length = ::GetModuleFileNameA(nullptr, path, MAX_PATH);
    // A path that was cut off names another file.
    if (length > 0 && length < MAX_PATH) {
        Init(path);
    }
}

CVersionInfo::CVersionInfo(char const* fileName)
{
    Init(fileName);
}

void CVersionInfo::Init(char const* fileName)
{
    DWORD handle = 0;
    DWORD const size = ::GetFileVersionInfoSizeA(fileName, &handle);
    if (size < sizeof(WORD) || handle != 0 || size > MaxSize) {
        return;
    }
    // The system needs room behind the block for the texts that it converts; the rest keeps its reading of a
    // damaged block inside.
    std::shared_ptr<unsigned char[]> data(new (std::nothrow) unsigned char[std::size_t{size} * 4]());
    if (data == nullptr || !::GetFileVersionInfoA(fileName, 0, size * 2, data.get())) {
        return;
    }
    // It writes texts as far behind the block as the block's first word says.
    WORD length = 0;
    std::memcpy(&length, data.get(), sizeof length);
    if (length > size) {
        return;
    }
    m_data = std::move(data);

    void* table = nullptr;
    UINT tableSize = 0;
    WORD first[2];
    bool found = false;
    Quarn::detail::CallGuarded([&] {
        found = ::VerQueryValueA(m_data.get(), "\\VarFileInfo\\Translation", &table, &tableSize) != FALSE &&
                tableSize >= sizeof first;
        if (found) {
            std::memcpy(first, table, sizeof first);
        }
    });
    if (found) {
        m_translation.Format("%04x%04x", first[0], first[1]);
    }
}

Quarn::string CVersionInfo::GetValue(Quarn::string const& key) const
{
    if (m_data == nullptr) {
        return "???";
    }
    Quarn::string const path = "\\StringFileInfo\\" + m_translation + "\\" + key;
    void* value = nullptr;
    UINT size = 0;
    std::size_t length = 0;
    bool found = false;
    bool const sound = Quarn::detail::CallGuarded([&] {
        found = ::VerQueryValueA(m_data.get(), path.c_str(), &value, &size) != FALSE;
        if (found) {
            length = std::strlen(static_cast<char const*>(value));
        }
    });
    if (!sound) {
        return "???";
    }
    return found ? Quarn::string(static_cast<char const*>(value), length) : path;
}

Quarn::string CVersionInfo::GetComments() const
{
    return GetValue("Comments");
}

Quarn::string CVersionInfo::GetCompanyName() const
{
    return GetValue("CompanyName");
}

Quarn::string CVersionInfo::GetCopyright() const
{
    return GetValue("LegalCopyright");
}

Quarn::string CVersionInfo::GetFileDescription() const
{
    return GetValue("FileDescription");
}

Quarn::string CVersionInfo::GetFileVersion() const
{
    return GetValue("FileVersion");
}

Quarn::string CVersionInfo::GetInternalName() const
{
    return GetValue("InternalName");
}

Quarn::string CVersionInfo::GetLegalTrademarks() const
{
    return GetValue("LegalTrademarks");
}

Quarn::string CVersionInfo::GetPrivateBuild() const
{
    return GetValue("PrivateBuild");
}

Quarn::string CVersionInfo::GetProductName() const
{
    return GetValue("ProductName");
}

Quarn::string CVersionInfo::GetProductVersion() const
{
    return GetValue("ProductVersion");
}

Quarn::string CVersionInfo::GetSpecialBuild() const
{
    return GetValue("SpecialBuild");
}

} // namespace Win32Quarn
