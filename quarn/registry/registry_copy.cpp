// Copying and moving registry keys.
#include "quarn/platform/win32_api.h"
#include "quarn/registry/registry_key.h"
#include "quarn/text/name_compare.h"

#include <string_view>
#include <vector>

namespace Win32Quarn {

namespace {

constexpr DWORD NameSize = 512;
constexpr DWORD DataSize = 7680;

// Takes the first name off a path, with the backslashes behind it.
std::string_view TakeName(std::string_view& path)
{
    std::string_view const name = path.substr(0, path.find('\\'));
    path.remove_prefix(name.size());
    std::size_t const next = path.find_first_not_of('\\');
    path.remove_prefix(next != path.npos ? next : path.size());
    return name;
}

} // namespace

bool RegistryKey::ContainsPath(Quarn::string const& path) const
{
    std::string_view outer = m_path;
    std::string_view inner = path;
    while (!outer.empty()) {
        if (!Quarn::detail::EqualNames(TakeName(outer), TakeName(inner))) {
            return false;
        }
    }
    return true;
}

bool RegistryKey::Contains(RegistryKey const& destination) const
{
    return destination.m_key == m_key || destination.m_base == m_key ||
           (destination.m_base == m_base && ContainsPath(destination.m_path));
}

bool RegistryKey::Rename(Quarn::string const& newPath)
{
    if (ContainsPath(newPath)) {
        m_lastError = ERROR_INVALID_PARAMETER;
        return false;
    }
    RegistryKey destination(m_base, newPath);
    return destination.Open(Quarn::string()) && Copy(destination, true);
}

// NOLINTNEXTLINE(misc-no-recursion): the registry's own depth is bounded
bool RegistryKey::Copy(RegistryKey& destination, bool move)
{
    if ((!IsOpen() && !Open(Quarn::string())) ||
        (!destination.IsOpen() && !destination.Open(Quarn::string()))) {
        return false;
    }
    if (move && Contains(destination)) {
        m_lastError = ERROR_INVALID_PARAMETER;
        return false;
    }
    if (!CopyValues(destination, move)) {
        return false;
    }
    std::vector<char> name(NameSize);
    for (DWORD index = 0;; index += move ? 0 : 1) {
        DWORD size = NameSize;
        LONG const code =
            ::RegEnumKeyExA(m_key, index, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
        if (code != 0) {
            // The end of the list is success for a move alone.
            return move && code == static_cast<LONG>(ERROR_NO_MORE_ITEMS) &&
                   ::RegDeleteKeyA(m_base, m_path.c_str()) == 0;
        }
        if (!RegistryKey(*this, name.data()).Copy(destination, move)) {
            return false;
        }
    }
}

// False when a value could not be deleted after it was copied.
bool RegistryKey::CopyValues(RegistryKey const& destination, bool move)
{
    std::vector<char> name(NameSize);
    std::vector<BYTE> data(DataSize);
    for (DWORD index = 0;; index += move ? 0 : 1) {
        DWORD nameSize = NameSize;
        DWORD dataSize = DataSize;
        DWORD type = 0;
        if (::RegEnumValueA(m_key, index, name.data(), &nameSize, nullptr, &type, data.data(), &dataSize) !=
                0 ||
            ::RegSetValueExA(destination.m_key, name.data(), 0, type, data.data(), dataSize) != 0) {
            return true;
        }
        if (move && ::RegDeleteValueA(m_key, name.data()) != 0) {
            return false;
        }
    }
}

} // namespace Win32Quarn
