// Linked into every test program that uses the registry: outside Windows, where the registry of the Wine
// prefix serves, the program gets a registry of its own below the current directory, removed at its
// end.
#include "quarn/platform/win32_api.h"

#if !defined(_WIN32)

#include <filesystem>
#include <string>

#include <stdlib.h>

namespace {

class PrivateRegistry
{
public:
    PrivateRegistry()
        : m_folder(std::filesystem::absolute("registry." + std::to_string(::GetCurrentProcessId())))
    {
        std::filesystem::create_directories(m_folder / "machine");
        ::setenv("XDG_DATA_HOME", (m_folder / "user").c_str(), 1);
        ::setenv("QUARNUTIL_MACHINE_DIR", (m_folder / "machine").c_str(), 1);
    }
    ~PrivateRegistry()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }

private:
    std::filesystem::path m_folder;
} const g_registry;

} // namespace

#endif
