// The system's functions, standing before the C library's: the dynamic linker finds the program's first, for
// our library, for SQLite and for the standard library alike.
#include "tests/faults/fault_plan.h"

#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <ctime>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/types.h>

namespace {

bool Strikes(char const* function)
{
    if (!Faults::Strikes(Faults::Kind::Files, function)) {
        return false;
    }
    // Whether a folder can be searched does not change from call to call.
    bool const isQuestion = std::strcmp(function, "stat") == 0;
    errno = isQuestion && Faults::Error() == EACCES ? EIO : Faults::Error();
    return true;
}

bool IsDeniedTemporary(char const* path, int flags)
{
    if (!Faults::TemporariesAreDenied() || (flags & O_EXCL) == 0 || std::strstr(path, "/.~") == nullptr) {
        return false;
    }
    errno = EACCES;
    return true;
}

// Giving a lock back does not fail.
bool GivesBack(int command, void const* argument)
{
    bool const isLock = command == F_SETLK || command == F_OFD_SETLK;
    return isLock && static_cast<struct ::flock const*>(argument)->l_type == F_UNLCK;
}

// A signal comes before the call has done anything.
bool IsInterrupted(char const* function)
{
    if (Faults::Error() != EINTR || !Faults::Strikes(Faults::Kind::Interruptions, function)) {
        return false;
    }
    errno = EINTR;
    return true;
}

// A signal comes when the call has done a part.
bool DoesAPart(char const* function)
{
    return Faults::Error() == 0 && Faults::Strikes(Faults::Kind::Interruptions, function);
}

} // namespace

// NOLINTBEGIN(cppcoreguidelines-macro-usage,bugprone-reserved-identifier): one line for each function. Names
// of their own, for the C library's headers declare the functions with attributes that differ.

#define QUARN_REAL(function, type)                                                                           \
    static auto* const real = reinterpret_cast<type>(::dlsym(RTLD_NEXT, function))

