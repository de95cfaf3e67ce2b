// Replacing a settings file: nothing is lost, nothing is left behind, nothing is half.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/xml_persist.h"

#include "tests/platform/scratch_folder.h"
#include "tree_dump.h"

#include <chrono>
#include <thread>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

PropertyCollection Tree(std::string const& text)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue("text", PropertyData(text), true);
    return collection;
}

bool Save(Quarn::string const& path, std::string const& text)
{
    PropertyCollection const collection = Tree(text);
    return XMLPropPersist(path).Persist(&collection);
}

std::string LoadText(Quarn::string const& path)
{
    PropertyCollection collection;
    EXPECT_TRUE(XMLPropPersist(path).Populate(&collection));
    return collection.GetValueString("text", "missing");
}

using Names = std::set<std::string>;

TEST(XmlSaving, LeavesNothingButTheFile)
{
    ScratchFolder const scratch;
    for (char const* const name :
         {"a.xml", "noextension", ".xml", "a.tmp", "two.dots.xml", "trailing_1.xml"}) {
        EXPECT_TRUE(Save(scratch / name, "1")) << name;
        EXPECT_TRUE(Save(scratch / name, "2")) << name;
        EXPECT_EQ(LoadText(scratch / name), "2") << name;
    }
    EXPECT_EQ(scratch.Names(),
              (Names{"a.xml", "noextension", ".xml", "a.tmp", "two.dots.xml", "trailing_1.xml"}));
}

TEST(XmlSaving, RelativeAbsoluteAndDottedPathsLeadToTheSameFile)
{
    ScratchFolder const scratch;
    std::string const absolute = std::filesystem::absolute(scratch.Path()).string();
    for (std::string const& path :
         {scratch.Path() + "/a.xml", absolute + "/a.xml", scratch.Path() + "/./a.xml",
          scratch.Path() + "/../" + scratch.Path() + "/a.xml"}) {
        EXPECT_TRUE(Save(path, path));
        EXPECT_EQ(LoadText(scratch / "a.xml"), path);
    }
    EXPECT_EQ(scratch.Names(), Names{"a.xml"});
}

TEST(XmlSaving, ANewFileIsShorterOrLongerThanTheOld)
{
    ScratchFolder const scratch;
    for (std::size_t size : {10U, 100000U, 10U, 0U}) {
        EXPECT_TRUE(Save(scratch / "a.xml", std::string(size, 'x')));
        EXPECT_EQ(LoadText(scratch / "a.xml"), std::string(size, 'x'));
    }
}

TEST(XmlSaving, AReadOnlyFileIsNotReplaced)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", "old"));
    std::filesystem::path const path(std::string(scratch / "a.xml"));
    using std::filesystem::perms;
    std::filesystem::permissions(path, perms::owner_read, std::filesystem::perm_options::replace);
    EXPECT_FALSE(Save(scratch / "a.xml", "new"));
    EXPECT_EQ(LoadText(scratch / "a.xml"), "old");
    std::filesystem::permissions(path, perms::owner_read | perms::owner_write);
    EXPECT_TRUE(Save(scratch / "a.xml", "new"));
    EXPECT_EQ(scratch.Names(), Names{"a.xml"});
}

TEST(XmlSaving, AFolderUnderTheNameIsNotReplaced)
{
    ScratchFolder const scratch;
    std::filesystem::create_directory(std::string(scratch / "a.xml"));
    PropertyCollection collection = Tree("new");
    XMLPropPersist const file(scratch / "a.xml");
    EXPECT_FALSE(file.Persist(&collection));
    EXPECT_FALSE(file.Populate(&collection));
    EXPECT_FALSE(file.Persist(&collection));
    EXPECT_TRUE(std::filesystem::is_directory(std::string(scratch / "a.xml")));
    EXPECT_EQ(scratch.Names(), Names{"a.xml"});
}

#ifndef _WIN32
TEST(XmlSaving, AnOpenReaderIsInNobodysWay)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", "old"));
    std::string const old = ContentOf(scratch / "a.xml");
    HANDLE const reader = ::CreateFileA((scratch / "a.xml").c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(Save(scratch / "a.xml", "new"));
    std::string bytes(old.size() + 100, '\0');
    DWORD read = 0;
    EXPECT_TRUE(::ReadFile(reader, bytes.data(), static_cast<DWORD>(bytes.size()), &read, nullptr));
    EXPECT_EQ(bytes.substr(0, read), old);
    ::CloseHandle(reader);
    EXPECT_EQ(LoadText(scratch / "a.xml"), "new");
}
#endif

// Windows refuses to replace a file that is open; a save waits two seconds for it.
TEST(XmlSaving, AReaderThatClosesTheFileSoonIsInNobodysWay)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", "old"));
    HANDLE const reader = ::CreateFileA((scratch / "a.xml").c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(reader, INVALID_HANDLE_VALUE);
    std::thread closer([reader] {
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        ::CloseHandle(reader);
    });
    EXPECT_TRUE(Save(scratch / "a.xml", "new"));
    closer.join();
    EXPECT_EQ(LoadText(scratch / "a.xml"), "new");
}

