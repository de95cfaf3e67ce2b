// A folder of its own for each test, below the current directory, removed at the end; and files as bytes.
#pragma once

#include "quarn/platform/win32_api.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include <gtest/gtest.h>

inline std::string ContentOf(std::string const& path)
{
    std::ifstream file(path, std::ios_base::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteContent(std::string const& path, std::string const& content)
{
    std::ofstream file(path, std::ios_base::binary);
    file << content;
    file.close();
    ASSERT_TRUE(file.good()) << path;
}

// The names of all that is in a folder.
inline std::set<std::string> NamesIn(std::filesystem::path const& folder)
{
    std::set<std::string> names;
    for (auto const& entry : std::filesystem::directory_iterator(folder)) {
        names.insert(entry.path().filename().string());
    }
    return names;
}

class ScratchFolder
{
public:
    ScratchFolder()
    {
        static std::atomic<int> count = 0;
        m_path = "scratch." + std::to_string(::GetCurrentProcessId()) + "." + std::to_string(++count);
        std::filesystem::remove_all(m_path); // what a killed process of the same number has left
        std::filesystem::create_directory(m_path);
    }
    ScratchFolder(ScratchFolder const&) = delete;
    ScratchFolder& operator=(ScratchFolder const&) = delete;
    ~ScratchFolder()
    {
        std::error_code ignored;
        for (auto const& entry : std::filesystem::recursive_directory_iterator(m_path, ignored)) {
            if (!entry.is_symlink(ignored)) { // read-only files stay otherwise
                std::filesystem::permissions(entry, std::filesystem::perms::owner_all, ignored);
            }
        }
        std::filesystem::remove_all(m_path, ignored);
    }

    // Relative to the current directory, as the paths of the names in it.
    std::string const& Path() const { return m_path; }
    std::string operator/(std::string const& name) const { return m_path + "/" + name; }

    std::string Make(std::string const& name, std::string const& content = "content") const
    {
        std::string path = *this / name;
        WriteContent(path, content);
        return path;
    }
    std::string MakeFolder(std::string const& name) const
    {
        std::string path = *this / name;
        std::filesystem::create_directory(path);
        return path;
    }
    // The names of all that is in the folder.
    std::set<std::string> Names() const { return NamesIn(m_path); }

private:
    std::string m_path;
};

inline void MakeReadOnly(std::string const& path)
{
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms::owner_write | perms::group_write | perms::others_write,
                                 std::filesystem::perm_options::remove);
}

// The code that a call leaves, told from one that was there before.
template<typename Call>
DWORD ErrorOf(Call&& call)
{
    ::SetLastError(7777);
    call();
    return ::GetLastError();
}
