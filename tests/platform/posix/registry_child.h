// Registry work in a process of its own: the parent never opens the registry, so every child can have files
// of its own.
#pragma once

#include "tests/platform/scratch_folder.h"
#include "tests/registry/throw_away_key.h"

#include <cstdio>
#include <filesystem>
#include <fstream>

#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

constexpr char const* TestKeyPath = "Software\\QuarnUtilTest";

// A folder with a registry in it.
class RegistryFolder
{
public:
    RegistryFolder() : m_path(std::filesystem::absolute(m_folder.MakeFolder("data"))) {}

    std::filesystem::path UserFile() const { return m_path / "quarnutil" / "registry.db"; }
    // Where there is a machine's folder.
    std::filesystem::path MachineFile() const { return m_path / "machine" / "registry.db"; }
    std::filesystem::path MachineFolder() const { return m_path / "machine"; }

    // Starts a child that does the work on this folder's registry and ends with its result.
    template<typename Work>
    pid_t Start(Work&& work) const
    {
        std::fflush(nullptr); // a child that ends by exit would write the parent's text again
        pid_t const child = ::fork();
        if (child == 0) {
            ::setenv("XDG_DATA_HOME", m_path.c_str(), 1);
            ::setenv("QUARNUTIL_MACHINE_DIR", MachineFolder().c_str(), 1);
            ::_exit(static_cast<int>(work()));
        }
        return child;
    }

    // The exit code; -1 for a child that was killed or crashed.
    static int Wait(pid_t child)
    {
        int status = 0;
        return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    template<typename Work>
    int Run(Work&& work) const
    {
        return Wait(Start(std::forward<Work>(work)));
    }

private:
    ScratchFolder m_folder;
    std::filesystem::path m_path;
};

// A file in the place of a registry's or beside it.
inline void Write(std::filesystem::path const& file, std::string const& content)
{
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios_base::binary) << content;
}

// How many of the values 0, 1, 2, ... below `count` are there with their own number as data.
inline int CountNumbered(HKEY key, std::string const& prefix, int count)
{
    int found = 0;
    for (int i = 0; i < count; ++i) {
        std::string const name = Numbered(prefix, i);
        found += DataOf(key, name.c_str()) == name + '\0' ? 1 : 0;
    }
    return found;
}
