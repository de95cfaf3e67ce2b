// Linked into every test program that uses stores or the machine's registry: the program gets a data folder
// and a registry of its own, below the current directory, gone at its end; on Windows the user's part of the
// registry stays that of the Wine prefix. Programs that it starts share them. Outside Windows the program
// finds the locales, too, that were made for it.
#include "quarn/platform/win32_api.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// Where a parent has put its folder for its children.
constexpr char const* MachineVariable = "QUARN_TEST_MACHINE";

#if defined(_WIN32)

std::string KeyName(std::filesystem::path const& root)
{
    return "Software\\QuarnUtilTest\\" + root.filename().string();
}

// A key that stands for HKEY_LOCAL_MACHINE in this process and names the data folder, as that one does.
void Redirect(std::filesystem::path const& root)
{
    std::string const folder = (root / "data").string();
    HKEY machine = nullptr;
    HKEY folders = nullptr;
    ::RegCreateKeyExA(HKEY_CURRENT_USER, KeyName(root).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                      KEY_ALL_ACCESS, nullptr, &machine, nullptr);
    ::RegCreateKeyExA(machine, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                      0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &folders, nullptr);
    ::RegSetValueExA(folders, "Common Documents", 0, REG_SZ, reinterpret_cast<BYTE const*>(folder.c_str()),
                     static_cast<DWORD>(folder.size() + 1));
    ::RegCloseKey(folders);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    ::RegCloseKey(machine);
}

void EndRedirection(std::filesystem::path const& root)
{
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::SHDeleteKeyA(HKEY_CURRENT_USER, KeyName(root).c_str());
}

void SetVariable(char const* name, std::string const& value)
{
    ::_putenv_s(name, value.c_str());
}

#else

void SetVariable(char const* name, std::string const& value)
{
    ::setenv(name, value.c_str(), 1);
}

void Redirect(std::filesystem::path const& root)
{
    SetVariable("QUARNUTIL_MACHINE_DIR", root / "data");
    SetVariable("XDG_DATA_HOME", root / "user");
    SetVariable("XDG_CONFIG_HOME", root / "config"); // where the data folder cannot be found
#if defined(QUARN_TEST_LOCALES)
    SetVariable("LOCPATH", QUARN_TEST_LOCALES);
#endif
}

void EndRedirection(std::filesystem::path const& /*root*/) {}

#endif

class PrivateMachine
{
public:
    PrivateMachine()
    {
        char const* const inherited = std::getenv(MachineVariable);
        m_isOwner = inherited == nullptr;
        m_root = m_isOwner ? std::filesystem::absolute("machine." + std::to_string(::GetCurrentProcessId()))
                           : std::filesystem::path(inherited);
        if (m_isOwner) {
            std::filesystem::remove_all(m_root);
            std::filesystem::create_directories(m_root / "data");
            SetVariable(MachineVariable, m_root.string());
        }
        Redirect(m_root);
    }
    ~PrivateMachine()
    {
        if (m_isOwner) {
            EndRedirection(m_root);
            std::error_code ignored;
            std::filesystem::remove_all(m_root, ignored);
        }
    }

private:
    bool m_isOwner = false;
    std::filesystem::path m_root;
} const g_machine;

} // namespace
