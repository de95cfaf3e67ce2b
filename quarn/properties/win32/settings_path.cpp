#include "quarn/properties/win32/settings_path.h"

#include "quarn/platform/path_parts.h"
#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"

#include <chrono>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace Quarn::detail {

namespace {

// A path that a system function writes into a buffer of the given size, telling the size that it needs.
template<typename Function>
bool TakePath(Function function, string& path)
{
    std::string buffer(MAX_PATH, '\0');
    for (;;) {
        DWORD const length = function(buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) {
            return false;
        }
        if (length < buffer.size()) {
            path.assign(buffer.data(), length);
            return true;
        }
        buffer.resize(length + 1);
    }
}

// The system's own spelling, without the prefix that Windows sets in front where it is not needed.
bool FinalPath(string const& path, string& final)
{
    FileHandle const file(::CreateFileA(path.c_str(), 0, ShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    auto const ask = [&file](char* buffer, DWORD size) {
        return ::GetFinalPathNameByHandleA(file.Get(), buffer, size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    };
    if (!file.IsOpen() || !TakePath(ask, final)) {
        return false;
    }
    constexpr std::string_view PathPrefix = R"(\\?\)";
    constexpr std::string_view SharedPathPrefix = R"(\\?\UNC\)";
    std::string_view rest = final;
    if (rest.size() < MAX_PATH && rest.substr(0, PathPrefix.size()) == PathPrefix) {
        bool const isShare = rest.substr(0, SharedPathPrefix.size()) == SharedPathPrefix;
        rest.remove_prefix(isShare ? SharedPathPrefix.size() : PathPrefix.size());
        final = (isShare ? "\\\\" : "") + std::string(rest);
    }
    return true;
}

// The absolute path, which has a file's name at its end.
bool FullPath(string const& path, string& full)
{
    bool hasName = false;
    auto const ask = [&](char* buffer, DWORD size) {
        char* part = nullptr;
        DWORD const length = ::GetFullPathNameA(path.c_str(), size, buffer, &part);
        hasName = part != nullptr;
        return length;
    };
    return TakePath(ask, full) && hasName;
}

// The file that a symbolic link to a missing file stands for, empty where links lead in a circle or cannot be
// read; any other path as it is. On Windows there is nothing to do: a link has attributes of its own and does
// not pass for a missing file.
string LinkTarget(string path)
{
    constexpr int MaxLinks = 40;
    try {
        for (int i = 0; i < MaxLinks; ++i) {
            std::error_code error;
            std::filesystem::path const link(std::string_view{path});
            std::filesystem::path const target = std::filesystem::read_symlink(link, error);
            if (error == std::errc::invalid_argument || error == std::errc::no_such_file_or_directory ||
                error == std::errc::function_not_supported) {
                return path;
            }
            if (error) {
                return {};
            }
            path = (link.parent_path() / target).string();
        }
        return {};
    } catch (std::system_error const&) { // Windows, a path that is no UTF-8
        return path;
    }
}

// FNV-1a. ASCII case does not count: on Windows a missing file has no spelling of its own yet.
std::uint64_t Hash(std::string_view text)
{
    std::uint64_t hash = 0xCBF29CE484222325;
    for (char const c : text) {
        bool const upper = c >= 'A' && c <= 'Z';
        hash ^= static_cast<unsigned char>(upper ? c - 'A' + 'a' : c);
        hash *= 0x100000001B3;
    }
    return hash;
}

unsigned int NameHash(SettingsPath const& path)
{
    return static_cast<unsigned int>(Hash(path.base + path.extension));
}

} // namespace

bool IsMissing(string const& path) noexcept
{
    if (::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        return false;
    }
    DWORD const error = ::GetLastError();
    return error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND || error == ERROR_INVALID_NAME ||
           error == ERROR_FILENAME_EXCED_RANGE;
}

SettingsPath DivideSettingsPath(string const& path)
{
    PathParts const parts = SplitPath(path);
    return {parts.drive + parts.directory, parts.name, parts.extension};
}

bool ResolveSettingsPath(string const& path, SettingsPath& resolved)
{
    // A file that another saver replaces between its opening and the question for its path has none.
    constexpr int Attempts = 100;
    string whole;
    string full;
    for (int i = 0; i < Attempts && ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES; ++i) {
        if (FinalPath(path, whole) && FullPath(whole, full)) {
            resolved = DivideSettingsPath(full);
            return true;
        }
    }
    if (!IsMissing(path) || !FullPath(LinkTarget(path), full)) {
        return false;
    }
    resolved = DivideSettingsPath(full);
    if (!FinalPath(resolved.folder, whole)) {
        return false;
    }
    // The separator is the one in front of the name.
    if (whole.back() != resolved.folder.back()) {
        whole += resolved.folder.back();
    }
    resolved.folder = whole;
    return true;
}

string LockName(SettingsPath const& path)
{
    string name;
    name.Format("Global\\QuarnUtil-settings-%016llx", static_cast<unsigned long long>(Hash(path.Whole())));
    return name;
}

string TemporaryName(SettingsPath const& path, unsigned int number)
{
    string name;
    name.Format(".~%08x-%x-%x.tmp", NameHash(path), static_cast<unsigned int>(::GetCurrentProcessId()),
                number);
    return path.folder + name;
}

string TemporaryPattern(SettingsPath const& path)
{
    string name;
    name.Format(".~%08x-*.tmp", NameHash(path));
    return path.folder + name;
}

std::uint32_t BackupStamp()
{
    constexpr std::int64_t FirstSecond = 1208357070;
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count() -
                                      FirstSecond);
}

string BackupName(string const& folder, SettingsPath const& path, std::uint32_t stamp)
{
    string name;
    name.Format("%s%s_%lx%s", folder.c_str(), path.base.c_str(), static_cast<unsigned long>(stamp),
                path.extension.c_str());
    return name;
}

} // namespace Quarn::detail
