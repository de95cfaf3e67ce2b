// The log on devices and in surroundings that only POSIX can make.
#include "quarn/platform/log.h"
#include "quarn/platform/win32_api.h"

#include "platform/child_process.h"
#include "tests/platform/scratch_folder.h"

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Log = Win32Quarn::Log;

namespace {

class PosixLog : public testing::Test
{
protected:
    ~PosixLog() override
    {
        Log::Close();
        Log::SetPath("");
    }
};

constexpr unsigned long NoSpace = ENOSPC;

TEST_F(PosixLog, FullDiskShowsWhenAMessageClosesTheFile)
{
    ASSERT_EQ(Log::SetPath("/dev/full"), 0);
    for (int const options : {1, 17, 1 | 4, 1 | 8}) {
        EXPECT_EQ(Log::Output(0, options, "x"), -4);
        EXPECT_EQ(Log::GetErrorInformation(), NoSpace);
        EXPECT_EQ(Log::Output(0, options, "x"), -5);
        EXPECT_EQ(Log::Close(), -2);
        Log::ClearError();
    }
}

TEST_F(PosixLog, FullDiskShowsWhenTheBufferIsFull)
{
    ASSERT_EQ(Log::SetPath("/dev/full"), 0);
    std::string const text(10'000'000, 'x');
    int const result = Log::Output(0, 16, text.c_str());
    EXPECT_TRUE(result == -3 || result == -4) << result; // as the last of the text meets it
    EXPECT_EQ(Log::GetErrorInformation(), NoSpace);
    EXPECT_EQ(Log::Output(0, "x"), -5);
    EXPECT_EQ(Log::Close(), -2);
}

// In the date, in what stands behind it, in the text or in the line feed, as the lengths come.
TEST_F(PosixLog, FullDiskShowsAfterManyMessages)
{
    ASSERT_EQ(Log::SetPath("/dev/full"), 0);
    for (std::size_t length = 0; length < 40; ++length) {
        std::string const text(length, 'x');
        int result = 0;
        for (int i = 0; i < 100'000 && result == 0; ++i) {
            result = Log::Output(0, 4 | 16, text.c_str());
        }
        EXPECT_TRUE(result == -3 || result == -4) << result;
        EXPECT_EQ(Log::GetErrorInformation(), NoSpace);
        EXPECT_EQ(Log::Output(0, 4 | 16, text.c_str()), -5);
        EXPECT_EQ(Log::Close(), -2);
        Log::ClearError();
    }
}

TEST_F(PosixLog, FullDiskShowsWhenTheLogIsClosed)
{
    ASSERT_EQ(Log::SetPath("/dev/full"), 0);
    EXPECT_EQ(Log::Output(0, 16, "in the buffer"), 0);
    EXPECT_EQ(Log::Close(), -1);
    EXPECT_EQ(Log::GetErrorInformation(), NoSpace);
    EXPECT_EQ(Log::Close(), -2);
    EXPECT_EQ(Log::Output(0, "x"), -5);
}

std::ptrdiff_t OpenFiles()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

TEST_F(PosixLog, FailuresKeepNoFileOpen)
{
    std::ptrdiff_t const before = OpenFiles();
    ASSERT_EQ(Log::SetPath("/dev/full"), 0);
    EXPECT_EQ(Log::Output(0, "x"), -4);
    Log::ClearError();
    EXPECT_LT(Log::Output(0, std::string(1'000'000, 'x').c_str()), 0);
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, 2, "x"), -4);
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, 0, "x"), 0);
    EXPECT_EQ(OpenFiles(), before + 1);
    EXPECT_EQ(Log::Close(), -1);
    EXPECT_EQ(OpenFiles(), before);
}

TEST_F(PosixLog, IsNotForTheProgramsThatThisOneStarts)
{
    ScratchFolder const folder;
    std::string const path = folder / "a.log";
    ASSERT_EQ(Log::SetPath(path.c_str()), 0);
    for (int const options : {8, 0}) { // truncating and appending
        ASSERT_EQ(Log::Output(0, options, "x"), 0);
        int found = 0;
        for (auto const& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
            std::error_code ignored;
            if (std::filesystem::equivalent(entry.path(), path, ignored)) {
                ++found;
                EXPECT_NE(::fcntl(std::stoi(entry.path().filename()), F_GETFD) & FD_CLOEXEC, 0);
            }
        }
        EXPECT_EQ(found, 1);
        EXPECT_EQ(Log::Close(), 0);
    }
}

