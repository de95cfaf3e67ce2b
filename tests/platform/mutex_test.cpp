// Mutexes and critical sections through the seam, the same on both systems.
#include "platform/scratch_folder.h"

#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

// A name that no other test or process has.
std::string UniqueName(std::string const& suffix = "")
{
    static std::atomic<int> count = 0;
    return "quarn-test-" + std::to_string(::GetCurrentProcessId()) + "-" + std::to_string(++count) + suffix;
}

HANDLE Create(std::string const& name, BOOL initialOwner = FALSE)
{
    return ::CreateMutexA(nullptr, initialOwner, name.c_str());
}

// The result of a wait on another thread, which gives back what it gets.
DWORD WaitElsewhere(HANDLE mutex, DWORD milliseconds = 0)
{
    DWORD result = WAIT_FAILED;
    std::thread([&] {
        result = ::WaitForSingleObject(mutex, milliseconds);
        if (result == WAIT_OBJECT_0 || result == WAIT_ABANDONED) {
            ::ReleaseMutex(mutex);
        }
    }).join();
    return result;
}

TEST(SeamMutex, TheSecondOfANameIsTheSameMutex)
{
    std::string const name = UniqueName();
    ::SetLastError(7777);
    HANDLE const first = Create(name);
    EXPECT_EQ(::GetLastError(), ERROR_SUCCESS);
    HANDLE const second = Create(name);
    EXPECT_EQ(::GetLastError(), ERROR_ALREADY_EXISTS);
    EXPECT_NE(first, second);
    EXPECT_EQ(::WaitForSingleObject(first, 0), WAIT_OBJECT_0);
    EXPECT_EQ(WaitElsewhere(second), WAIT_TIMEOUT);
    EXPECT_TRUE(::ReleaseMutex(second));
    EXPECT_EQ(WaitElsewhere(second), WAIT_OBJECT_0);
    EXPECT_TRUE(::CloseHandle(first));
    EXPECT_TRUE(::CloseHandle(second));
    HANDLE const third = Create(name);
    EXPECT_EQ(::GetLastError(), ERROR_SUCCESS) << "gone with its last handle";
    ::CloseHandle(third);
}

TEST(SeamMutex, IsRecursive)
{
    HANDLE const mutex = Create(UniqueName());
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(::WaitForSingleObject(mutex, i == 0 ? INFINITE : 0), WAIT_OBJECT_0);
    }
    for (int i = 0; i < 3; ++i) {
        EXPECT_EQ(WaitElsewhere(mutex, 20), WAIT_TIMEOUT);
        EXPECT_TRUE(::ReleaseMutex(mutex));
    }
    EXPECT_EQ(WaitElsewhere(mutex), WAIT_OBJECT_0);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReleaseMutex(mutex)); }), ERROR_NOT_OWNER);
    ::CloseHandle(mutex);
}

TEST(SeamMutex, OnlyTheOwnerReleases)
{
    HANDLE const mutex = Create(UniqueName(), TRUE);
    DWORD error = 0;
    std::thread([&] { error = ErrorOf([&] { EXPECT_FALSE(::ReleaseMutex(mutex)); }); }).join();
    EXPECT_EQ(error, ERROR_NOT_OWNER);
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
}

TEST(SeamMutex, InitialOwnershipIsForTheCreatorAlone)
{
    std::string const name = UniqueName();
    HANDLE const first = Create(name, TRUE);
    HANDLE second = nullptr;
    std::thread([&] { second = Create(name, TRUE); }).join();
    EXPECT_EQ(WaitElsewhere(second), WAIT_TIMEOUT);
    EXPECT_TRUE(::ReleaseMutex(first));
    EXPECT_EQ(WaitElsewhere(second), WAIT_OBJECT_0);
    ::CloseHandle(first);
    ::CloseHandle(second);
}

