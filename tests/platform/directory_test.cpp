// Creating directories with their parents.
#include "quarn/platform/directory.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;
using Win32Quarn::CreateDirectoryA;

class Directory : public testing::Test
{
protected:
    Directory()
    {
        fs::remove_all(m_root);
        fs::create_directory(m_root);
    }
    ~Directory() override { fs::remove_all(m_root); }

    bool Create(std::string const& path) const { return CreateDirectoryA((m_root + "/" + path).c_str()); }
    bool IsThere(std::string const& path) const { return fs::is_directory(m_root + "/" + path); }
    bool IsEmpty() const { return fs::is_empty(m_root); }

    std::string const m_root =
        std::string("directory_test_") + testing::UnitTest::GetInstance()->current_test_info()->name();
};

TEST_F(Directory, CreatesAllParents)
{
    EXPECT_TRUE(Create("a/b/c"));
    EXPECT_TRUE(IsThere("a/b/c"));
}

TEST_F(Directory, LevelsThatExistAreFine)
{
    EXPECT_TRUE(Create("a/b"));
    EXPECT_TRUE(Create("a/b/c"));
    EXPECT_TRUE(Create("a/b/c"));
    EXPECT_TRUE(IsThere("a/b/c"));
}

TEST_F(Directory, TakesAnAbsolutePath)
{
    EXPECT_TRUE(CreateDirectoryA(fs::absolute(m_root + "/a/b").string().c_str()));
    EXPECT_TRUE(IsThere("a/b"));
}

TEST_F(Directory, TakesSeparatorsAtTheEndAndDoubled)
{
    EXPECT_TRUE(Create("a//b///"));
    EXPECT_TRUE(IsThere("a/b"));
}

TEST_F(Directory, DropsTheExtensionDeliberately)
{
    EXPECT_TRUE(Create("data.old"));
    EXPECT_TRUE(IsThere("data"));
    EXPECT_FALSE(fs::exists(m_root + "/data.old"));
    EXPECT_TRUE(Create("one.two.three"));
    EXPECT_TRUE(IsThere("one.two"));
}

TEST_F(Directory, KeepsDotsOfParentsAndBeforeASeparator)
{
    EXPECT_TRUE(Create("v1.2/sub"));
    EXPECT_TRUE(IsThere("v1.2/sub"));
    EXPECT_TRUE(Create("data.old/"));
    EXPECT_TRUE(IsThere("data.old"));
}

TEST_F(Directory, ANameThatIsAllExtensionMakesOnlyTheParents)
{
    EXPECT_TRUE(Create("a/.hidden"));
    EXPECT_TRUE(IsThere("a"));
    EXPECT_TRUE(fs::is_empty(m_root + "/a"));
}

TEST_F(Directory, NothingToCreateIsTrue)
{
    EXPECT_TRUE(CreateDirectoryA(""));
    EXPECT_TRUE(CreateDirectoryA(nullptr));
    EXPECT_TRUE(CreateDirectoryA("/"));
    EXPECT_TRUE(Create(""));
    EXPECT_TRUE(Create("."));
    EXPECT_TRUE(IsEmpty());
}

TEST_F(Directory, AFileInTheWayStopsTheWalk)
{
    std::ofstream(m_root + "/file") << "content";
    EXPECT_FALSE(Create("file/below"));
    EXPECT_FALSE(Create("file/below/more"));
    // As the last level it exists, and that is enough.
    EXPECT_TRUE(Create("file"));
    EXPECT_TRUE(fs::is_regular_file(m_root + "/file"));
}

TEST_F(Directory, LevelsMadeBeforeAFailureStay)
{
    std::string const tooLong(300, 'n');
    EXPECT_FALSE(Create("a/b/" + tooLong + "/c"));
    EXPECT_TRUE(IsThere("a/b"));
}

TEST_F(Directory, TakesNamesOfAnyBytes)
{
    EXPECT_TRUE(Create("with space/and,comma/it's"));
    EXPECT_TRUE(IsThere("with space/and,comma/it's"));
}

#if defined(_WIN32)

TEST_F(Directory, BothSlashesSeparate)
{
    EXPECT_TRUE(Create("a\\b/c"));
    EXPECT_TRUE(IsThere("a/b/c"));
}

TEST_F(Directory, ADriveMayStandInFront)
{
    fs::path const path = fs::absolute(m_root + "/a/b");
    ASSERT_TRUE(path.has_root_name());
    EXPECT_TRUE(CreateDirectoryA(path.generic_string().c_str()));
    EXPECT_TRUE(IsThere("a/b"));
    // Below the drive's current directory.
    EXPECT_TRUE(CreateDirectoryA((path.root_name().string() + m_root + "/c").c_str()));
    EXPECT_TRUE(IsThere("c"));
}

#else

TEST_F(Directory, ABackslashAndAColonAreOrdinaryCharacters)
{
    EXPECT_TRUE(Create("a\\b/c:d"));
    EXPECT_TRUE(IsThere("a\\b/c:d"));
}

#endif

} // namespace
