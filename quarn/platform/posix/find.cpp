// Searching a folder on POSIX.
#include "quarn/platform/posix/files.h"
#include "quarn/platform/posix/handles.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <vector>

#include <dirent.h>

namespace Quarn::detail {

namespace {

// A search keeps the names found at its start; what has gone in the meantime is passed over.
class Search final : public HandleObject
{
public:
    Search(std::string folder, std::vector<std::string> names)
        : m_folder(std::move(folder)),
          m_names(std::move(names))
    {}

    bool Next(WIN32_FIND_DATAA& data);

private:
    std::string m_folder;
    std::vector<std::string> m_names;
    std::size_t m_next = 0;
};

FILETIME ToFileTime(::timespec const& time)
{
    constexpr LONGLONG From1601To1970 = 11'644'473'600;
    auto const steps =
        static_cast<ULONGLONG>((LONGLONG{time.tv_sec} + From1601To1970) * 10'000'000 + time.tv_nsec / 100);
    return {static_cast<DWORD>(steps), static_cast<DWORD>(steps >> 32)};
}

bool Search::Next(WIN32_FIND_DATAA& data)
{
    while (m_next < m_names.size()) {
        std::string const& name = m_names[m_next++];
        std::string const path = m_folder + name;
        struct ::stat status;
        if (::stat(path.c_str(), &status) != 0 && ::lstat(path.c_str(), &status) != 0) {
            continue;
        }
        data = {};
        data.dwFileAttributes = AttributesOf(status);
        data.ftLastAccessTime = ToFileTime(status.st_atim);
        data.ftLastWriteTime = ToFileTime(status.st_mtim);
        if (S_ISREG(status.st_mode)) {
            data.nFileSizeHigh = static_cast<DWORD>(static_cast<ULONGLONG>(status.st_size) >> 32);
            data.nFileSizeLow = static_cast<DWORD>(status.st_size);
        }
        name.copy(data.cFileName, MAX_PATH - 1);
        return true;
    }
    return false;
}

// `*` stands for any characters, `?` for one.
bool Matches(std::string_view name, std::string_view pattern)
{
    std::size_t n = 0;
    std::size_t p = 0;
    std::size_t star = pattern.npos; // the last one passed, and where its text ended so far
    std::size_t resume = 0;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            resume = n;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p;
            ++n;
        } else if (star != pattern.npos) {
            p = star + 1;
            n = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == pattern.npos;
}

// The names in the folder (empty, or ending in '/') that match; false after an error.
bool Collect(std::string const& folder, std::string_view pattern, std::vector<std::string>& names)
{
    ::DIR* const directory = ::opendir(folder.empty() ? "." : folder.c_str());
    if (directory == nullptr) {
        return false;
    }
    try {
        while (::dirent const* const entry = ::readdir(directory)) {
            if (Matches(entry->d_name, pattern)) {
                names.emplace_back(entry->d_name);
            }
        }
    } catch (...) {
        ::closedir(directory);
        throw;
    }
    ::closedir(directory);
    auto const isSpecial = [](std::string const& name) { return name == "." || name == ".."; };
    std::sort(names.begin(), names.end(), [&](std::string const& left, std::string const& right) {
        return isSpecial(left) != isSpecial(right) ? isSpecial(left) : left < right;
    });
    return true;
}

HANDLE StartSearch(std::string_view path, WIN32_FIND_DATAA& data)
{
    if (path.empty()) {
        Fail(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    std::size_t const slash = path.find_last_of('/');
    std::string folder(path.substr(0, slash + 1));
    std::string_view const pattern = path.substr(folder.size());
    std::vector<std::string> names;
    if (pattern.find_first_of("*?") == pattern.npos) {
        names.emplace_back(pattern);
    } else if (!Collect(folder, pattern == "*.*" ? "*" : pattern, names)) {
        // Anything but a folder there is a missing path.
        Fail(errno == ENOENT ? ERROR_PATH_NOT_FOUND : ErrorFromErrno(errno));
        return INVALID_HANDLE_VALUE;
    }
    struct ::stat status;
    if (!folder.empty() && ::stat(folder.c_str(), &status) != 0) {
        Fail(ERROR_PATH_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    auto search = std::make_shared<Search>(std::move(folder), std::move(names));
    if (pattern.empty() || !search->Next(data)) {
        Fail(ERROR_FILE_NOT_FOUND);
        return INVALID_HANDLE_VALUE;
    }
    return AddHandle(std::move(search));
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

HANDLE FindFirstFileA(char const* pattern, WIN32_FIND_DATAA* data)
{
    HANDLE const failure = INVALID_HANDLE_VALUE;
    return Guarded(failure, [&] { return StartSearch(pattern, *data); });
}

BOOL FindNextFileA(HANDLE handle, WIN32_FIND_DATAA* data)
{
    return Guarded(FALSE, [&] {
        std::shared_ptr<Search> const search = FindHandle<Search>(handle);
        if (!search) {
            return FALSE;
        }
        return search->Next(*data) ? TRUE : Fail(ERROR_NO_MORE_FILES);
    });
}

BOOL FindClose(HANDLE handle)
{
    return FindHandle<Search>(handle) && RemoveHandle(handle) ? TRUE : Fail(ERROR_INVALID_HANDLE);
}