#define QUARN_HOOK(result, failure, name, parameters, arguments)                                             \
    extern "C" result Hook_##name parameters __asm__(#name);                                                 \
    extern "C" result Hook_##name parameters                                                                 \
    {                                                                                                        \
        QUARN_REAL(#name, result(*) parameters);                                                             \
        return Strikes(#name) ? (failure) : real arguments;                                                  \
    }

QUARN_HOOK(int, -1, access, (char const* path, int mode), (path, mode))
QUARN_HOOK(int, -1, chmod, (char const* path, ::mode_t mode), (path, mode))
QUARN_HOOK(int, -1, chown, (char const* path, ::uid_t owner, ::gid_t group), (path, owner, group))
QUARN_HOOK(int, -1, fchmod, (int file, ::mode_t mode), (file, mode))
QUARN_HOOK(int, -1, fchown, (int file, ::uid_t owner, ::gid_t group), (file, owner, group))
QUARN_HOOK(int, -1, fstat, (int file, void* status), (file, status))
QUARN_HOOK(int, -1, fstat64, (int file, void* status), (file, status))
QUARN_HOOK(int, -1, ftruncate, (int file, ::off_t size), (file, size))
QUARN_HOOK(int, -1, ftruncate64, (int file, ::off_t size), (file, size))
QUARN_HOOK(int, -1, futimens, (int file, void const* times), (file, times))
QUARN_HOOK(char*, nullptr, getcwd, (char* path, std::size_t size), (path, size))
QUARN_HOOK(::ssize_t, -1, getxattr, (char const* path, char const* name, void* value, std::size_t size),
           (path, name, value, size))
QUARN_HOOK(int, -1, link, (char const* from, char const* to), (from, to))
QUARN_HOOK(::off_t, -1, lseek, (int file, ::off_t offset, int origin), (file, offset, origin))
QUARN_HOOK(::off_t, -1, lseek64, (int file, ::off_t offset, int origin), (file, offset, origin))
QUARN_HOOK(int, -1, lstat, (char const* path, void* status), (path, status))
QUARN_HOOK(int, -1, lstat64, (char const* path, void* status), (path, status))
QUARN_HOOK(int, -1, mkdir, (char const* path, ::mode_t mode), (path, mode))
QUARN_HOOK(int, -1, mkostemp, (char* path, int flags), (path, flags))
QUARN_HOOK(void*, reinterpret_cast<void*>(-1), mmap64,
           (void* at, std::size_t size, int protection, int flags, int file, ::off_t offset),
           (at, size, protection, flags, file, offset))
QUARN_HOOK(void*, nullptr, opendir, (char const* path), (path))
QUARN_HOOK(void*, nullptr, readdir, (void* folder), (folder))
QUARN_HOOK(::ssize_t, -1, readlink, (char const* path, char* target, std::size_t size), (path, target, size))
QUARN_HOOK(int, -1, removexattr, (char const* path, char const* name), (path, name))
QUARN_HOOK(int, -1, rename, (char const* from, char const* to), (from, to))
QUARN_HOOK(int, -1, renameat2, (int first, char const* from, int second, char const* to, unsigned flags),
           (first, from, second, to, flags))
QUARN_HOOK(int, -1, setxattr,
           (char const* path, char const* name, void const* value, std::size_t size, int flags),
           (path, name, value, size, flags))
QUARN_HOOK(int, -1, stat, (char const* path, void* status), (path, status))
QUARN_HOOK(int, -1, stat64, (char const* path, void* status), (path, status))
QUARN_HOOK(int, -1, unlink, (char const* path), (path))

// The log and the file streams of the standard library.
QUARN_HOOK(::FILE*, nullptr, fopen, (char const* path, char const* mode), (path, mode))
QUARN_HOOK(::FILE*, nullptr, fopen64, (char const* path, char const* mode), (path, mode))
QUARN_HOOK(::FILE*, nullptr, fdopen, (int file, char const* mode), (file, mode))
QUARN_HOOK(int, EOF, fflush, (::FILE * file), (file))
QUARN_HOOK(int, EOF, fputc, (int c, ::FILE* file), (c, file))
QUARN_HOOK(int, EOF, fputs, (char const* text, ::FILE* file), (text, file))
QUARN_HOOK(std::size_t, 0, fwrite, (void const* data, std::size_t size, std::size_t count, ::FILE* file),
           (data, size, count, file))
QUARN_HOOK(int, -1, vfprintf, (::FILE * file, char const* format, std::va_list arguments),
           (file, format, arguments))

// No power fails here, so nothing has to reach the disk.

#define QUARN_SYNC_HOOK(name)                                                                                \
    extern "C" int Hook_##name(int) __asm__(#name);                                                          \
    extern "C" int Hook_##name(int /*file*/)                                                                 \
    {                                                                                                        \
        return Strikes(#name) ? -1 : 0;                                                                      \
    }

QUARN_SYNC_HOOK(fsync)
QUARN_SYNC_HOOK(fdatasync)

// What fails to read or write has done a half; what does a part has done that half, too, where there is one.

#define QUARN_TRANSFER_HOOK(name, parameters, half, whole)                                                   \
    extern "C" ::ssize_t Hook_##name parameters __asm__(#name);                                              \
    extern "C" ::ssize_t Hook_##name parameters                                                              \
    {                                                                                                        \
        QUARN_REAL(#name, ::ssize_t(*) parameters);                                                          \
        if (IsInterrupted(#name)) {                                                                          \
            return -1;                                                                                       \
        }                                                                                                    \
        bool const fails = Strikes(#name);                                                                   \
        ::ssize_t const done = fails || DoesAPart(#name) ? real half : 0;                                    \
        if (!fails) {                                                                                        \
            return done > 0 ? done : real whole;                                                             \
        }                                                                                                    \
        errno = Faults::Error();                                                                             \
        return -1;                                                                                           \
    }

QUARN_TRANSFER_HOOK(pread, (int file, void* data, std::size_t size, ::off_t offset),
                    (file, data, size / 2, offset), (file, data, size, offset))
QUARN_TRANSFER_HOOK(pread64, (int file, void* data, std::size_t size, ::off_t offset),
                    (file, data, size / 2, offset), (file, data, size, offset))
QUARN_TRANSFER_HOOK(read, (int file, void* data, std::size_t size), (file, data, size / 2),
                    (file, data, size))
QUARN_TRANSFER_HOOK(write, (int file, void const* data, std::size_t size), (file, data, size / 2),
                    (file, data, size))
QUARN_TRANSFER_HOOK(pwrite, (int file, void const* data, std::size_t size, ::off_t offset),
                    (file, data, size / 2, offset), (file, data, size, offset))
QUARN_TRANSFER_HOOK(pwrite64, (int file, void const* data, std::size_t size, ::off_t offset),
                    (file, data, size / 2, offset), (file, data, size, offset))
QUARN_TRANSFER_HOOK(writev, (int file, void const* parts, int count), (file, parts, count / 2),
                    (file, parts, count))

#define QUARN_CLOSE_HOOK(name, type)                                                                         \
    extern "C" int Hook_##name(type) __asm__(#name);                                                         \
    extern "C" int Hook_##name(type file)                                                                    \
    {                                                                                                        \
        QUARN_REAL(#name, int (*)(type));                                                                    \
        bool const fails = Strikes(#name);                                                                   \
        int const result = real(file);                                                                       \
        if (!fails) {                                                                                        \
            return result;                                                                                   \
        }                                                                                                    \
        errno = Faults::Error();                                                                             \
        return -1;                                                                                           \
    }

QUARN_CLOSE_HOOK(close, int)
QUARN_CLOSE_HOOK(fclose, ::FILE*)

#define QUARN_OPEN_HOOK(name)                                                                                \
    extern "C" int Hook_##name(char const* path, int flags, ...) __asm__(#name);                             \
    extern "C" int Hook_##name(char const* path, int flags, ...)                                             \
    {                                                                                                        \
        QUARN_REAL(#name, int (*)(char const*, int, ...));                                                   \
        std::va_list arguments;                                                                              \
        va_start(arguments, flags);                                                                          \
        auto const mode = va_arg(arguments, ::mode_t);                                                       \
        va_end(arguments);                                                                                   \
        bool const fails = IsDeniedTemporary(path, flags) || IsInterrupted(#name) || Strikes(#name);         \
        return fails ? -1 : real(path, flags, mode);                                                         \
    }

QUARN_OPEN_HOOK(open)
QUARN_OPEN_HOOK(open64)

extern "C" int Hook_linkat(int, char const*, int, char const*, int) __asm__("linkat");
extern "C" int Hook_linkat(int first, char const* from, int second, char const* to, int flags)
{
    QUARN_REAL("linkat", int (*)(int, char const*, int, char const*, int));
    if (Faults::LinksAreRefused()) {
        errno = EPERM;
        return -1;
    }
    return Strikes("linkat") ? -1 : real(first, from, second, to, flags);
}

// Interrupted are our own locks alone: those of SQLite are not where the files are local.
#define QUARN_CONTROL_HOOK(name)                                                                             \
    extern "C" int Hook_##name(int file, int command, ...) __asm__(#name);                                   \
    extern "C" int Hook_##name(int file, int command, ...)                                                   \
    {                                                                                                        \
        QUARN_REAL(#name, int (*)(int, int, ...));                                                           \
        std::va_list arguments;                                                                              \
        va_start(arguments, command);                                                                        \
        void* const argument = va_arg(arguments, void*);                                                     \
        va_end(arguments);                                                                                   \
        bool const fails = (command == F_OFD_SETLK && IsInterrupted(#name)) ||                               \
                           (!GivesBack(command, argument) && Strikes(#name));                                \
        return fails ? -1 : real(file, command, argument);                                                   \
    }

QUARN_CONTROL_HOOK(fcntl)
QUARN_CONTROL_HOOK(fcntl64)

extern "C" int Hook_fprintf(::FILE* file, char const* format, ...) __asm__("fprintf");
extern "C" int Hook_fprintf(::FILE* file, char const* format, ...)
{
    std::va_list arguments;
    va_start(arguments, format);
    int const result = std::vfprintf(file, format, arguments); // the hook above
    va_end(arguments);
    return result;
}

// Time passes without waiting.

extern "C" int Hook_nanosleep(::timespec const* wanted, ::timespec* left) __asm__("nanosleep");
extern "C" int Hook_nanosleep(::timespec const* wanted, ::timespec* left)
{
    QUARN_REAL("nanosleep", int (*)(::timespec const*, ::timespec*));
    if (!Faults::IsArmed()) {
        return real(wanted, left);
    }
    Faults::Wait(static_cast<std::uint64_t>(wanted->tv_sec) * 1'000'000'000U +
                 static_cast<std::uint64_t>(wanted->tv_nsec));
    return 0;
}

extern "C" int Hook_clock_gettime(::clockid_t clock, ::timespec* now) __asm__("clock_gettime");
extern "C" int Hook_clock_gettime(::clockid_t clock, ::timespec* now)
{
    QUARN_REAL("clock_gettime", int (*)(::clockid_t, ::timespec*));
    int const result = real(clock, now);
    if (clock == CLOCK_BOOTTIME && Faults::Waited() != 0) {
        std::uint64_t const nanoseconds = static_cast<std::uint64_t>(now->tv_nsec) + Faults::Waited();
        now->tv_sec += static_cast<::time_t>(nanoseconds / 1'000'000'000U);
        now->tv_nsec = static_cast<long>(nanoseconds % 1'000'000'000U);
    }
    return result;
}

// NOLINTEND(cppcoreguidelines-macro-usage,bugprone-reserved-identifier)
