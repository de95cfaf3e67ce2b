// The scoped guards and the allocation pair.
#include "quarn/platform/allocation.h"
#include "quarn/platform/guards.h"
#include "quarn/platform/win32_api.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <string>
#include <thread>

#include <gtest/gtest.h>

namespace {

using Win32Quarn::CSWrapper;
using Win32Quarn::MutexWrapper;
using Win32Quarn::WaitCursor;

class Section
{
public:
    Section() { ::InitializeCriticalSection(&section); }
    Section(Section const&) = delete;
    Section& operator=(Section const&) = delete;
    ~Section() { ::DeleteCriticalSection(&section); }

    CRITICAL_SECTION section;
};

TEST(CSWrapper, HoldsTheSectionWhileItLives)
{
    Section guarded;
    int counter = 0;
    auto const count = [&] {
        for (int i = 0; i < 20'000; ++i) {
            CSWrapper const guard(guarded.section);
            ++counter;
        }
    };
    std::thread other(count);
    count();
    other.join();
    EXPECT_EQ(counter, 40'000);
}

TEST(CSWrapper, LeavesTheSectionOnceWhenAsked)
{
    Section guarded;
    CSWrapper outer(guarded.section);
    CSWrapper inner(guarded.section);
    inner.Leave();
    inner.Leave();
    // The outer guard still holds it: the second Leave did nothing.
    std::atomic<bool> entered = false;
    std::thread other([&] {
        CSWrapper const guard(guarded.section);
        entered = true;
    });
    ::Sleep(50);
    EXPECT_FALSE(entered);
    outer.Leave();
    other.join();
    EXPECT_TRUE(entered);
}

class Mutex : public testing::Test
{
protected:
    Mutex() : m_mutex(::CreateMutexA(nullptr, FALSE, m_name.c_str())) {}
    ~Mutex() override { ::CloseHandle(m_mutex); }

    // Whether another thread gets the mutex at once.
    bool IsFree() const
    {
        DWORD result = WAIT_FAILED;
        std::thread([&] {
            result = ::WaitForSingleObject(m_mutex, 0);
            if (result == WAIT_OBJECT_0) {
                ::ReleaseMutex(m_mutex);
            }
        }).join();
        EXPECT_TRUE(result == WAIT_OBJECT_0 || result == WAIT_TIMEOUT) << result;
        return result == WAIT_OBJECT_0;
    }

    // One run's own, whatever else runs on this machine.
    std::string const m_name = "QuarnGuardsTest" + std::to_string(::GetCurrentProcessId()) +
                               testing::UnitTest::GetInstance()->current_test_info()->name();
    HANDLE m_mutex;
};

TEST_F(Mutex, AGuardOnAHandleHoldsItWhileItLives)
{
    {
        MutexWrapper const guard(m_mutex);
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

TEST_F(Mutex, AGuardOnANameHoldsTheMutexOfThatName)
{
    {
        MutexWrapper const guard(m_name.c_str());
        EXPECT_FALSE(IsFree());
    }
    EXPECT_TRUE(IsFree());
}

TEST_F(Mutex, GuardsOfOneThreadNest)
{
    MutexWrapper outer(m_mutex);
    {
        MutexWrapper const inner(m_name.c_str());
        EXPECT_FALSE(IsFree());
    }
    EXPECT_FALSE(IsFree());
    outer.Release();
    EXPECT_TRUE(IsFree());
}

TEST_F(Mutex, ReleasedEarlyTheDestructorDoesNothingMore)
{
    MutexWrapper const outer(m_mutex);
    {
        MutexWrapper inner(m_mutex);
        inner.Release();
        inner.Release();
    }
    // A second release would have given up the outer guard's share.
    EXPECT_FALSE(IsFree());
}

TEST_F(Mutex, AFailureToReleaseIsIgnored)
{
    {
        MutexWrapper guard(m_mutex);
        EXPECT_TRUE(::ReleaseMutex(m_mutex));
        ::SetLastError(7777);
        guard.Release();
    }
    EXPECT_EQ(::GetLastError(), 7777U) << "the error of the work before";
    EXPECT_TRUE(IsFree());
}

TEST_F(Mutex, OnlyAGuardOnANameClosesItsHandle)
{
    std::string const name = m_name + "Closed";
    auto const exists = [&] {
        ::SetLastError(ERROR_SUCCESS);
        HANDLE const handle = ::CreateMutexA(nullptr, FALSE, name.c_str());
        bool const result = ::GetLastError() == ERROR_ALREADY_EXISTS;
        ::CloseHandle(handle);
        return result;
    };
    {
        MutexWrapper const guard(name.c_str());
        EXPECT_TRUE(exists());
    }
    {
        MutexWrapper const guard(m_mutex);
    }
    EXPECT_TRUE(IsFree()); // so its handle is still good
}

TEST_F(Mutex, AGuardOnNoMutexGoesOnWithoutALock)
{
    MutexWrapper const handle(HANDLE{nullptr});
    MutexWrapper const null(nullptr);
    MutexWrapper const zero(0);
    MutexWrapper const macro(NULL); // NOLINT(modernize-use-nullptr)
    MutexWrapper const unnamed(static_cast<char const*>(nullptr));
    MutexWrapper const stale(reinterpret_cast<HANDLE>(std::intptr_t{0x7FFFFFF0}));
    EXPECT_TRUE(IsFree());
}

TEST_F(Mutex, IsWaitedForWithoutLimit)
{
    std::atomic<bool> entered = false;
    MutexWrapper guard(m_mutex);
    std::thread other([&] {
        MutexWrapper const waiting(m_name.c_str());
        entered = true;
    });
    ::Sleep(50);
    EXPECT_FALSE(entered);
    guard.Release();
    other.join();
    EXPECT_TRUE(entered);
}

TEST(WaitCursorGuard, ShowsTheWaitCursorAndRestoresTheOneBefore)
{
    ::SetCursor(nullptr);
    {
        WaitCursor const outer;
        {
            WaitCursor const inner;
            EXPECT_EQ(::SetCursor(::LoadCursorA(nullptr, IDC_WAIT)), ::LoadCursorA(nullptr, IDC_WAIT));
        }
        EXPECT_EQ(::SetCursor(::LoadCursorA(nullptr, IDC_WAIT)), ::LoadCursorA(nullptr, IDC_WAIT));
    }
    EXPECT_EQ(::SetCursor(nullptr), nullptr);
}

TEST(Allocation, GivesMemoryThatCanBeUsedAndReleased)
{
    for (std::size_t const size : {std::size_t{1}, std::size_t{17}, std::size_t{1'000'000}}) {
        auto* const bytes = static_cast<unsigned char*>(Quarn::malloc(size));
        ASSERT_NE(bytes, nullptr);
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bytes) % alignof(std::max_align_t), 0U);
        std::memset(bytes, 0xA5, size);
        EXPECT_EQ(bytes[size - 1], 0xA5);
        Quarn::free(bytes);
    }
    Quarn::free(Quarn::malloc(0));
    Quarn::free(nullptr);
}

} // namespace