TEST_F(PosixLog, APipeWithoutAReaderIsAnErrorAndNoWait)
{
    ScratchFolder const folder;
    std::string const path = folder / "pipe";
    ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0);
    ASSERT_EQ(Log::SetPath(path.c_str()), 0);
    EXPECT_EQ(Log::Output(0, "x"), -2);
    EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(ENXIO));
    Log::ClearError();
    int const reader = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    ASSERT_GE(reader, 0);
    EXPECT_EQ(Log::Output(0, "x"), 0);
    char text[8] = "";
    EXPECT_EQ(::read(reader, text, sizeof text), 2);
    EXPECT_STREQ(text, "x\n");
    ::close(reader);
}

// A variable with another value until the end of the test.
class Variable
{
public:
    Variable(char const* name, std::string const& value) : m_name(name)
    {
        char const* const old = ::getenv(name);
        m_wasSet = old != nullptr;
        m_old = m_wasSet ? old : "";
        ::setenv(name, value.c_str(), 1);
    }
    Variable(Variable const&) = delete;
    Variable& operator=(Variable const&) = delete;
    ~Variable()
    {
        if (m_wasSet) {
            ::setenv(m_name, m_old.c_str(), 1);
        } else {
            ::unsetenv(m_name);
        }
    }

private:
    char const* m_name;
    bool m_wasSet = false;
    std::string m_old;
};

TEST_F(PosixLog, WithoutAnyDataFolderThereIsNoDefaultPath)
{
    ScratchFolder const folder;
    // None of these can be a folder, or be made.
    std::string const none = std::filesystem::absolute(folder.Make("file")).string() + "/none";
    Variable const machine("QUARNUTIL_MACHINE_DIR", none);
    Variable const config("XDG_CONFIG_HOME", none);
    Variable const data("XDG_DATA_HOME", none);
    {
        Variable const home("HOME", none);
        for (int i = 0; i < 2; ++i) { // the error is not set
            EXPECT_EQ(Log::Output(0, "x"), -6);
            EXPECT_STREQ(Log::GetPath(), "");
        }
    }
    Variable const home("HOME", std::filesystem::absolute(folder.Path()).string());
    EXPECT_EQ(Log::Output(0, "x"), 0);
    EXPECT_EQ(Log::GetPath(), std::filesystem::absolute(folder / "log_test.log").string());
    EXPECT_EQ(ContentOf(folder / "log_test.log"), "x\n");
}

TEST_F(PosixLog, ADefaultPathThatIsTooLongIsNone)
{
    ScratchFolder const folder;
    std::string path = std::filesystem::absolute(folder.Path()).string() + "/";
    ASSERT_LT(path.size(), 240U);
    for (std::size_t const length : {246U, 247U, 259U}) { // "/log_test.log" has 13 characters
        std::string const deep = path + std::string(length - path.size(), 'd');
        std::filesystem::create_directory(deep);
        Variable const machine("QUARNUTIL_MACHINE_DIR", deep);
        if (length == 246) {
            EXPECT_EQ(Log::Output(0, "x"), 0);
            EXPECT_EQ(std::strlen(Log::GetPath()), 259U);
            EXPECT_EQ(Log::SetPath(""), 0);
        } else {
            EXPECT_EQ(Log::Output(0, "x"), -6);
            EXPECT_EQ(Log::GetErrorInformation(), ERROR_FILENAME_EXCED_RANGE);
        }
    }
}

TEST_F(PosixLog, AnExecutableWhosePathIsTooLongHasNoDefaultPath)
{
    ScratchFolder const folder;
    std::string const deep = folder / std::string(150, 'd') + "/" + std::string(150, 'e');
    std::filesystem::create_directories(deep);
    std::string const program = std::filesystem::absolute(deep).string() + "/program";
    std::filesystem::copy_file("/proc/self/exe", program);
    EXPECT_EQ(ChildProcess({"log", "no default", "-"}, program).Wait(), 0);
}

TEST_F(PosixLog, AFileThatNobodyMayWriteIsRefusedToAllButTheSuperuser)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("a.log");
    MakeReadOnly(path);
    ASSERT_EQ(Log::SetPath(path.c_str()), 0);
    bool const isSuperuser = ::geteuid() == 0;
    EXPECT_EQ(Log::Output(0, "x"), isSuperuser ? 0 : -2);
    EXPECT_EQ(ContentOf(path), isSuperuser ? "x\n" : "content");
}

} // namespace