TEST(XmlSaving, ADeadSaversTemporaryFilesGoWithTheNextSaveAndNoOthers)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", "1"));
    // What a saver of this file and of another one would leave; the names are hashes of "a.xml" and "b.xml".
    WriteContent(scratch / ".~92c25f7b-1-1.tmp", "half");
    WriteContent(scratch / ".~92c25f7b-ffff-2.tmp", "half");
    WriteContent(scratch / ".~7f09615a-1-1.tmp", "half");
    EXPECT_TRUE(Save(scratch / "a.xml", "2"));
    EXPECT_EQ(scratch.Names(), (Names{"a.xml", ".~7f09615a-1-1.tmp"}));
    EXPECT_TRUE(Save(scratch / "b.xml", "2"));
    EXPECT_EQ(scratch.Names(), (Names{"a.xml", "b.xml"}));
}

// The names of second names: the base, an underscore, the stamp in lower-case hexadecimal, the extension.
std::vector<std::string> SecondNames(ScratchFolder const& scratch, std::string const& base,
                                     std::string const& extension)
{
    std::vector<std::string> found;
    for (std::string const& name : scratch.Names()) {
        if (name.rfind(base + "_", 0) == 0) {
            std::string const stamp =
                name.substr(base.size() + 1, name.size() - base.size() - 1 - extension.size());
            EXPECT_EQ(stamp.find_first_not_of("0123456789abcdef"), std::string::npos) << name;
            EXPECT_EQ(name, base + "_" + stamp + extension);
            auto const now = std::chrono::duration_cast<std::chrono::seconds>(
                                 std::chrono::system_clock::now().time_since_epoch())
                                 .count();
            auto const expected = static_cast<std::uint32_t>(now - 1208357070);
            EXPECT_LE(expected - 60, std::stoul(stamp, nullptr, 16)) << name;
            EXPECT_GE(expected + 60, std::stoul(stamp, nullptr, 16)) << name;
            found.push_back(name);
        }
    }
    return found;
}

TEST(XmlSaving, AFileThatDoesNotLoadGetsASecondNameOnce)
{
    ScratchFolder const scratch;
    PropertyCollection collection = Tree("new");
    for (char const* const name : {"a.xml", "noextension"}) {
        std::string const base = std::filesystem::path(name).stem().string();
        std::string const extension = std::filesystem::path(name).extension().string();
        WriteContent(scratch / name, "broken");
        XMLPropPersist const file(scratch / name);
        EXPECT_FALSE(file.Populate(&collection));
        EXPECT_TRUE(file.Persist(&collection));
        std::vector<std::string> const names = SecondNames(scratch, base, extension);
        ASSERT_EQ(names.size(), 1U);
        EXPECT_EQ(ContentOf(scratch / names[0]), "broken");
        EXPECT_EQ(LoadText(scratch / name), "new");
        EXPECT_TRUE(file.Persist(&collection));
        EXPECT_TRUE(file.Populate(&collection));
        EXPECT_TRUE(file.Persist(&collection));
        EXPECT_EQ(SecondNames(scratch, base, extension).size(), 1U);
    }
}

TEST(XmlSaving, AFileThatLoadsInPartGetsASecondNameToo)
{
    ScratchFolder const scratch;
    std::string const partial = "<Quarn_Properties><Key Name='n'><Value/></Key></Quarn_Properties>";
    WriteContent(scratch / "a.xml", partial);
    XMLPropPersist const file(scratch / "a.xml");
    PropertyCollection collection;
    ASSERT_TRUE(file.Populate(&collection));
    EXPECT_TRUE(file.Persist(&collection));
    std::vector<std::string> const names = SecondNames(scratch, "a", ".xml");
    ASSERT_EQ(names.size(), 1U);
    EXPECT_EQ(ContentOf(scratch / names[0]), partial);
}

TEST(XmlSaving, SecondNamesThatAreTakenStay)
{
    ScratchFolder const scratch;
    PropertyCollection collection = Tree("new");
    XMLPropPersist const file(scratch / "a.xml");
    for (std::size_t count = 1; count <= 4; ++count) {
        std::string const broken = "broken " + std::to_string(count);
        WriteContent(scratch / "a.xml", broken);
        EXPECT_FALSE(file.Populate(&collection));
        EXPECT_TRUE(file.Persist(&collection));
        EXPECT_EQ(SecondNames(scratch, "a", ".xml").size(), count);
    }
    Names contents;
    for (std::string const& name : SecondNames(scratch, "a", ".xml")) {
        contents.insert(ContentOf(scratch / name));
    }
    EXPECT_EQ(contents, (Names{"broken 1", "broken 2", "broken 3", "broken 4"}));
}

TEST(XmlSaving, ACopyKnowsThatTheFileDidNotLoad)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "a.xml", "broken");
    PropertyCollection collection = Tree("new");
    XMLPropPersist const file(scratch / "a.xml");
    EXPECT_FALSE(file.Populate(&collection));
    XMLPropPersist const copy(file);
    EXPECT_TRUE(copy.Persist(&collection));
    EXPECT_EQ(SecondNames(scratch, "a", ".xml").size(), 1U);
}

TEST(XmlSaving, ThreadsSaveAndLoadOneFile)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", std::string(10000, '0')));
    std::vector<std::thread> threads;
    for (char digit = '1'; digit <= '2'; ++digit) {
        threads.emplace_back([&scratch, digit] {
            for (int i = 0; i < 20; ++i) {
                EXPECT_TRUE(Save(scratch / "a.xml", std::string(10000, digit)));
            }
        });
        threads.emplace_back([&scratch] {
            for (int i = 0; i < 40; ++i) {
                std::string const text = LoadText(scratch / "a.xml");
                EXPECT_EQ(text, std::string(10000, text[0]));
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(scratch.Names(), Names{"a.xml"});
}

} // namespace
