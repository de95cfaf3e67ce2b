// Named mutexes between processes, the same on both systems.
#include "platform/child_process.h"
#include "platform/scratch_folder.h"

#include <memory>
#include <vector>

#include <gtest/gtest.h>

namespace {

// A name for this test alone, and the folder in which its processes meet.
class SeamMutexProcess : public testing::Test
{
protected:
    std::string const m_name = "Global\\quarn-test-process-" + std::to_string(::GetCurrentProcessId());
    ScratchFolder const m_folder;
    HANDLE const m_mutex = ::CreateMutexA(nullptr, FALSE, m_name.c_str());

    ~SeamMutexProcess() override { ::CloseHandle(m_mutex); }

    std::vector<std::string> Hold() const { return {"hold", m_name, m_folder / "."}; }
};

TEST_F(SeamMutexProcess, OneHoldsAndTheOtherWaits)
{
    ChildProcess holder(Hold());
    ASSERT_TRUE(WaitForFile(m_folder / "held"));
    EXPECT_EQ(::WaitForSingleObject(m_mutex, 0), WAIT_TIMEOUT);
    EXPECT_EQ(::WaitForSingleObject(m_mutex, 50), WAIT_TIMEOUT);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::ReleaseMutex(m_mutex)); }), ERROR_NOT_OWNER);
    m_folder.Make("go");
    EXPECT_EQ(::WaitForSingleObject(m_mutex, INFINITE), WAIT_OBJECT_0);
    EXPECT_EQ(holder.Wait(), 0);
    EXPECT_TRUE(::ReleaseMutex(m_mutex));
}

TEST_F(SeamMutexProcess, AKilledHolderAbandonsIt)
{
    for (DWORD const wait : {DWORD{INFINITE}, DWORD{60'000}}) {
        ChildProcess holder(Hold());
        ASSERT_TRUE(WaitForFile(m_folder / "held"));
        EXPECT_EQ(::WaitForSingleObject(m_mutex, 0), WAIT_TIMEOUT);
        holder.Kill();
        EXPECT_EQ(::WaitForSingleObject(m_mutex, wait), WAIT_ABANDONED);
        EXPECT_TRUE(::ReleaseMutex(m_mutex));
        EXPECT_EQ(::WaitForSingleObject(m_mutex, 0), WAIT_OBJECT_0) << "told once";
        EXPECT_TRUE(::ReleaseMutex(m_mutex));
        EXPECT_TRUE(::DeleteFileA((m_folder / "held").c_str()));
    }
}

TEST_F(SeamMutexProcess, AMutexThatOnlyAKilledProcessHadIsNewAgain)
{
    std::string const name = m_name + "-alone";
    {
        ChildProcess holder({"hold", name, m_folder / "."});
        ASSERT_TRUE(WaitForFile(m_folder / "held"));
    }
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name.c_str());
    EXPECT_EQ(::GetLastError(), ERROR_SUCCESS);
    EXPECT_EQ(::WaitForSingleObject(mutex, 0), WAIT_OBJECT_0);
    EXPECT_TRUE(::ReleaseMutex(mutex));
    ::CloseHandle(mutex);
}

TEST_F(SeamMutexProcess, OthersLearnThatItExists)
{
    EXPECT_EQ(ChildProcess({"exists", m_name}).Wait(), 1);
    EXPECT_EQ(ChildProcess({"exists", m_name + "-other"}).Wait(), 0);
    EXPECT_EQ(::WaitForSingleObject(m_mutex, 0), WAIT_OBJECT_0);
    EXPECT_EQ(ChildProcess({"exists", m_name}).Wait(), 1);
    EXPECT_TRUE(::ReleaseMutex(m_mutex));
}

TEST_F(SeamMutexProcess, ThreeProcessesCountTogether)
{
    std::string const path = m_folder.Make("count", "0");
    std::vector<std::unique_ptr<ChildProcess>> children;
    for (int i = 0; i < 3; ++i) {
        children.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{"count", m_name + "-count", path, "100"}));
    }
    for (auto const& child : children) {
        EXPECT_EQ(child->Wait(), 0);
    }
    EXPECT_EQ(ContentOf(path), "300");
}

} // namespace