TEST(SeamMutex, AThreadThatEndsAbandonsAllItOwns)
{
    HANDLE const first = Create(UniqueName());
    HANDLE const second = Create(UniqueName());
    HANDLE const returned = Create(UniqueName());
    std::thread([&] {
        for (HANDLE const mutex : {first, returned, second, first}) {
            EXPECT_EQ(::WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
        }
        EXPECT_TRUE(::ReleaseMutex(returned));
    }).join();
    for (HANDLE const mutex : {first, second}) {
        EXPECT_EQ(WaitElsewhere(mutex, 10'000), WAIT_ABANDONED);
        EXPECT_EQ(WaitElsewhere(mutex), WAIT_OBJECT_0) << "told once";
        ::CloseHandle(mutex);
    }
    EXPECT_EQ(WaitElsewhere(returned), WAIT_OBJECT_0);
    ::CloseHandle(returned);
}

TEST(SeamMutex, NamesKeepCaseAndPrefixesNameTheSession)
{
    std::string const name = UniqueName("x");
    HANDLE const plain = Create(name);
    HANDLE const local = Create("Local\\" + name);
    EXPECT_EQ(::GetLastError(), ERROR_ALREADY_EXISTS);
    HANDLE const global = Create("Global\\" + name);
    EXPECT_EQ(::GetLastError(), ERROR_SUCCESS);
    HANDLE const sameGlobal = Create("Global\\" + name);
    EXPECT_EQ(::GetLastError(), ERROR_ALREADY_EXISTS);
    std::string upper = name;
    upper.back() = 'X';
    HANDLE const other = Create(upper);
    EXPECT_EQ(::GetLastError(), ERROR_SUCCESS);
    for (HANDLE const mutex : {plain, local, global, sameGlobal, other}) {
        EXPECT_TRUE(::CloseHandle(mutex));
    }
}

TEST(SeamMutex, NamesMayHoldAnythingButABackslash)
{
    std::string const base = UniqueName();
    for (std::string const& suffix : {std::string("/../../etc/x"), std::string("\xC3\xA9 %s *?"),
                                      std::string("\n"), std::string(260 - base.size(), 'm')}) {
        HANDLE const mutex = Create(base + suffix);
        ASSERT_NE(mutex, nullptr) << suffix;
        EXPECT_EQ(::GetLastError(), ERROR_SUCCESS) << suffix;
        EXPECT_EQ(::WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
        EXPECT_TRUE(::ReleaseMutex(mutex));
        EXPECT_TRUE(::CloseHandle(mutex));
    }
    struct
    {
        std::string name;
        DWORD error;
    } const bad[] = {
        {"a\\b", ERROR_PATH_NOT_FOUND},
        {"Global\\a\\b", ERROR_PATH_NOT_FOUND},
        {"Global\\", ERROR_INVALID_NAME},
        {"Local\\", ERROR_INVALID_NAME},
        {std::string(261, 'm'), ERROR_FILENAME_EXCED_RANGE},
    };
    for (auto const& test : bad) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(Create(test.name), nullptr); }), test.error) << test.name;
    }
}

TEST(SeamMutex, EightThreadsCountTogether)
{
    std::string const name = UniqueName();
    HANDLE const kept = Create(name);
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            HANDLE const mutex = Create(name);
            for (int k = 0; k < 200; ++k) {
                DWORD const wait = k % 2 == 0 ? INFINITE : 60'000;
                EXPECT_EQ(::WaitForSingleObject(mutex, wait), WAIT_OBJECT_0);
                EXPECT_EQ(::WaitForSingleObject(mutex, wait), WAIT_OBJECT_0);
                ++count;
                EXPECT_TRUE(::ReleaseMutex(mutex));
                EXPECT_TRUE(::ReleaseMutex(mutex));
            }
            EXPECT_TRUE(::CloseHandle(mutex));
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 1600);
    ::CloseHandle(kept);
}

TEST(SeamMutex, ComesAndGoesWhileOthersUseIt)
{
    std::string const name = UniqueName();
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 100; ++k) {
                HANDLE const mutex = Create(name);
                EXPECT_EQ(::WaitForSingleObject(mutex, INFINITE), WAIT_OBJECT_0);
                ++count;
                EXPECT_TRUE(::ReleaseMutex(mutex));
                EXPECT_TRUE(::CloseHandle(mutex));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 400);
}

TEST(SeamCriticalSection, EightThreadsCountTogether)
{
    CRITICAL_SECTION section;
    ::InitializeCriticalSection(&section);
    int count = 0;
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        threads.emplace_back([&] {
            for (int k = 0; k < 2000; ++k) {
                ::EnterCriticalSection(&section);
                ::EnterCriticalSection(&section); // its owner may enter again
                ++count;
                ::LeaveCriticalSection(&section);
                ::LeaveCriticalSection(&section);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 16'000);
    ::DeleteCriticalSection(&section);
}

} // namespace
