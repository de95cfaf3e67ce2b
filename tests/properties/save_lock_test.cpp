// Savers that do without the lock, and what its owner sees of them.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/save_lock.h"
#include "quarn/properties/win32/temporary_file.h"

#include "tests/platform/scratch_folder.h"
#include "tests/properties/denied_mutex.h"

#include <gtest/gtest.h>

namespace {

using Quarn::detail::SaveLock;
using Quarn::detail::SettingsPath;
using Names = std::set<std::string>;

class DoneWithout : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(Quarn::detail::ResolveSettingsPath(m_scratch / "a.xml", m_path));
        m_sign = Quarn::detail::LockName(m_path) + "-without";
        WriteContent(m_scratch / Temporary, "half");
    }
    // What each saver does first.
    void RemoveTemporaries() const
    {
        SaveLock const lock(m_path);
        EXPECT_TRUE(lock.IsOwned());
        Quarn::detail::RemoveTemporaries(m_path, lock);
    }

    static constexpr char const* Temporary = ".~92c25f7b-1-1.tmp"; // of another saver of this file
    ScratchFolder m_scratch;
    SettingsPath m_path;
    Quarn::string m_sign;
};

TEST_F(DoneWithout, NobodysTemporaryFilesAreRemoved)
{
    RemoveTemporaries();
    EXPECT_EQ(m_scratch.Names(), Names{});
}

TEST_F(DoneWithout, ASaversTemporaryFileStaysAsLongAsThatLives)
{
    HANDLE const sign = ::CreateMutexA(nullptr, FALSE, m_sign.c_str());
    ASSERT_NE(sign, nullptr);
    RemoveTemporaries();
    EXPECT_EQ(m_scratch.Names(), Names{Temporary});
    ::CloseHandle(sign);
    RemoveTemporaries();
    EXPECT_EQ(m_scratch.Names(), Names{});
}

TEST_F(DoneWithout, AnotherUsersSaversTemporaryFileStaysAsLongAsThatLives)
{
    {
        DeniedMutex const sign(m_sign);
        RemoveTemporaries();
        EXPECT_EQ(m_scratch.Names(), Names{Temporary});
    }
    RemoveTemporaries();
    EXPECT_EQ(m_scratch.Names(), Names{});
}

TEST_F(DoneWithout, OneThatIsDeniedTheLockIsSeenByItsOwnerLater)
{
    DeniedMutex lock(Quarn::detail::LockName(m_path));
    SaveLock const without(m_path);
    EXPECT_FALSE(without.IsOwned());
    Quarn::detail::RemoveTemporaries(m_path, without);
    EXPECT_EQ(m_scratch.Names(), Names{Temporary});
    lock.Close();
    RemoveTemporaries();
    EXPECT_EQ(m_scratch.Names(), Names{Temporary});
}

} // namespace
