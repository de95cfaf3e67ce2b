#include "reliability/posix/system_calls.h"

#include <cerrno>
#include <climits>
#include <fstream>
#include <iterator>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

DeviceAccount* g_account = nullptr;
std::optional<std::time_t> g_clock;

std::string NameOf(char const* path)
{
    std::string const name = path;
    return name.substr(name.find_last_of('/') + 1);
}

::ino_t InodeOf(char const* path)
{
    struct ::stat status;
    return ::stat(path, &status) == 0 ? status.st_ino : 0;
}

int Result(long result)
{
    return static_cast<int>(result);
}

void CountName(int result, char const* path)
{
    if (g_account != nullptr && result == 0) {
        int const error = errno;
        g_account->steps.push_back({DeviceStep::Kind::Name, InodeOf(path), NameOf(path)});
        errno = error;
    }
}

// A rename: the new name, and the old one no more.
int CountRename(int result, char const* from, char const* to)
{
    CountName(result, to);
    CountName(result, from);
    return result;
}

void CountSync(int descriptor)
{
    std::string const path = "/proc/self/fd/" + std::to_string(descriptor);
    struct ::stat status;
    if (::fstat(descriptor, &status) == 0 && S_ISDIR(status.st_mode)) {
        g_account->steps.push_back({DeviceStep::Kind::Folder});
        return;
    }
    std::ifstream file(path, std::ios_base::binary);
    std::string const content{std::istreambuf_iterator<char>(file), {}};
    g_account->steps.push_back({DeviceStep::Kind::Content, status.st_ino, "", content});
}

} // namespace

DeviceAccount::DeviceAccount()
{
    g_account = this;
}

DeviceAccount::~DeviceAccount()
{
    g_account = nullptr;
}

StoppedClock::StoppedClock(std::time_t second)
{
    g_clock = second;
}

StoppedClock::~StoppedClock()
{
    g_clock.reset();
}

// NOLINTBEGIN(readability-identifier-naming): the C library's names
extern "C" {

int fsync(int descriptor)
{
    int const result = Result(::syscall(SYS_fsync, descriptor));
    if (g_account != nullptr && result == 0) {
        CountSync(descriptor);
    }
    return result;
}

int rename(char const* from, char const* to) noexcept
{
    return CountRename(Result(::syscall(SYS_rename, from, to)), from, to);
}

int renameat2(int fromFolder, char const* from, int toFolder, char const* to, unsigned int flags) noexcept
{
    if (g_account != nullptr && !g_account->canRenameToNew) {
        errno = EINVAL;
        return -1;
    }
    return CountRename(Result(::syscall(SYS_renameat2, fromFolder, from, toFolder, to, flags)), from, to);
}

int linkat(int fromFolder, char const* from, int toFolder, char const* to, int flags) noexcept
{
    if (g_account != nullptr && !g_account->hasLinks) {
        errno = EPERM;
        return -1;
    }
    int const result = Result(::syscall(SYS_linkat, fromFolder, from, toFolder, to, flags));
    CountName(result, to);
    return result;
}

int link(char const* from, char const* to) noexcept
{
    return ::linkat(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int unlink(char const* path) noexcept
{
    int const result = Result(::syscall(SYS_unlink, path));
    CountName(result, path);
    return result;
}

int clock_gettime(::clockid_t clock, struct ::timespec* now) noexcept
{
    int const result = Result(::syscall(SYS_clock_gettime, clock, now));
    if (g_clock && clock == CLOCK_REALTIME) {
        *now = {*g_clock, 0};
    }
    return result;
}

std::time_t time(std::time_t* second) noexcept
{
    ::timespec now{};
    ::clock_gettime(CLOCK_REALTIME, &now);
    if (second != nullptr) {
        *second = now.tv_sec;
    }
    return now.tv_sec;
}
}
// NOLINTEND(readability-identifier-naming)
