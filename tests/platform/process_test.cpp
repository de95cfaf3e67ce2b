// Codes, environment, clock and widths through the seam, the same on both systems.

// The order that a client has when a public header comes first.
#include "quarn/platform/win32_api.h"
#include "quarn/platform/win32_types.h"

#include <atomic>
#include <cstdlib>
#include <string>
#include <thread>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(sizeof(WORD) == 2 && sizeof(WCHAR) == 2);
static_assert(sizeof(DWORD) == 4 && sizeof(LONG) == 4 && sizeof(UINT) == 4 && sizeof(BOOL) == 4);
static_assert(sizeof(LARGE_INTEGER) == 8 && sizeof(ULONGLONG) == 8 && sizeof(HANDLE) == 8);
static_assert(std::is_unsigned_v<DWORD> && std::is_unsigned_v<WORD> && std::is_signed_v<LONG>);
static_assert(sizeof(WIN32_FIND_DATAA) == 320 && sizeof(FILETIME) == 8);
static_assert(std::is_same_v<HANDLE, void*> && std::is_same_v<HKEY, HKEY__*>);
static_assert(std::is_same_v<HINSTANCE, HINSTANCE__*> && std::is_same_v<HCURSOR, HICON__*>);

TEST(SeamError, EachThreadHasItsOwnCode)
{
    std::atomic<int> step = 0;
    DWORD before = 0;
    std::thread other([&] {
        while (step != 1) {
        }
        before = ::GetLastError();
        ::SetLastError(999);
        step = 2;
    });
    ::SetLastError(12345);
    step = 1;
    while (step != 2) {
    }
    DWORD const after = ::GetLastError();
    other.join();
    EXPECT_NE(before, 12345U);
    EXPECT_EQ(after, 12345U);
    ::SetLastError(0xFFFFFFFF);
    EXPECT_EQ(::GetLastError(), 0xFFFFFFFFU);
}

TEST(SeamEnvironment, WhatTheRuntimeSetsTheSystemHasToo)
{
    char buffer[10];
    for (char const* const value : {"first", "other"}) {
        EXPECT_EQ(::_putenv_s("QUARN_TEST_VARIABLE", value), 0);
        EXPECT_STREQ(std::getenv("QUARN_TEST_VARIABLE"), value);
        EXPECT_EQ(::GetEnvironmentVariableA("QUARN_TEST_VARIABLE", buffer, sizeof buffer), 5U);
        EXPECT_STREQ(buffer, value);
    }
    EXPECT_EQ(::_putenv_s("QUARN_TEST_VARIABLE", ""), 0) << "removes it";
    EXPECT_EQ(std::getenv("QUARN_TEST_VARIABLE"), nullptr);
    ::SetLastError(7777);
    EXPECT_EQ(::GetEnvironmentVariableA("QUARN_TEST_VARIABLE", buffer, sizeof buffer), 0U);
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_ENVVAR_NOT_FOUND));
    EXPECT_EQ(::_putenv_s("QUARN_TEST_VARIABLE", ""), 0) << "there is nothing to remove";
}

TEST(SeamEnvironment, ValuesNegotiateTheirBuffer)
{
    std::string const value(1000, 'v');
    ASSERT_EQ(::_putenv_s("QUARN_TEST_VARIABLE", value.c_str()), 0);
    std::string buffer(1002, '#');
    EXPECT_EQ(::GetEnvironmentVariableA("QUARN_TEST_VARIABLE", nullptr, 0), 1001U);
    EXPECT_EQ(::GetEnvironmentVariableA("QUARN_TEST_VARIABLE", buffer.data(), 1000), 1001U);
    EXPECT_EQ(::GetEnvironmentVariableA("QUARN_TEST_VARIABLE", buffer.data(), 1001), 1000U);
    EXPECT_EQ(buffer.c_str(), value);
    EXPECT_EQ(buffer[1001], '#');
    ::_putenv_s("QUARN_TEST_VARIABLE", "");
}

TEST(SeamClock, SleepTakesItsTimeAndTheCounterShowsIt)
{
    ULONGLONG const before = ::GetTickCount64();
    ::Sleep(0);
    ::Sleep(120);
    // The counter advances in steps of up to 16 ms on Windows.
    EXPECT_GE(::GetTickCount64() - before, 100U);
}

} // namespace
