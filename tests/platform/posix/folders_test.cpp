// The shell's folders on POSIX: what the environment says, and where that does not count.
#include "platform/child_process.h"
#include "platform/scratch_folder.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <optional>

#include <gtest/gtest.h>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

// A variable with another value, or none, until the end of the test.
class Environment
{
public:
    Environment(char const* name, char const* value) : m_name(name)
    {
        if (char const* const old = ::getenv(name)) {
            m_old = old;
        }
        Set(value);
    }
    Environment(char const* name, std::string const& value) : Environment(name, value.c_str()) {}
    Environment(Environment const&) = delete;
    Environment& operator=(Environment const&) = delete;
    ~Environment() { Set(m_old ? m_old->c_str() : nullptr); }

private:
    void Set(char const* value) const
    {
        if (value != nullptr) {
            ::setenv(m_name, value, 1);
        } else {
            ::unsetenv(m_name);
        }
    }

    char const* m_name;
    std::optional<std::string> m_old;
};

class PosixFolder : public testing::Test
{
protected:
    ScratchFolder const m_folder;
    std::string const m_home = fs::absolute(m_folder.MakeFolder("home")).string();
    Environment const m_homeVariable{"HOME", m_home};
    Environment const m_config{"XDG_CONFIG_HOME", nullptr};
    Environment const m_data{"XDG_DATA_HOME", nullptr};
    Environment const m_machine{"QUARNUTIL_MACHINE_DIR", nullptr};
};

// The folder; empty after a failure.
std::string Folder(int number)
{
    char path[MAX_PATH];
    std::memset(path, '#', sizeof path);
    HRESULT const result = ::SHGetFolderPathA(nullptr, number, nullptr, 0, path);
    EXPECT_EQ(FAILED(result), *path == '\0');
    return path;
}

TEST_F(PosixFolder, FollowsTheHomeFolder)
{
    EXPECT_EQ(Folder(CSIDL_PERSONAL), m_home);
    EXPECT_EQ(Folder(CSIDL_APPDATA), m_home + "/.config");
    EXPECT_EQ(Folder(CSIDL_LOCAL_APPDATA), m_home + "/.local/share");
}

TEST_F(PosixFolder, MakesTheUsersFoldersForTheUserAlone)
{
    Environment const data("XDG_DATA_HOME", m_home + "/a/b/c/");
    EXPECT_EQ(Folder(CSIDL_LOCAL_APPDATA), m_home + "/a/b/c");
    EXPECT_EQ(Folder(CSIDL_APPDATA), m_home + "/.config");
    for (char const* const name : {"/a", "/a/b", "/a/b/c", "/.config"}) {
        EXPECT_EQ(fs::status(m_home + name).permissions(), fs::perms::owner_all) << name;
    }
}

TEST_F(PosixFolder, FollowsTheEnvironment)
{
    Environment const config("XDG_CONFIG_HOME", m_home + "/c");
    Environment const data("XDG_DATA_HOME", m_home + "/d");
    EXPECT_EQ(Folder(CSIDL_APPDATA), m_home + "/c");
    EXPECT_EQ(Folder(CSIDL_LOCAL_APPDATA), m_home + "/d");
    EXPECT_EQ(Folder(CSIDL_PERSONAL), m_home);
}

TEST_F(PosixFolder, ValuesThatAreNoAbsolutePathDoNotCount)
{
    for (char const* const value : {"", "relative", "./c"}) {
        Environment const config("XDG_CONFIG_HOME", value);
        EXPECT_EQ(Folder(CSIDL_APPDATA), m_home + "/.config") << value;
    }
}

TEST_F(PosixFolder, WithoutAHomeVariableTheUserDataBaseDecides)
{
    ::passwd const* const user = ::getpwuid(::geteuid());
    ASSERT_NE(user, nullptr);
    for (char const* const value : {static_cast<char const*>(nullptr), "", "relative"}) {
        Environment const home("HOME", value);
        std::string const expected = fs::is_directory(user->pw_dir) ? user->pw_dir : "";
        EXPECT_EQ(Folder(CSIDL_PERSONAL), expected);
    }
}

