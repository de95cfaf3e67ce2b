// A folder of its own for each test, below the current directory, removed at the end.
#pragma once

#include "quarn/platform/win32_api.h"

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

class ScratchFolder
{
public:
    ScratchFolder()
    {
        static std::atomic<int> count = 0;
        m_path = "platform_test." + std::to_string(::GetCurrentProcessId()) + "." + std::to_string(++count);
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

    // The path of a name in the folder, relative to the current directory.
    std::string operator/(std::string const& name) const { return m_path + "/" + name; }

    std::string Make(std::string const& name, std::string const& content = "content") const
    {
        std::string path = *this / name;
        std::ofstream(path, std::ios_base::binary) << content;
        return path;
    }
    std::string MakeFolder(std::string const& name) const
    {
        std::string path = *this / name;
        std::filesystem::create_directory(path);
        return path;
    }

private:
    std::string m_path;
};

inline std::string ContentOf(std::string const& path)
{
    std::ifstream file(path, std::ios_base::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

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
