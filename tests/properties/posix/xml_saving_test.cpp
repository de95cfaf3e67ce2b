// What saving does with links, permissions and refusals, as only POSIX lets a test arrange them.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "tests/platform/scratch_folder.h"
#include "tests/properties/posix/restricted_child.h"

#include <cstdlib>
#include <functional>

#include <grp.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

bool SaveText(Quarn::string const& path, std::string const& text)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue("text", PropertyData(text), true);
    return XMLPropPersist(path).Persist(&collection);
}

struct ::stat Status(std::string const& path)
{
    struct ::stat status = {};
    EXPECT_EQ(::lstat(path.c_str(), &status), 0) << path;
    return status;
}

using Names = std::set<std::string>;

TEST(XmlSavingOnPosix, KeepsModeAndOwner)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(SaveText(scratch / "a.xml", "1"));
    for (::mode_t const mode : {0600U, 0640U, 0666U, 0664U}) {
        ASSERT_EQ(::chmod((scratch / "a.xml").c_str(), mode), 0);
        EXPECT_TRUE(SaveText(scratch / "a.xml", "2"));
        EXPECT_EQ(Status(scratch / "a.xml").st_mode & 07777U, mode);
    }
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown((scratch / "a.xml").c_str(), 12345, 54321), 0);
        EXPECT_TRUE(SaveText(scratch / "a.xml", "3"));
        EXPECT_EQ(Status(scratch / "a.xml").st_uid, 12345U);
        EXPECT_EQ(Status(scratch / "a.xml").st_gid, 54321U);
    }
}

TEST(XmlSavingOnPosix, FollowsSymbolicLinks)
{
    ScratchFolder const scratch;
    std::filesystem::create_directory(std::string(scratch / "real"));
    ASSERT_TRUE(SaveText(scratch / "real/a.xml", "1"));
    std::filesystem::create_symlink("real/a.xml", std::string(scratch / "link.xml"));
    std::filesystem::create_symlink("link.xml", std::string(scratch / "second.xml"));
    std::filesystem::create_directory_symlink("real", std::string(scratch / "folder"));
    for (char const* const name : {"link.xml", "second.xml", "folder/a.xml", "folder/new.xml"}) {
        EXPECT_TRUE(SaveText(scratch / name, name)) << name;
    }
    EXPECT_TRUE(S_ISLNK(Status(scratch / "link.xml").st_mode));
    EXPECT_TRUE(S_ISLNK(Status(scratch / "second.xml").st_mode));
    EXPECT_TRUE(S_ISREG(Status(scratch / "real/a.xml").st_mode));
    EXPECT_NE(ContentOf(scratch / "real/a.xml").find("folder/a.xml"), std::string::npos);
    EXPECT_TRUE(S_ISREG(Status(scratch / "real/new.xml").st_mode));
    EXPECT_EQ(scratch.Names(), (Names{"real", "link.xml", "second.xml", "folder"}));
}

TEST(XmlSavingOnPosix, ALinkThatLeadsNowhereYetGetsItsFile)
{
    ScratchFolder const scratch;
    scratch.MakeFolder("real");
    std::filesystem::create_symlink("real/a.xml", scratch / "link.xml");
    std::filesystem::create_symlink("link.xml", scratch / "second.xml");
    std::filesystem::create_symlink(std::filesystem::absolute(scratch / "real/b.xml"),
                                    scratch / "absolute.xml");
    std::filesystem::create_symlink("missing/c.xml", scratch / "lost.xml");
    std::filesystem::create_symlink("loop.xml", scratch / "loop.xml");
    EXPECT_TRUE(SaveText(scratch / "second.xml", "1"));
    EXPECT_NE(ContentOf(scratch / "real/a.xml").find(">1<"), std::string::npos);
    EXPECT_TRUE(SaveText(scratch / "absolute.xml", "2"));
    EXPECT_NE(ContentOf(scratch / "real/b.xml").find(">2<"), std::string::npos);
    EXPECT_FALSE(SaveText(scratch / "lost.xml", "3"));
    EXPECT_FALSE(SaveText(scratch / "loop.xml", "4"));
    for (char const* const name : {"link.xml", "second.xml", "absolute.xml", "lost.xml", "loop.xml"}) {
        EXPECT_TRUE(S_ISLNK(Status(scratch / name).st_mode)) << name;
    }
    EXPECT_EQ(scratch.Names(),
              (Names{"real", "link.xml", "second.xml", "absolute.xml", "lost.xml", "loop.xml"}));
}

TEST(XmlSavingOnPosix, KeepsTheGroupWhereTheOwnerCannotBeKept)
{
    if (::geteuid() != 0) {
        return; // nobody else can make a file of another owner
    }
    ScratchFolder const scratch;
    ASSERT_TRUE(SaveText(scratch / "a.xml", "1"));
    ASSERT_EQ(::chmod((scratch / "a.xml").c_str(), 0660), 0);
    ASSERT_EQ(::chown((scratch / "a.xml").c_str(), 12345, 54321), 0);
    EXPECT_TRUE(InChild([&scratch] {
        ::gid_t const group = 54321;
        EXPECT_EQ(::setgroups(1, &group), 0);
        GiveUp(1U << CAP_CHOWN);
        return SaveText(scratch / "a.xml", "2");
    }));
    struct ::stat const status = Status(scratch / "a.xml");
    EXPECT_EQ(status.st_uid, 0U);
    EXPECT_EQ(status.st_gid, 54321U);
    EXPECT_EQ(status.st_mode & 07777U, 0660U);
}

