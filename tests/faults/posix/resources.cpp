#include "tests/faults/resources.h"

#include "tests/faults/posix/lock_name.h"

#include <algorithm>
#include <filesystem>

#include <unistd.h>

std::ptrdiff_t OpenFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

std::ptrdiff_t LockFiles(std::string const& settingsFile)
{
    if (settingsFile.empty()) {
        return 0;
    }
    std::string const name = SettingsLockName(settingsFile);
    std::filesystem::directory_iterator const files(::access("/dev/shm", W_OK | X_OK) == 0 ? "/dev/shm"
                                                                                           : "/tmp");
    return std::count_if(begin(files), end(files), [&name](auto const& file) {
        return file.path().filename().string().find(name) != std::string::npos;
    });
}
