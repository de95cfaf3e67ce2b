// The mutex under which modules are loaded and looked into, between threads and between processes.
#include "quarn/platform/guards.h"
#include "quarn/platform/win32_library.h"
#include "quarn/text/exception.h"

#include "platform/child_process.h"
#include "platform/companions.h"
#include "tests/scale.h"

#include <atomic>
#include <functional>
#include <memory>
#include <thread>

namespace {

using Win32Quarn::Win32Library;

constexpr char const* Name = "Win32LibraryMutex";

// More than any other program of the tests, on this machine at the same time, keeps it.
constexpr DWORD Patience = 60'000;

class LibraryMutex : public Companions
{
protected:
    HANDLE const m_mutex = ::CreateMutexA(nullptr, FALSE, Name);
    DWORD const m_creation = ::GetLastError();

    ~LibraryMutex() override { ::CloseHandle(m_mutex); }

    // Whether another thread gets it.
    bool IsFree() const
    {
        DWORD result = WAIT_FAILED;
        std::thread([&] {
            result = ::WaitForSingleObject(m_mutex, Patience);
            ::ReleaseMutex(m_mutex);
        }).join();
        return result == WAIT_OBJECT_0;
    }

    // The operations that take it.
    std::vector<std::function<void()>> Operations(Win32Library& library) const
    {
        return {[&] { library.Load(); },
                [&] { library.Unload(); },
                [&] { library.GetFunction("CompanionNumber"); },
                [&] { library.GetFunction(7); },
                [&, name = m_name] { Win32Quarn::LoadLib(name); },
                [] { Win32Quarn::LoadLib(""); }};
    }
};

TEST_F(LibraryMutex, ExistsAsSoonAsTheLibraryIsThere)
{
    ASSERT_NE(m_mutex, nullptr);
    EXPECT_EQ(m_creation, static_cast<DWORD>(ERROR_ALREADY_EXISTS));
    EXPECT_TRUE(IsFree());
}

TEST_F(LibraryMutex, IsHeldByEveryOperation)
{
    Win32Library library(Put("1"), "");
    std::atomic<int> done = 0;
    std::vector<std::thread> threads;
    {
        Win32Quarn::MutexWrapper const guard(m_mutex);
        for (auto const& operation : Operations(library)) {
            threads.emplace_back([&done, operation] {
                operation();
                ++done;
            });
        }
        ::Sleep(100);
        EXPECT_EQ(done, 0);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(done, 6);
    EXPECT_TRUE(library.IsLoaded());
}

TEST_F(LibraryMutex, IsFreeAfterEveryOperation)
{
    Win32Library library(Put("1"), "");
    Win32Library missing(m_name, "");
    for (Win32Library* const each : {&library, &missing}) {
        for (auto const& operation : Operations(*each)) {
            operation();
            EXPECT_TRUE(IsFree());
        }
    }
    InconsistentLibrary inconsistent;
    EXPECT_THROW(inconsistent.Load(), Quarn::QuarnException);
    EXPECT_TRUE(IsFree());
}

TEST_F(LibraryMutex, DoesNotStopItsOwner)
{
    Win32Quarn::MutexWrapper const guard(m_mutex);
    Win32Library library(Put("1"), "");
    EXPECT_TRUE(library.Load());
    EXPECT_NE(library.GetFunction("CompanionNumber"), nullptr);
}

TEST_F(LibraryMutex, LeavesTheErrorOfTheLastAttempt)
{
    EXPECT_EQ(ErrorOf([&] { Win32Quarn::LoadLib(m_name); }), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

class LibraryMutexProcess : public LibraryMutex
{
protected:
    // A process that holds it, until it is killed or the file "go" exists.
    std::vector<std::string> Hold() const { return {"hold", Name, m_here}; }
    // A process that loads the module and tells before and afterwards.
    std::vector<std::string> Load() const
    {
        return {"library", "", "mark=" + m_here + "/started", "load=" + Put("3"),
                "mark=" + m_here + "/loaded"};
    }
    bool IsThere(std::string const& file) const { return std::filesystem::exists(m_folder / file); }
};

TEST_F(LibraryMutexProcess, MakesOtherProcessesWait)
{
    ChildProcess holder(Hold());
    ASSERT_TRUE(WaitForFile(m_folder / "held"));
    ChildProcess other(Load());
    ASSERT_TRUE(WaitForFile(m_folder / "started")) << "a program starts without waiting";
    ::Sleep(100);
    EXPECT_FALSE(IsThere("loaded"));
    m_folder.Make("go");
    EXPECT_EQ(other.Wait(), 3);
    EXPECT_TRUE(IsThere("loaded"));
    EXPECT_EQ(holder.Wait(), 0);
}

TEST_F(LibraryMutexProcess, AKilledHolderLetsTheOthersGoOn)
{
    ChildProcess holder(Hold());
    ASSERT_TRUE(WaitForFile(m_folder / "held"));
    ChildProcess other(Load());
    ASSERT_TRUE(WaitForFile(m_folder / "started"));
    ::Sleep(100);
    EXPECT_FALSE(IsThere("loaded"));
    holder.Kill();
    EXPECT_EQ(other.Wait(), 3);
    EXPECT_TRUE(IsFree());
}

TEST_F(LibraryMutexProcess, EightLoadersOfOneCompanionAllGetIt)
{
    std::string const count = std::to_string(Times("QUARN_SAVES", 25));
    std::string const path = Put("3");
    std::vector<std::unique_ptr<ChildProcess>> loaders;
    for (int i = 0; i < 8; ++i) {
        loaders.push_back(std::make_unique<ChildProcess>(std::vector<std::string>{"loader", path, count}));
    }
    for (auto const& loader : loaders) {
        EXPECT_EQ(loader->Wait(), 0);
    }
    EXPECT_TRUE(IsFree());
    ShowFigure("8 loaders of a companion library, ", count, " times each");
}

} // namespace
