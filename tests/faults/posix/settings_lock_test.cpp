// A saver that waits for another one's end in vain. Waiting takes no time here.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "tests/faults/fault_plan.h"
#include "tests/faults/posix/lock_name.h"
#include "tests/platform/scratch_folder.h"

#include <atomic>
#include <climits>
#include <functional>
#include <future>
#include <thread>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyData;
using Names = std::set<std::string>;

bool Save(std::string const& path, std::string const& text)
{
    Quarn::PropertyCollection settings("n", "d");
    settings.SetValue("text", PropertyData(text), true);
    return Quarn::Win32::XMLPropPersist(path).Persist(&settings);
}

// Owns the lock of a file's savers, in a thread of its own, as long as it lives.
class OtherSaver
{
public:
    // Does the work again and again meanwhile.
    explicit OtherSaver(
        std::string const& file, std::function<void()> const& work = [] { std::this_thread::yield(); })
        : m_thread([this, work, name = "Global\\QuarnUtil-" + SettingsLockName(file)] {
              HANDLE const mutex = ::CreateMutexA(nullptr, TRUE, name.c_str());
              m_owns.set_value(mutex != nullptr && ::GetLastError() != ERROR_ALREADY_EXISTS);
              while (!m_end) {
                  work();
              }
              ::ReleaseMutex(mutex);
              ::CloseHandle(mutex);
          })
    {}
    OtherSaver(OtherSaver const&) = delete;
    OtherSaver& operator=(OtherSaver const&) = delete;
    ~OtherSaver()
    {
        m_end = true;
        m_thread.join();
    }

    bool Owns() { return m_owns.get_future().get(); }

private:
    std::promise<bool> m_owns;
    std::atomic<bool> m_end = false;
    std::thread m_thread;
};

TEST(SaveLock, IsWaitedForFiveSecondsAndThenDoneWithout)
{
    constexpr std::uint64_t Second = 1'000'000'000;
    ScratchFolder const scratch;
    std::string const file = scratch / "a.xml";
    std::string const temporary = ".~92c25f7b-1-1.tmp"; // of another saver of this file
    WriteContent(scratch / temporary, "half");
    {
        OtherSaver other(file);
        ASSERT_TRUE(other.Owns());
        std::uint64_t const before = Faults::Waited();
        Faults::Armed const never({Faults::Kind::Files, Faults::Span::One, INT_MAX, 0});
        EXPECT_TRUE(Save(file, "first"));
        EXPECT_GT(Faults::Waited() - before, 4 * Second); // the rest passes by itself
        EXPECT_LT(Faults::Waited() - before, 6 * Second);
    }
    EXPECT_EQ(scratch.Names(), (Names{"a.xml", temporary})) << "it may still be in use";
    std::uint64_t const before = Faults::Waited();
    Faults::Armed const never({Faults::Kind::Files, Faults::Span::One, INT_MAX, 0});
    EXPECT_TRUE(Save(file, "second"));
    EXPECT_EQ(Faults::Waited(), before);
    EXPECT_EQ(scratch.Names(), Names{"a.xml"});
}

TEST(SaveLock, WhoeverDoesWithoutSucceedsBesideItsOwner)
{
    ScratchFolder const scratch;
    std::string const file = scratch / "a.xml";
    OtherSaver other(file, [&file] { EXPECT_TRUE(Save(file, "the owner's")); });
    ASSERT_TRUE(other.Owns());
    Faults::Armed const never({Faults::Kind::Files, Faults::Span::One, INT_MAX, 0});
    for (int i = 0; i < 30; ++i) {
        std::uint64_t const before = Faults::Waited();
        EXPECT_TRUE(Save(file, "the other's"));
        EXPECT_GT(Faults::Waited(), before);
    }
}

} // namespace
