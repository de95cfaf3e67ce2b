// What the library asks of the system, as the test program's own functions get to see it: they stand in for
// the C library's, keep an account and pass everything on.
#pragma once

#include <ctime>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// A step on the way to the device, while somebody keeps an account.
struct DeviceStep
{
    enum class Kind
    {
        Content, // of the file `inode` is on the device, as `content`
        Folder,  // the names in the folder are
        Name,    // `name` is to be that of the file `inode`, of none for 0
    };
    Kind kind;
    ::ino_t inode = 0;
    std::string name = {}; // without its folder
    std::string content = {};
};

// The steps between its construction and its end, those of this process.
class DeviceAccount
{
public:
    DeviceAccount();
    DeviceAccount(DeviceAccount const&) = delete;
    DeviceAccount& operator=(DeviceAccount const&) = delete;
    ~DeviceAccount();

    std::vector<DeviceStep> steps;
    bool hasLinks = true;       // of a file system without them, if not
    bool canRenameToNew = true; // without overwriting, in one call
};

// The clock stands at this second as long as the object lives.
class StoppedClock
{
public:
    explicit StoppedClock(std::time_t second);
    StoppedClock(StoppedClock const&) = delete;
    StoppedClock& operator=(StoppedClock const&) = delete;
    ~StoppedClock();
};
