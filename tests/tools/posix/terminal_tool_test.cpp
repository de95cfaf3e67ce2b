// What quarn does on a terminal: colours, and progress on work that takes longer than a second.
#include "tests/tools/run_quarn.h"

#include <chrono>
#include <cstdlib>
#include <thread>

#include <fcntl.h>
#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using TerminalTool = QuarnTool;

// Runs the program with one of its outputs on a terminal, the other one dropped.
class OnTerminal
{
public:
    OnTerminal(std::vector<std::string> arguments, int output)
    {
        m_master = ::posix_openpt(O_RDWR | O_NOCTTY);
        ::grantpt(m_master);
        ::unlockpt(m_master);
        arguments.insert(arguments.begin(), QUARN_TOOL);
        std::vector<char*> pointers;
        for (std::string& argument : arguments) {
            pointers.push_back(argument.data());
        }
        pointers.push_back(nullptr);
        posix_spawn_file_actions_t actions;
        ::posix_spawn_file_actions_init(&actions);
        ::posix_spawn_file_actions_addopen(&actions, output, ::ptsname(m_master), O_RDWR | O_NOCTTY, 0);
        ::posix_spawn_file_actions_addopen(&actions, 3 - output, "/dev/null", O_RDWR, 0);
        EXPECT_EQ(::posix_spawn(&m_process, QUARN_TOOL, &actions, nullptr, pointers.data(), environ), 0);
        ::posix_spawn_file_actions_destroy(&actions);
    }
    OnTerminal(OnTerminal const&) = delete;
    OnTerminal& operator=(OnTerminal const&) = delete;
    ~OnTerminal()
    {
        ::waitpid(m_process, nullptr, 0);
        ::close(m_master);
    }

    // What there is by now; waits for something unless the program has ended.
    std::string Read() const
    {
        char buffer[4096];
        auto const count = ::read(m_master, buffer, sizeof buffer);
        return {buffer, static_cast<std::size_t>(count > 0 ? count : 0)};
    }
    std::string ReadAll() const
    {
        std::string all;
        for (std::string some = Read(); !some.empty(); some = Read()) {
            all += some;
        }
        return all;
    }
    void DoNotWait() const { ::fcntl(m_master, F_SETFL, O_NONBLOCK); }

private:
    int m_master = -1;
    pid_t m_process = -1;
};

TEST_F(TerminalTool, HasColoursOnATerminalAlone)
{
    std::string const file = MakeSettings("s.xml", "");
    EXPECT_TRUE(Has(OnTerminal({"settings", "check", file}, 1).ReadAll(), "\x1B[32mloads\x1B[0m"));
    EXPECT_FALSE(Has(Run({"settings", "check", file}).output, "\x1B"));
}

TEST_F(TerminalTool, HasNoColoursWhereTheyAreNotWanted)
{
    std::string const file = MakeSettings("s.xml", "");
    ::setenv("NO_COLOR", "1", 1);
    EXPECT_FALSE(Has(OnTerminal({"settings", "check", file}, 1).ReadAll(), "\x1B"));
    ::setenv("NO_COLOR", "", 1); // as if it were not set
    EXPECT_TRUE(Has(OnTerminal({"settings", "check", file}, 1).ReadAll(), "\x1B"));
    ::unsetenv("NO_COLOR");
}

TEST_F(TerminalTool, TellsNoProgressOfShortWork)
{
    std::string const file = m_folder.Make("file");
    bool isQuiet = false;
    for (int i = 0; i < 5 && !isQuiet; ++i) { // a machine that is busy may make it long
        isQuiet = OnTerminal({"crc", file}, 2).ReadAll().empty();
    }
    EXPECT_TRUE(isQuiet);
}

TEST_F(TerminalTool, TellsTheProgressOfLongWork)
{
    std::string const pipe = m_folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    OnTerminal const program({"crc", pipe}, 2);
    program.DoNotWait();
    int const file = ::open(pipe.c_str(), O_WRONLY);
    std::string const bytes(std::size_t{1} << 16, 'x');
    std::string shown;
    // The work lasts until there is something to see.
    for (int i = 0; i < 600 && !Has(shown, "pipe: "); ++i) {
        EXPECT_EQ(::write(file, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        shown += program.Read();
    }
    EXPECT_TRUE(Has(shown, " MiB")) << shown;
    ::close(file);
}

} // namespace
