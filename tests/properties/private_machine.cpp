// Linked into every test program that uses stores or the machine's registry: the program gets a data folder
// and a machine's registry of its own, below the current directory, gone at its end. Child processes that it
// starts share them.
#include "quarn/platform/win32_api.h"

#include <cstdlib>
#include <filesystem>
#include <string>

namespace {

// Where a parent has put its folder for its children.
constexpr char const* Variable = "QUARN_TEST_MACHINE";

#if defined(_WIN32)

// A key that stands for HKEY_LOCAL_MACHINE in this process and names the data folder, as that one does.
void Redirect(std::string const& folder, std::string const& name)
{
    HKEY machine = nullptr;
    HKEY folders = nullptr;
    ::RegCreateKeyExA(HKEY_CURRENT_USER, ("Software\\QuarnUtilTest\\" + name).c_str(), 0, nullptr,
                      REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &machine, nullptr);
    ::RegCreateKeyExA(machine, "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                      0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &folders, nullptr);
    ::RegSetValueExA(folders, "Common Documents", 0, REG_SZ, reinterpret_cast<BYTE const*>(folder.c_str()),
                     static_cast<DWORD>(folder.size() + 1));
    ::RegCloseKey(folders);
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine);
    ::RegCloseKey(machine);
}

void EndRedirection(std::string const& name)
{
    ::RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
    ::SHDeleteKeyA(HKEY_CURRENT_USER, ("Software\\QuarnUtilTest\\" + name).c_str());
}

void SetVariable(char const* name, std::string const& value)
{
    ::_putenv_s(name, value.c_str());
}

#else

void Redirect(std::string const& folder, std::string const& /*name*/)
{
    ::setenv("QUARNUTIL_MACHINE_DIR", folder.c_str(), 1);
}

void EndRedirection(std::string const& /*name*/) {}

void SetVariable(char const* name, std::string const& value)
{
    ::setenv(name, value.c_str(), 1);
}

#endif

class PrivateMachine
{
public:
    PrivateMachine()
    {
        char const* const inherited = std::getenv(Variable);
        m_isOwner = inherited == nullptr;
        m_folder = m_isOwner ? std::filesystem::absolute("machine." + std::to_string(::GetCurrentProcessId()))
                             : std::filesystem::path(inherited);
        if (m_isOwner) {
            std::filesystem::remove_all(m_folder);
            std::filesystem::create_directories(m_folder);
            SetVariable(Variable, m_folder.string());
        }
        Redirect(m_folder.string(), m_folder.filename().string());
    }
    ~PrivateMachine()
    {
        if (m_isOwner) {
            EndRedirection(m_folder.filename().string());
            std::error_code ignored;
            std::filesystem::remove_all(m_folder, ignored);
        }
    }

private:
    bool m_isOwner = false;
    std::filesystem::path m_folder;
} const g_machine;

} // namespace
