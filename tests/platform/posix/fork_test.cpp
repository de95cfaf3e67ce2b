// Locks and forked children.
#include "platform/scratch_folder.h"

#include <thread>

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

std::string Name(char const* suffix)
{
    return "quarn-test-fork-" + std::to_string(::getpid()) + suffix;
}

int ExitCodeOf(pid_t child)
{
    int status = 0;
    return ::waitpid(child, &status, 0) == child && WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST(PosixFork, AChildHasTheHandleButNotTheLock)
{
    HANDLE const mutex = ::CreateMutexA(nullptr, TRUE, Name("a").c_str());
    pid_t const child = ::fork();
    if (child == 0) {
        bool const isOther = ::WaitForSingleObject(mutex, 20) == WAIT_TIMEOUT && !::ReleaseMutex(mutex) &&
                             ::GetLastError() == ERROR_NOT_OWNER;
        ::_exit(isOther ? 7 : 1);
    }
    EXPECT_EQ(ExitCodeOf(child), 7);
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
}

TEST(PosixFork, AChildTakesTheLockForItself)
{
    HANDLE const mutex = ::CreateMutexA(nullptr, TRUE, Name("b").c_str());
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        bool const hasIt = ::WaitForSingleObject(mutex, INFINITE) == WAIT_OBJECT_0;
        bool const hasItTwice = ::WaitForSingleObject(mutex, 0) == WAIT_OBJECT_0 && ::ReleaseMutex(mutex);
        bool const told = ::write(ready[1], "x", 1) == 1;
        ::pause();
        ::_exit(hasIt && hasItTwice && told ? 0 : 1);
    }
    EXPECT_TRUE(::ReleaseMutex(mutex));
    char c = 0;
    EXPECT_EQ(::read(ready[0], &c, 1), 1);
    EXPECT_EQ(::WaitForSingleObject(mutex, 20), WAIT_TIMEOUT);
    ::kill(child, SIGKILL);
    EXPECT_EQ(ExitCodeOf(child), -1);
    EXPECT_EQ(::WaitForSingleObject(mutex, INFINITE), WAIT_ABANDONED);
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(PosixFork, ALockEndsWithItsProcessThoughAChildLives)
{
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, Name("c").c_str());
    int ready[2];
    ASSERT_EQ(::pipe(ready), 0);
    pid_t const holder = ::fork();
    if (holder == 0) {
        ::WaitForSingleObject(mutex, INFINITE);
        pid_t const child = ::fork();
        if (child == 0) {
            ::alarm(60);
            ::pause();
            ::_exit(0);
        }
        bool const told = ::write(ready[1], &child, sizeof child) == sizeof child;
        ::pause();
        ::_exit(told ? 0 : 1);
    }
    pid_t child = 0;
    ASSERT_EQ(::read(ready[0], &child, sizeof child), static_cast<ssize_t>(sizeof child));
    EXPECT_EQ(::WaitForSingleObject(mutex, 0), WAIT_TIMEOUT);
    ::kill(holder, SIGKILL);
    EXPECT_EQ(ExitCodeOf(holder), -1);
    EXPECT_EQ(::WaitForSingleObject(mutex, 30'000), WAIT_ABANDONED);
    EXPECT_EQ(::kill(child, SIGKILL), 0) << "it lives";
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
    ::close(ready[0]);
    ::close(ready[1]);
}

TEST(PosixFork, ForksWhileOtherThreadsLockDoNotHang)
{
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, Name("d").c_str());
    std::atomic<bool> isOver = false;
    std::thread worker([&] {
        while (!isOver) {
            ::WaitForSingleObject(mutex, INFINITE);
            HANDLE const other = ::CreateMutexA(nullptr, FALSE, Name("e").c_str());
            ::CloseHandle(other);
            ::ReleaseMutex(mutex);
        }
    });
    for (int i = 0; i < 50; ++i) {
        pid_t const child = ::fork();
        if (child == 0) {
            ::alarm(60);
            bool const hasIt =
                ::WaitForSingleObject(mutex, INFINITE) == WAIT_OBJECT_0 && ::ReleaseMutex(mutex);
            ::_exit(hasIt && ::CloseHandle(mutex) ? 7 : 1);
        }
        EXPECT_EQ(ExitCodeOf(child), 7);
    }
    isOver = true;
    worker.join();
    ::CloseHandle(mutex);
}

TEST(PosixLockFile, IsReadableAndWritableForAllWhateverTheMaskAndGoesWithTheLastHandle)
{
    std::string const name = Name("f");
    auto const files = [&] {
        std::vector<std::filesystem::path> found;
        for (auto const& entry : std::filesystem::directory_iterator("/dev/shm")) {
            if (entry.path().filename().string().find(name) != std::string::npos) {
                found.push_back(entry.path());
            }
        }
        return found;
    };
    ASSERT_EQ(files().size(), 0U);
    mode_t const mask = ::umask(077);
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name.c_str());
    ::umask(mask);
    ASSERT_EQ(files().size(), 1U);
    EXPECT_EQ(std::filesystem::status(files()[0]).permissions(), std::filesystem::perms(0666));
    HANDLE const second = ::CreateMutexA(nullptr, FALSE, name.c_str());
    ::CloseHandle(mutex);
    EXPECT_EQ(files().size(), 1U);
    ::CloseHandle(second);
    EXPECT_EQ(files().size(), 0U);
}

TEST(PosixLockFile, ALinkInItsPlaceIsNotFollowed)
{
    ScratchFolder const folder;
    std::string const name = Name("g");
    std::string const victim = folder.Make("victim", "kept");
    HANDLE mutex = ::CreateMutexA(nullptr, FALSE, name.c_str());
    std::filesystem::path path;
    for (auto const& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().find(name) != std::string::npos) {
            path = entry.path();
        }
    }
    ::CloseHandle(mutex);
    ASSERT_FALSE(path.empty());
    std::filesystem::create_symlink(std::filesystem::absolute(victim), path);
    mutex = ::CreateMutexA(nullptr, TRUE, name.c_str());
    EXPECT_EQ(mutex, nullptr);
    EXPECT_EQ(::GetLastError(), ERROR_CANT_RESOLVE_FILENAME);
    EXPECT_EQ(ContentOf(victim), "kept");
    std::filesystem::remove(path);
}

TEST(PosixLockFile, ALockWhoseFileWasRemovedStillExcludes)
{
    std::string const name = Name("h");
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name.c_str());
    for (auto const& entry : std::filesystem::directory_iterator("/dev/shm")) {
        if (entry.path().filename().string().find(name) != std::string::npos) {
            std::filesystem::remove(entry.path());
        }
    }
    EXPECT_EQ(::WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    // A process that comes now finds the new file.
    pid_t const child = ::fork();
    if (child == 0) {
        HANDLE const own = ::CreateMutexA(nullptr, FALSE, name.c_str());
        ::_exit(::WaitForSingleObject(own, 0) == WAIT_TIMEOUT ? 7 : 1);
    }
    EXPECT_EQ(ExitCodeOf(child), 7);
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
}

} // namespace