TEST(XmlSavingOnPosix, ADeviceIsNotReplaced)
{
    ScratchFolder const scratch;
    std::filesystem::create_symlink("/dev/null", std::string(scratch / "null.xml"));
    struct ::stat const before = Status("/dev/null");
    EXPECT_FALSE(SaveText(scratch / "null.xml", "x"));
    EXPECT_EQ(Status("/dev/null").st_ino, before.st_ino);
    PropertyCollection collection;
    EXPECT_FALSE(XMLPropPersist(scratch / "null.xml").Populate(&collection));
}

TEST(XmlSavingOnPosix, WithoutSpaceTheOldFileStays)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(SaveText(scratch / "a.xml", "old"));
    std::string const old = ContentOf(scratch / "a.xml");
    EXPECT_TRUE(InChild([&scratch] {
        LimitFileSize(1000);
        return !SaveText(scratch / "a.xml", std::string(5000, 'x')) &&
               !SaveText(scratch / "new.xml", std::string(5000, 'x')) && SaveText(scratch / "b.xml", "short");
    }));
    EXPECT_EQ(ContentOf(scratch / "a.xml"), old);
    EXPECT_EQ(scratch.Names(), (Names{"a.xml", "b.xml"}));
}

// A folder where nothing may be created, with a file that may be written.
class XmlSavingInPlace : public ::testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directory(std::string(m_scratch / "folder"));
        std::filesystem::create_directory(std::string(m_scratch / "data"));
        m_path = m_scratch / "folder/a.xml";
        ASSERT_TRUE(SaveText(m_path, "old"));
        m_old = ContentOf(m_path);
        m_inode = Status(m_path).st_ino;
        ASSERT_EQ(::chmod((m_scratch / "folder").c_str(), 0555), 0);
    }
    void TearDown() override { EXPECT_EQ(::chmod((m_scratch / "folder").c_str(), 0755), 0); }

    bool SaveInChild(
        std::string const& text, std::function<void()> const& prepare = [] {})
    {
        std::string const data = std::filesystem::absolute(m_scratch.Path()).string() + "/data";
        return InChild([&] {
            ::setenv("XDG_DATA_HOME", data.c_str(), 1);
            GiveUpOverrides();
            prepare();
            return SaveText(m_path, text);
        });
    }

    std::size_t Copies() const
    {
        std::filesystem::directory_iterator const all(std::string(m_scratch / "data"));
        return static_cast<std::size_t>(std::distance(begin(all), end(all)));
    }

    ScratchFolder const m_scratch;
    Quarn::string m_path;
    std::string m_old;
    ::ino_t m_inode = 0;
};

TEST_F(XmlSavingInPlace, OverwritesTheFileAndRemovesTheCopy)
{
    EXPECT_TRUE(SaveInChild("new"));
    EXPECT_NE(ContentOf(m_path).find(">new<"), std::string::npos);
    EXPECT_EQ(Status(m_path).st_ino, m_inode);
    EXPECT_EQ(Copies(), 0U);
    EXPECT_TRUE(SaveInChild(std::string(10000, 'x')));
    EXPECT_TRUE(SaveInChild("short"));
    EXPECT_EQ(ContentOf(m_path).size(), m_old.size() + 2);
}

TEST_F(XmlSavingInPlace, PutsTheOldContentBackWhereTheNewDoesNotFit)
{
    EXPECT_FALSE(SaveInChild(std::string(5000, 'x'), [] { LimitFileSize(1000); }));
    EXPECT_EQ(ContentOf(m_path), m_old);
    EXPECT_EQ(Copies(), 0U);
}

TEST_F(XmlSavingInPlace, WithoutACopyTheFileIsNotTouched)
{
    EXPECT_FALSE(SaveInChild("new", [this] { ::chmod((m_scratch / "data").c_str(), 0555); }));
    EXPECT_EQ(ContentOf(m_path), m_old);
    ASSERT_EQ(::chmod((m_scratch / "data").c_str(), 0755), 0);
}

TEST_F(XmlSavingInPlace, LackOfSpaceIsNoReasonToOverwrite)
{
    ASSERT_EQ(::chmod((m_scratch / "folder").c_str(), 0755), 0);
    EXPECT_FALSE(SaveInChild(std::string(5000, 'x'), [] { LimitFileSize(1000); }));
    EXPECT_EQ(ContentOf(m_path), m_old);
}

TEST_F(XmlSavingInPlace, AFileThatDidNotLoadIsNotOverwritten)
{
    WriteContent(m_path, "broken");
    EXPECT_TRUE(InChild([this] {
        GiveUpOverrides();
        PropertyCollection collection("Root", "Quarn_Properties");
        XMLPropPersist const file(m_path);
        return !file.Populate(&collection) && !file.Persist(&collection);
    }));
    EXPECT_EQ(ContentOf(m_path), "broken");
}

TEST_F(XmlSavingInPlace, AMissingFileIsNotCreated)
{
    EXPECT_TRUE(InChild([this] {
        GiveUpOverrides();
        return !SaveText(m_scratch / "folder/new.xml", "new");
    }));
}

TEST(XmlSavingOnPosix, AFileThatMayNotBeReadGetsASecondName)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(SaveText(scratch / "a.xml", "old"));
    std::string const old = ContentOf(scratch / "a.xml");
    ASSERT_EQ(::chmod((scratch / "a.xml").c_str(), 0200), 0);
    EXPECT_TRUE(InChild([&scratch] {
        GiveUpOverrides();
        PropertyCollection collection("Root", "Quarn_Properties");
        XMLPropPersist const file(scratch / "a.xml");
        return !file.Populate(&collection) && file.Persist(&collection);
    }));
    Names const names = scratch.Names();
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(Status(scratch / "a.xml").st_mode & 07777U, 0200U);
    for (std::string const& name : names) {
        ASSERT_EQ(::chmod((scratch / name).c_str(), 0600), 0);
    }
    EXPECT_EQ(ContentOf(scratch / *names.rbegin()), old);
}

} // namespace
