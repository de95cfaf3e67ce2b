// Codes, clock and widths through the seam, the same on both systems.

// The order that a client has when a public header comes first.
#include "quarn/platform/win32_api.h"
#include "quarn/platform/win32_types.h"

#include <atomic>
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

TEST(SeamClock, SleepTakesItsTimeAndTheCounterShowsIt)
{
    ULONGLONG const before = ::GetTickCount64();
    ::Sleep(0);
    ::Sleep(120);
    // The counter advances in steps of up to 16 ms on Windows.
    EXPECT_GE(::GetTickCount64() - before, 100U);
}

} // namespace
