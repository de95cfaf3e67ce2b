// Registry keys as the commands see them: named by one path from the root, every value with its bytes.
#pragma once

#include "quarn/platform/win32_api.h"

#include <functional>
#include <string>

namespace tool {

// HKEY_CURRENT_USER\Software\Acme, or with HKCU, HKLM, HKCR, HKU in front; letters of either case.
struct RegistryPath
{
    // Throws Failure where the text does not begin with a root.
    explicit RegistryPath(std::string const& text);

    HKEY root = nullptr;
    std::string rootName;
    std::string below; // may be empty

    std::string Text() const { return below.empty() ? rootName : rootName + '\\' + below; }
};

// An open key, closed with its owner.
class OpenKey
{
public:
    OpenKey() = default;
    OpenKey(OpenKey const&) = delete;
    OpenKey& operator=(OpenKey const&) = delete;
    ~OpenKey();

    HKEY Get() const { return m_key; }
    HKEY* Out() { return &m_key; }

private:
    HKEY m_key = nullptr;
};

struct RegistryData
{
    DWORD type = REG_NONE;
    std::string bytes;
};

// What is called for each key, with its path below the first one ("" for that), and then for each of its
// values.
struct RegistryVisitor
{
    std::function<void(std::string const& path)> key;
    std::function<void(std::string const& path, std::string const& name, RegistryData const& data)> value;
};

// Visits the key and all below; throws Failure where one cannot be read.
void WalkRegistry(RegistryPath const& path, RegistryVisitor const& visitor);

// "REG_SZ"; a type without a name is its number.
std::string RegistryTypeName(DWORD type);
// The text in front of the first zero byte; the number of a REG_DWORD.
std::string TextOf(RegistryData const& data);
std::uint32_t NumberOf(RegistryData const& data);

// What the system says of a code, or its number.
std::string SystemText(LSTATUS code);

} // namespace tool