TEST_F(PosixFolder, AFolderThatCannotBeThereIsAFailure)
{
    Environment const home("HOME", m_home + "/none");
    Environment const config("XDG_CONFIG_HOME", fs::absolute(m_folder.Make("file")).string() + "/c");
    EXPECT_EQ(Folder(CSIDL_PERSONAL), "");
    EXPECT_EQ(Folder(CSIDL_APPDATA), "");
    EXPECT_EQ(Folder(CSIDL_LOCAL_APPDATA), "");
    EXPECT_FALSE(fs::exists(m_home + "/none")) << "nobody makes homes";
}

TEST_F(PosixFolder, TheRootCanBeAHome)
{
    Environment const home("HOME", "/");
    EXPECT_EQ(Folder(CSIDL_PERSONAL), "/");
}

TEST_F(PosixFolder, TheMachinesFolderIsTheOneNamedOrTheStandardOne)
{
    std::string const standard = fs::is_directory("/var/lib/quarnutil") ? "/var/lib/quarnutil" : "";
    EXPECT_EQ(Folder(CSIDL_COMMON_APPDATA), standard);
    Environment const named("QUARNUTIL_MACHINE_DIR", m_home + "/");
    EXPECT_EQ(Folder(CSIDL_COMMON_APPDATA), m_home);
    Environment const missing("QUARNUTIL_MACHINE_DIR", m_home + "/machine");
    EXPECT_EQ(Folder(CSIDL_COMMON_APPDATA), "") << "nobody makes it, and no other takes its place";
    Environment const empty("QUARNUTIL_MACHINE_DIR", "");
    EXPECT_EQ(Folder(CSIDL_COMMON_APPDATA), standard);
}

TEST_F(PosixFolder, TheMachinesFolderCountsThoughNobodyMayWriteToIt)
{
    ASSERT_EQ(::chmod(m_home.c_str(), 0555), 0);
    Environment const named("QUARNUTIL_MACHINE_DIR", m_home);
    EXPECT_EQ(Folder(CSIDL_COMMON_APPDATA), m_home);
}

TEST_F(PosixFolder, ThereAreNoCommonDocumentsAndProgramsAreInOpt)
{
    EXPECT_EQ(Folder(CSIDL_COMMON_DOCUMENTS), "");
    EXPECT_EQ(Folder(CSIDL_PROGRAM_FILES), fs::is_directory("/opt") ? "/opt" : "");
}

TEST_F(PosixFolder, APathOfMaxPathOrMoreIsAFailure)
{
    for (std::size_t const length : {259U, 260U, 300U}) {
        std::string path = m_home + "/";
        ASSERT_LT(path.size(), 150U) << "the working directory is too deep for this test";
        path.append(100, 'd').append("/");
        path.append(length - path.size(), 'e');
        fs::create_directories(path);
        Environment const config("XDG_CONFIG_HOME", path);
        EXPECT_EQ(Folder(CSIDL_APPDATA), length < MAX_PATH ? path : "") << length;
    }
}

// A group of this process that is not its own; none for an ordinary user of one group.
std::optional<gid_t> OtherGroup()
{
    gid_t groups[64];
    int const count = ::getgroups(64, groups);
    for (int i = 0; i < count; ++i) {
        if (groups[i] != ::getegid()) {
            return groups[i];
        }
    }
    constexpr gid_t SomeGroup = 65534;
    return ::geteuid() == 0 ? std::optional(SomeGroup) : std::nullopt;
}

TEST_F(PosixFolder, NothingInTheEnvironmentCountsForAProgramWithAnothersRights)
{
    std::optional<gid_t> const group = OtherGroup();
    if (!group) {
        GTEST_SKIP() << "needs a second group to give the program to";
    }
    std::string const program = m_folder / "program";
    fs::copy_file("/proc/self/exe", program);
    Environment const named("QUARNUTIL_MACHINE_DIR", m_home);
    auto const run = [&](int number) {
        return ChildProcess({"folder", std::to_string(number), m_home}, program).Wait();
    };
    EXPECT_EQ(run(CSIDL_COMMON_APPDATA), 1);
    EXPECT_EQ(run(CSIDL_PERSONAL), 1);
    ASSERT_EQ(::chown(program.c_str(), static_cast<uid_t>(-1), *group), 0);
    ASSERT_EQ(::chmod(program.c_str(), 02755), 0);
    EXPECT_EQ(run(CSIDL_COMMON_APPDATA), 0);
    EXPECT_EQ(run(CSIDL_PERSONAL), 0);
}

} // namespace
