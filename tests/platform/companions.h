// Companion modules for a test: files below a folder of its own, under a name of its own.
#pragma once

#include "quarn/platform/win32_library.h"

#include "tests/platform/scratch_folder.h"

#if defined(_WIN32)
constexpr char const* ModuleExtension = ".dll";
constexpr char Separator = '\\';
#else
constexpr char const* ModuleExtension = ".so";
constexpr char Separator = '/';
#endif

class Companions : public testing::Test
{
protected:
    // Without extension: nobody else's module has the name, wherever it lies.
    std::string const m_name = "companion-" + std::to_string(::GetCurrentProcessId()) + "-" +
                               testing::UnitTest::GetInstance()->current_test_info()->name();
    std::string const m_file = m_name + ModuleExtension;
    ScratchFolder const m_folder;
    std::string const m_here = std::filesystem::absolute(m_folder.Path()).string();

    // The module as it was built.
    static std::string Built(std::string const& number)
    {
        return std::string(QUARN_COMPANIONS) + "/companion_" + number + ModuleExtension;
    }

    // A copy of that module; the test's folder may be named by a path below it.
    std::string Put(std::string const& number, std::string const& folder, std::string const& name) const
    {
        std::filesystem::create_directories(folder);
        std::string path = (std::filesystem::path(folder) / name).make_preferred().string();
        std::filesystem::copy_file(Built(number), path);
        return path;
    }
    std::string Put(std::string const& number) const { return Put(number, m_here, m_file); }
};

// A library that counts a load but has no module.
class InconsistentLibrary : public Win32Quarn::Win32Library
{
public:
    InconsistentLibrary() : Win32Library("Plot.dll", "") { m_refCount = 1; }
};
