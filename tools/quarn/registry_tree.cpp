#include "registry_tree.h"

#include "quarn/text/string.h"

#include "little_endian.h"
#include "outcome.h"
#include "text.h"

#include <array>
#include <vector>

namespace tool {

namespace {

struct Root
{
    char const* name;
    char const* shortName;
    HKEY key;
};

std::array<Root, 4> Roots()
{
    return {Root{"HKEY_CURRENT_USER", "HKCU", HKEY_CURRENT_USER},
            Root{"HKEY_LOCAL_MACHINE", "HKLM", HKEY_LOCAL_MACHINE},
            Root{"HKEY_CLASSES_ROOT", "HKCR", HKEY_CLASSES_ROOT}, Root{"HKEY_USERS", "HKU", HKEY_USERS}};
}

[[noreturn]] void ThrowReadFailure(std::string const& path, LSTATUS code)
{
    throw Failure(CannotRead, Printable(path) + ": cannot be read: " + SystemText(code));
}

class Walk
{
public:
    Walk(std::string top, RegistryVisitor const& visitor) : m_top(std::move(top)), m_visitor(visitor) {}

    // The registry bounds the depth of its keys.
    // NOLINTNEXTLINE(misc-no-recursion)
    void Visit(HKEY key, std::string const& path)
    {
        m_visitor.key(path);
        VisitValues(key, path);
        for (DWORD i = 0;; ++i) {
            std::vector<char> name(1024);
            auto size = static_cast<DWORD>(name.size());
            LSTATUS code = ::RegEnumKeyExA(key, i, name.data(), &size, nullptr, nullptr, nullptr, nullptr);
            if (code == static_cast<LSTATUS>(ERROR_NO_MORE_ITEMS)) {
                return;
            }
            OpenKey child;
            if (code == ERROR_SUCCESS) {
                code = ::RegOpenKeyExA(key, name.data(), 0, KEY_READ, child.Out());
            }
            if (code != ERROR_SUCCESS) {
                ThrowReadFailure(Full(path) + '\\' + name.data(), code);
            }
            Visit(child.Get(), path.empty() ? name.data() : path + '\\' + name.data());
        }
    }

private:
    std::string Full(std::string const& path) const { return path.empty() ? m_top : m_top + '\\' + path; }

    void VisitValues(HKEY key, std::string const& path)
    {
        for (DWORD i = 0;; ++i) {
            RegistryData data;
            LSTATUS code = ERROR_SUCCESS;
            DWORD nameSize = 0;
            DWORD size = 0;
            // What grows between two calls asks for a third.
            do {
                constexpr std::size_t MaxNameSize = std::size_t{3} * 16'384;
                m_name.resize(MaxNameSize);
                data.bytes.resize(size);
                nameSize = MaxNameSize;
                code = ::RegEnumValueA(key, i, m_name.data(), &nameSize, nullptr, &data.type,
                                       reinterpret_cast<BYTE*>(data.bytes.data()), &size);
            } while (code == static_cast<LSTATUS>(ERROR_MORE_DATA) && size > data.bytes.size());
            if (code == static_cast<LSTATUS>(ERROR_NO_MORE_ITEMS)) {
                return;
            }
            if (code != ERROR_SUCCESS) {
                ThrowReadFailure(Full(path), code);
            }
            data.bytes.resize(size);
            m_visitor.value(path, m_name.substr(0, nameSize), data);
        }
    }

    std::string m_top;
    RegistryVisitor const& m_visitor;
    std::string m_name;
};

} // namespace

RegistryPath::RegistryPath(std::string const& text)
{
    std::size_t const end = text.find('\\');
    Quarn::string const name = Quarn::string(text.substr(0, end)).Upper();
    for (Root const& candidate : Roots()) {
        if (name == candidate.name || name == candidate.shortName) {
            root = candidate.key;
            rootName = candidate.name;
        }
    }
    if (root == nullptr) {
        throw Failure(WrongUsage, Quoted(text) + " does not begin with a root such as HKEY_LOCAL_MACHINE "
                                                 "or HKCU and a backslash");
    }
    below = end == std::string::npos ? "" : text.substr(end + 1);
    while (below.ends_with('\\')) {
        below.pop_back();
    }
}

OpenKey::~OpenKey()
{
    if (m_key != nullptr) {
        ::RegCloseKey(m_key);
    }
}

void WalkRegistry(RegistryPath const& path, RegistryVisitor const& visitor)
{
    OpenKey key;
    LSTATUS const code = ::RegOpenKeyExA(path.root, path.below.c_str(), 0, KEY_READ, key.Out());
    if (code != ERROR_SUCCESS) {
        ThrowReadFailure(path.Text(), code);
    }
    Walk(path.Text(), visitor).Visit(key.Get(), "");
}

std::string RegistryTypeName(DWORD type)
{
    switch (type) {
    case REG_NONE:
        return "REG_NONE";
    case REG_SZ:
        return "REG_SZ";
    case REG_EXPAND_SZ:
        return "REG_EXPAND_SZ";
    case REG_BINARY:
        return "REG_BINARY";
    case REG_DWORD:
        return "REG_DWORD";
    case REG_MULTI_SZ:
        return "REG_MULTI_SZ";
    case REG_QWORD:
        return "REG_QWORD";
    default:
        return std::to_string(type);
    }
}

std::string TextOf(RegistryData const& data)
{
    return data.bytes.substr(0, data.bytes.find('\0'));
}

std::uint32_t NumberOf(RegistryData const& data)
{
    std::string bytes = data.bytes;
    bytes.resize(sizeof(std::uint32_t));
    return FromLittleEndian(bytes.data());
}

std::string SystemText(LSTATUS code)
{
    switch (static_cast<DWORD>(code)) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
        return "there is no such key";
    case ERROR_ACCESS_DENIED:
        return "access is denied";
    case ERROR_INVALID_PARAMETER:
        return "a name is too long, or the keys are too deep";
    case ERROR_BUSY:
        return "another program keeps the registry locked";
    case ERROR_REGISTRY_CORRUPT:
    case ERROR_NOT_REGISTRY_FILE:
        return "the registry's file is damaged";
    default:
        return "error " + std::to_string(code);
    }
}

} // namespace tool
