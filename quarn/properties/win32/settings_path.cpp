#include "quarn/properties/win32/settings_path.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_handle.h"

#include <chrono>
#include <cstdlib>
#include <string_view>

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
    FileHandle const file(::CreateFileA(path.c_str(), 0, kShareAll, nullptr, OPEN_EXISTING,
                                        FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    auto const ask = [&file](char* buffer, DWORD size) {
        return ::GetFinalPathNameByHandleA(file.Get(), buffer, size, FILE_NAME_NORMALIZED | VOLUME_NAME_DOS);
    };
    if (!file.IsOpen() || !TakePath(ask, final)) {
        return false;
    }
    constexpr std::string_view kPrefix = R"(\\?\)";
    constexpr std::string_view kSharePrefix = R"(\\?\UNC\)";
    std::string_view rest = final;
    if (rest.size() < MAX_PATH && rest.substr(0, kPrefix.size()) == kPrefix) {
        bool const isShare = rest.substr(0, kSharePrefix.size()) == kSharePrefix;
        rest.remove_prefix(isShare ? kSharePrefix.size() : kPrefix.size());
        final = (isShare ? "\\\\" : "") + std::string(rest);
    }
    return true;
}

// The absolute path and the place of the file's name in it.
bool FullPath(string const& path, string& full, std::size_t& name)
{
    name = 0;
    auto const ask = [&](char* buffer, DWORD size) {
        char* part = nullptr;
        DWORD const length = ::GetFullPathNameA(path.c_str(), size, buffer, &part);
        if (part != nullptr && length < size) {
            name = static_cast<std::size_t>(part - buffer);
        }
        return length;
    };
    return TakePath(ask, full) && name != 0;
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

bool ResolveSettingsPath(string const& path, SettingsPath& resolved)
{
    string whole;
    string full;
    std::size_t name = 0;
    if (::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        if (!FinalPath(path, whole) || !FullPath(whole, full, name)) {
            return false;
        }
        resolved.folder = full.substr(0, name);
    } else {
        if (!FullPath(path, full, name) || !FinalPath(full.substr(0, name), whole)) {
            return false;
        }
        // The separator is the one in front of the name.
        resolved.folder = whole;
        if (resolved.folder.back() != full[name - 1]) {
            resolved.folder += full[name - 1];
        }
    }
    string const file = full.substr(name);
    std::size_t const dot = std::min(file.rfind('.'), file.size());
    resolved.base = file.substr(0, dot);
    resolved.extension = file.substr(dot);
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
    constexpr std::int64_t kFirst = 1208357070;
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint32_t>(std::chrono::duration_cast<std::chrono::seconds>(now).count() - kFirst);
}

string BackupName(string const& folder, SettingsPath const& path, std::uint32_t stamp)
{
    string name;
    name.Format("%s%s_%lx%s", folder.c_str(), path.base.c_str(), static_cast<unsigned long>(stamp),
                path.extension.c_str());
    return name;
}

} // namespace Quarn::detail
