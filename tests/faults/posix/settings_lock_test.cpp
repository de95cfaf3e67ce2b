// A saver that waits for another one's end in vain. Waiting takes no time here.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "tests/faults/fault_plan.h"
#include "tests/faults/posix/lock_name.h"
#include "tests/platform/scratch_folder.h"

#include <climits>
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
    explicit OtherSaver(std::string const& file)
        : m_thread([this, name = "Global\\QuarnUtil-" + SettingsLockName(file)] {
              HANDLE const mutex = ::CreateMutexA(nullptr, TRUE, name.c_str());
              m_owns.set_value(mutex != nullptr && ::GetLastError() != ERROR_ALREADY_EXISTS);
              m_end.get_future().wait();
              ::ReleaseMutex(mutex);
              ::CloseHandle(mutex);
          })
    {}
    OtherSaver(OtherSaver const&) = delete;
    OtherSaver& operator=(OtherSaver const&) = delete;
    ~OtherSaver()
    {
        m_end.set_value();
        m_thread.join();
    }

    bool Owns() { return m_owns.get_future().get(); }

private:
    std::promise<bool> m_owns;
    std::promise<void> m_end;
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

} // namespace
