// (private) Lock files: locks between processes that a dead process cannot hold. A name's file exists while a
// process has its Presence; whoever holds the lock has locked the file's first byte through an open file
// description of its own, so that threads of one process exclude each other too. The second byte is locked,
// shared, by every Presence. A process that dies leaves its files; the next user of a name takes them over.
// Any thread may use these.
#pragma once

#include "quarn/platform/win32_api.h"

#include <string>

namespace Quarn::detail {

// The file for a mutex name: names of any length and with any characters, one user's or another's.
std::string LockFilePath(std::string const& name);

// A descriptor of a lock file. Closed in a forked child, so that a lock never passes to one and ends with its
// process.
class LockFile
{
public:
    LockFile() = default;
    LockFile(LockFile const&) = delete;
    LockFile(LockFile&& other) noexcept;
    LockFile& operator=(LockFile const&) = delete;
    LockFile& operator=(LockFile&& other) noexcept;
    ~LockFile();

    // Opens the file, creating it where needed, readable and writable for all. Throws std::bad_alloc.
    // Nothing is opened, with errno set, after a failure.
    static LockFile Open(std::string const& path);

    // Empty also in a child forked since.
    explicit operator bool() const;
    int Get() const { return m_descriptor; }

private:
    int m_descriptor = -1;
    unsigned m_generation = 0;
};

// How many forks this process is away from the first one.
unsigned ForkGeneration() noexcept;

// The share in a name's existence.
class Presence
{
public:
    // Takes the share; `existed` tells whether another had one. False with errno set after a failure.
    bool Open(std::string const& path, bool& existed);
    Presence() = default;
    Presence(Presence const&) = delete;
    Presence& operator=(Presence const&) = delete;
    // The last one removes the file.
    ~Presence();

    // False also in a child forked since, and when somebody has removed the file: then it can be opened
    // again.
    explicit operator bool() const;

private:
    std::string m_path;
    LockFile m_file;
};

// Waits for the lock, at most so long. WAIT_OBJECT_0, or WAIT_ABANDONED when the holder before ended without
// ReleaseLock: then `file` holds it. WAIT_TIMEOUT, or WAIT_FAILED with errno set.
DWORD AcquireLock(std::string const& path, DWORD milliseconds, LockFile& file);

// Gives the lock back. Destroying the file without this abandons the lock.
void ReleaseLock(LockFile& file);

} // namespace Quarn::detail
