// Where modules are found: modules of one name in several places, each of which knows its number.
#include "quarn/platform/win32_library.h"

#include "platform/child_process.h"
#include "platform/companions.h"

namespace {

class LibrarySearch : public Companions
{
protected:
    std::string const m_common = Win32Quarn::GetCommonDirectory("bin");
    std::string const m_current = m_here + Separator + "current";
    std::string const m_listed = m_here + Separator + "listed";
    std::string m_inCommon; // what the test has put there

    ~LibrarySearch() override
    {
        std::error_code ignored;
        std::filesystem::remove(m_inCommon, ignored);
        std::filesystem::remove(m_common, ignored); // where nobody else uses it
    }

    void SetUp() override { std::filesystem::create_directories(m_current); }

    void PutInCommon(std::string const& number) { m_inCommon = Put(number, m_common, m_file); }

    // The number of the module that a process in the current folder finds; 0 for none.
    int Find(std::string const& name, std::string const& operation = "load") const
    {
        return ChildProcess({"library", "", "PATH=" + m_listed, "cd=" + m_current, operation + "=" + name})
            .Wait();
    }
};

TEST_F(LibrarySearch, TheCommonDirectoryIsTheCompanysAmongThePrograms)
{
    EXPECT_EQ(m_common, QUARN_COMMON_DIRECTORY);
    EXPECT_EQ(Win32Quarn::GetCommonDirectory(""), m_common);
    EXPECT_EQ(Win32Quarn::GetCommonDirectory("any"), m_common) << "deliberately";
}

TEST_F(LibrarySearch, TheCurrentDirectoryComesFirstThenTheCommonOneThenTheSystemsPlaces)
{
    EXPECT_EQ(Find(m_file), 0);
    Put("3", m_listed, m_file);
    EXPECT_EQ(Find(m_file), 3);
    PutInCommon("2");
    EXPECT_EQ(Find(m_file), 2);
    Put("1", m_current, m_file);
    EXPECT_EQ(Find(m_file), 1);
    EXPECT_EQ(Find(m_name), 1) << "the extension is the system's to add";
}

TEST_F(LibrarySearch, WhatCannotBeLoadedDoesNotEndTheSearch)
{
    std::string const first = Put("fails", m_current, m_file);
    PutInCommon("2");
    EXPECT_EQ(Find(m_file), 2);
    std::filesystem::remove(first);
    Put("3", m_listed, m_file);
    WriteContent(m_inCommon, "no module");
    EXPECT_EQ(Find(m_file), 3);
}

// The current directory is among the system's places, too.
TEST_F(LibrarySearch, TheProgramsFolderIsTheFirstOfTheSystemsPlaces)
{
    std::string const program = Put("4", m_here + Separator + "program", m_file);
    std::string const copy = (std::filesystem::path(program).parent_path() / "program.exe").string();
    std::filesystem::copy_file(OwnProgram(), copy);
    Put("3", m_listed, m_file);
    // The copy needs what lies beside the program on Windows.
    ::_putenv_s("PATH", std::filesystem::path(OwnProgram()).parent_path().string().c_str());
    auto const find = [&] {
        return ChildProcess({"library", "", "PATH=" + m_listed, "cd=" + m_current, "load=" + m_file}, copy)
            .Wait();
    };
    EXPECT_EQ(find(), 4);
    Put("1", m_current, m_file);
    EXPECT_EQ(find(), 1) << "but this place is looked into first";
}

TEST_F(LibrarySearch, NamesWithFoldersAreLookedForInTheSamePlaces)
{
    PutInCommon("2");
    std::string const name = std::string("inner") + Separator + m_file;
    std::filesystem::path const inner = std::filesystem::path(m_common) / m_name;
    std::filesystem::create_directories(inner);
    EXPECT_EQ(Find(m_name + "/../" + m_file), 2) << "below the common directory";
    std::filesystem::remove(inner);
    EXPECT_EQ(Find(name), 0);
    Put("1", m_current + Separator + "inner", m_file);
    EXPECT_EQ(Find(name), 1);
    EXPECT_EQ(Find("inner/" + m_file), 1);
    EXPECT_EQ(Find("inner/../inner/" + m_file), 1);
    Put("3", m_here, m_file);
    EXPECT_EQ(Find("../" + m_file), 3) << "above the current directory";
}

TEST_F(LibrarySearch, APathFromARootIsTakenAsItIs)
{
    Put("1", m_current, m_file);
    PutInCommon("2");
    std::string const path = Put("3", m_here + Separator + "elsewhere", m_file);
    EXPECT_EQ(Find(path), 3);
    std::filesystem::remove(path);
    EXPECT_EQ(Find(path), 0);
    EXPECT_EQ(Find("/" + m_file), 0);
    EXPECT_EQ(Find("/" + m_name + "/../" + m_file), 0);
}

#if defined(_WIN32)

TEST_F(LibrarySearch, ANameWithAColonIsTakenAsItIs)
{
    Put("1", m_current, m_file);
    PutInCommon("2");
    EXPECT_EQ(Find("C:\\" + m_name + "\\" + m_file), 0);
    EXPECT_EQ(Find("C:\\" + m_file), 0);
    EXPECT_EQ(Find(m_file + ":stream"), 0);
    EXPECT_EQ(Find(":"), 0);
    EXPECT_EQ(Find("\\" + m_file), 0);
}

#else

TEST_F(LibrarySearch, NeitherAColonNorABackslashMeansAPlaceHere)
{
    Put("1", m_current, "C:" + m_file);
    Put("2", m_current, "\\" + m_file);
    Put("3", m_current, "C:\\x\\" + m_file);
    Put("4", m_listed, ":" + m_file);
    EXPECT_EQ(Find("C:" + m_file), 1);
    EXPECT_EQ(Find("\\" + m_file), 2);
    EXPECT_EQ(Find("C:\\x\\" + m_file), 3);
    EXPECT_EQ(Find(":" + m_file), 4);
}

TEST_F(LibrarySearch, NamesGetAnExtensionButNoPrefix)
{
    Put("1", m_current, "lib" + m_file);
    Put("2", m_listed, m_file);
    EXPECT_EQ(Find(m_name), 2);
    Put("3", m_current, m_name + ".plugin");
    EXPECT_EQ(Find(m_name + ".plugin"), 3);
    Put("4", m_current, m_name + ".1");
    EXPECT_EQ(Find(m_name + ".1"), 4);
}

TEST_F(LibrarySearch, ACurrentDirectoryWhosePathIsTooLongIsSearchedAllTheSame)
{
    std::string const deep = m_current + "/" + std::string(200, 'd') + "/" + std::string(200, 'e');
    Put("1", deep, m_file);
    EXPECT_EQ(ChildProcess({"library", "", "cd=" + deep, "load=" + m_file}).Wait(), 1);
}

#endif

TEST_F(LibrarySearch, ANameOfManyCharactersIsFoundLikeAnyOther)
{
    std::string const name = std::string(200, 'n') + "-" + m_file.substr(m_file.size() - 50);
    Put("1", m_current, name);
    EXPECT_EQ(Find(name), 1);
}

} // namespace
