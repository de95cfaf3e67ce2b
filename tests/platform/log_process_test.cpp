// The log and other processes: one that holds its file, and new ones with the state that only they have.
#include "quarn/platform/log.h"

#include "platform/child_process.h"
#include "tests/platform/log_file.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

namespace {

// On Windows a program may keep a file for itself; elsewhere the log is written all the same.
TEST_F(LogFile, HeldByAnotherProcess)
{
    WriteContent(m_path, "held");
    {
        ChildProcess holder({"log", "hold", m_folder.Path()});
        ASSERT_TRUE(WaitForFile(m_folder / "held"));
        int const result = Log::Output(0, LineFeed, "x");
#if defined(_WIN32)
        EXPECT_EQ(result, -2);
        EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EACCES));
        EXPECT_EQ(Log::Output(0, "x"), -5);
#else
        EXPECT_EQ(result, 0);
        EXPECT_EQ(Log::Close(), 0);
        EXPECT_EQ(Content(), "heldx\n");
#endif
        WriteContent(m_folder / "go", "");
        EXPECT_EQ(holder.Wait(), 0);
    }
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, "free"), 0);
    EXPECT_EQ(Content(), "free\n");
}

class NewProcess : public LogFile
{
protected:
    static int Run(std::string const& what, std::string const& argument = "-")
    {
        return ChildProcess({"log", what, argument}).Wait();
    }

    static std::filesystem::path DataFolder()
    {
        return std::filesystem::path(std::getenv("QUARN_TEST_MACHINE")) / "data";
    }
};

TEST_F(NewProcess, StartsWithTheDocumentedState)
{
    EXPECT_EQ(Run("state"), 0);
}

TEST_F(NewProcess, LogsByDefaultIntoTheFirstDataFolder)
{
    std::filesystem::path const file = DataFolder() / "log_test.log";
    std::filesystem::remove(file);
    EXPECT_EQ(Run("default", file.string()), 0);
    EXPECT_EQ(ContentOf(file.string()), "by default\n");
    std::filesystem::remove(file);
}

TEST_F(NewProcess, NamesTheDefaultFileAfterTheExecutableUpToItsFirstDot)
{
    char own[MAX_PATH];
    ASSERT_LT(::GetModuleFileNameA(nullptr, own, MAX_PATH), DWORD{MAX_PATH});
#if defined(_WIN32)
    // The copies find the library where the original has it.
    std::string const folders = std::filesystem::path(own).parent_path().string() + ";" + std::getenv("PATH");
    ::_putenv_s("PATH", folders.c_str());
#endif
    std::filesystem::path const file = DataFolder() / "station.log";
    for (char const* const name : {"station.exe", "station.2.1.exe"}) {
        std::string const program = std::filesystem::absolute(m_folder / name).string();
        std::filesystem::copy_file(own, program);
        EXPECT_EQ(ChildProcess({"log", "default", file.string()}, program).Wait(), 0) << name;
        EXPECT_EQ(ContentOf(file.string()), "by default\n");
        std::filesystem::remove(file);
    }
}

TEST_F(NewProcess, MakesNoDefaultPathForADroppedMessage)
{
    EXPECT_EQ(Run("dropped"), 0);
    EXPECT_TRUE(std::filesystem::is_empty(DataFolder()));
}

TEST_F(NewProcess, LosesNothingWhenItEndsWithoutClosing)
{
    EXPECT_EQ(Run("leave", m_path), 3);
    EXPECT_EQ(Content(), "left in the buffer\n");
}

TEST_F(LogFile, AnEmptyPathBringsTheDefaultBack)
{
    EXPECT_EQ(Log::SetPath(""), 0);
    EXPECT_STREQ(Log::GetPath(), "");
    EXPECT_EQ(Log::Output(0, "x"), 0);
    std::filesystem::path const file = Log::GetPath();
    EXPECT_EQ(file.filename(), "log_test.log");
    EXPECT_EQ(ContentOf(file.string()), "x\n");
    std::filesystem::remove(file);
}

// ---- in the child

int ShowState()
{
    return Log::GetOutputLevel() == 0 && Log::GetOutputOptions() == 17 && *Log::GetPath() == '\0' &&
                   Log::GetErrorInformation() == 0 && Log::Close() == -2
               ? 0
               : 1;
}

int LogByDefault(std::filesystem::path const& file)
{
    if (Log::Output(0, "by default") != 0) {
        return 1;
    }
    // The separators may differ.
    return std::filesystem::path(Log::GetPath()) == file && std::filesystem::is_regular_file(file) ? 0 : 2;
}

int Leave(char const* path)
{
    if (Log::SetPath(path) != 0 || Log::Output(0, LineFeed, "left in the buffer") != 0) {
        return 1;
    }
    std::exit(3);
}

// Keeps the log file for itself until it is told to go.
int Hold(std::string const& folder)
{
    HANDLE const file =
        ::CreateFileA((folder + "/a.log").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return 1;
    }
    WriteContent(folder + "/held", "");
    bool const isTold = WaitForFile(folder + "/go");
    ::CloseHandle(file);
    return isTold ? 0 : 2;
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    if (count != 4 || arguments[1] != std::string_view("log")) {
        return -1;
    }
    std::string_view const what = arguments[2];
    if (what == "state") {
        return ShowState();
    }
    if (what == "default") {
        return LogByDefault(arguments[3]);
    }
    if (what == "no default") {
        return Log::Output(0, "x") == -6 && Log::GetErrorInformation() == ERROR_INSUFFICIENT_BUFFER ? 0 : 1;
    }
    if (what == "dropped") {
        return Log::Output(1, "dropped") == 0 && *Log::GetPath() == '\0' ? 0 : 1;
    }
    if (what == "leave") {
        return Leave(arguments[3]);
    }
    if (what == "hold") {
        return Hold(arguments[3]);
    }
    return -1;
}
