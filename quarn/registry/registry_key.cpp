#include "quarn/registry/registry_key.h"

#include "quarn/platform/version_info.h"
#include "quarn/platform/win32_api.h"

#include <utility>

namespace Win32Quarn {

namespace {

Quarn::string UserPath(Quarn::string const& company, Quarn::string const& product, CVersionInfo const& info)
{
    Quarn::string path = "Software\\";
    path.append(company.empty() ? info.GetCompanyName() : company).append('\\');
    path.append(product.empty() ? info.GetProductName() : product);
    return path;
}

} // namespace

RegistryKey::RegistryKey(RegistryKey const& other)
    : m_key(other.m_key),
      m_base(other.m_base),
      m_path(other.m_path)
{}

RegistryKey::RegistryKey(RegistryKey const& parent, Quarn::string const& path)
    : m_base(parent.m_key),
      m_path(path)
{}

RegistryKey::RegistryKey(HKEY base, Quarn::string const& path) : m_base(base), m_path(path) {}

RegistryKey& RegistryKey::operator=(RegistryKey const& other) = default;

RegistryKey::~RegistryKey()
{
    Close();
}

bool RegistryKey::Open(Quarn::string const& subpath)
{
    return Open(KEY_ALL_ACCESS, subpath);
}

bool RegistryKey::OpenRead(Quarn::string const& subpath)
{
    return Open(KEY_READ, subpath);
}

bool RegistryKey::Open(unsigned long access, Quarn::string const& subpath)
{
    Close();
    Quarn::string const path = GetPath(subpath);
    auto const rights = static_cast<REGSAM>(access);
    HKEY key = nullptr;
    m_lastError = ::RegOpenKeyExA(m_base, path.c_str(), 0, rights, &key);
    if (m_lastError != 0) {
        m_lastError = ::RegCreateKeyExA(m_base, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, rights,
                                        nullptr, &key, nullptr);
    }
    if (m_lastError == 0) {
        m_key = key;
    }
    return m_lastError == 0;
}

bool RegistryKey::Close()
{
    if (m_key == nullptr) {
        return true;
    }
    m_lastError = ::RegCloseKey(std::exchange(m_key, nullptr));
    return m_lastError == 0;
}

bool RegistryKey::ExistsRead(Quarn::string const& subpath) const
{
    return Exists(KEY_READ, subpath);
}

bool RegistryKey::ExistsWrite(Quarn::string const& subpath) const
{
    return Exists(KEY_WRITE, subpath);
}

bool RegistryKey::Exists(unsigned long access, Quarn::string const& subpath) const
{
    HKEY key = nullptr;
    if (::RegOpenKeyExA(m_base, GetPath(subpath).c_str(), 0, static_cast<REGSAM>(access), &key) != 0) {
        return false;
    }
    ::RegCloseKey(key);
    return true;
}

Quarn::string RegistryKey::GetPath(Quarn::string const& subpath) const
{
    Quarn::string path = m_path;
    if (!subpath.empty()) {
        if (!path.empty()) {
            path.append('\\');
        }
        path.append(subpath);
    }
    return path;
}

void RegistryKey::AppendPath(Quarn::string const& sub)
{
    m_path = GetPath(sub);
}

Quarn::string const& RegistryKey::SetPath(Quarn::string const& path)
{
    long const before = m_lastError;
    Close();
    m_lastError = before;
    m_path = path;
    return m_path;
}

bool RegistryKey::Read(Quarn::string const& name, unsigned char* buffer, unsigned long* size,
                       unsigned long* type)
{
    DWORD bytes = size != nullptr ? static_cast<DWORD>(*size) : 0;
    DWORD found = 0;
    m_lastError =
        ::RegQueryValueExA(m_key, name.c_str(), nullptr, &found, buffer, size != nullptr ? &bytes : nullptr);
    if (size != nullptr) {
        *size = bytes;
    }
    if (type != nullptr && (m_lastError == 0 || m_lastError == long{ERROR_MORE_DATA})) {
        *type = found;
    }
    return m_lastError == 0;
}

bool RegistryKey::Read(Quarn::string const& name, unsigned char* buffer, unsigned long size,
                       unsigned long* type)
{
    return Read(name, buffer, &size, type);
}

LocalMachineKey::LocalMachineKey(Quarn::string const& path) : RegistryKey(HKEY_LOCAL_MACHINE, path) {}

LocalMachineKey::~LocalMachineKey() = default;

CurrentUserKey::CurrentUserKey(Quarn::string const& path) : RegistryKey(HKEY_CURRENT_USER, path) {}

CurrentUserKey::~CurrentUserKey() = default;

UserKey::UserKey(Quarn::string const& company, Quarn::string const& product)
{
    SetPath(UserPath(company, product, CVersionInfo()));
}

UserKey::~UserKey() = default;

UserVersionKey::UserVersionKey(Quarn::string const& company, Quarn::string const& product,
                               Quarn::string const& version)
{
    CVersionInfo const info;
    Quarn::string path = UserPath(company, product, info);
    path.append('\\').append(version.empty() ? info.GetProductVersion() : version);
    SetPath(path);
}

UserVersionKey::~UserVersionKey() = default;

} // namespace Win32Quarn
