// The default of the blocking message: a real message box on Windows, standard error elsewhere.
#include "quarn/platform/message.h"
#include "quarn/platform/win32_api.h"
#include "quarn/text/narrowing.h"

#include <functional>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <cstdlib>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

using Quarn::Int64ToUInt32;

#if defined(_WIN32)

char const* const BoxMessage = "Int64 Conversion Error, quarn/text/narrowing.h: 488";

struct Box
{
    bool isFound = false;
    std::string text;
    HWND owner = nullptr;
    int buttons = 0;
    HICON icon = nullptr;
};

BOOL CALLBACK NoteChild(HWND child, LPARAM target)
{
    Box& box = *reinterpret_cast<Box*>(target);
    char name[32] = "";
    ::GetClassNameA(child, name, sizeof name);
    std::string const kind = name;
    LONG_PTR const style = ::GetWindowLongPtrA(child, GWL_STYLE);
    if (kind == "Button" && (style & WS_VISIBLE) != 0) {
        ++box.buttons;
    } else if (kind == "Static" && (style & SS_TYPEMASK) == SS_ICON) {
        box.icon = reinterpret_cast<HICON>(::SendMessageA(child, STM_GETICON, 0, 0));
    }
    return TRUE;
}

// Waits for the box, notes what it shows and presses its button; gives up after a minute.
void DismissBox(Box& box)
{
    for (int i = 0; i < 6000 && !box.isFound; ++i) {
        HWND const window = ::FindWindowA("#32770", BoxMessage);
        if (window == nullptr || !::IsWindowVisible(window)) {
            ::Sleep(10);
            continue;
        }
        box.isFound = true;
        char text[512] = "";
        ::GetWindowTextA(::GetDlgItem(window, 0xFFFF), text, sizeof text);
        box.text = text;
        box.owner = ::GetWindow(window, GW_OWNER);
        ::EnumChildWindows(window, NoteChild, reinterpret_cast<LPARAM>(&box));
        // A box that has only just appeared may miss the first press.
        for (int press = 0; press < 600 && ::IsWindow(window); ++press) {
            ::PostMessageA(window, WM_COMMAND, IDOK, 0);
            ::Sleep(100);
        }
    }
}

TEST(NarrowingBox, ShowsOneModalBoxWithAStopIconAndOneButtonAndGoesOn)
{
    ASSERT_EQ(Quarn::SetMessageHandler(nullptr), nullptr);
    Box box;
    std::thread dismisser(DismissBox, std::ref(box));
    unsigned int const result = Int64ToUInt32(4294967301, "caller.cpp", 1);
    dismisser.join();
    EXPECT_EQ(result, 5U);
    ASSERT_TRUE(box.isFound);
    EXPECT_EQ(box.text, BoxMessage);
    EXPECT_EQ(box.owner, nullptr);
    EXPECT_EQ(box.buttons, 1);
    EXPECT_EQ(box.icon, ::LoadIconA(nullptr, IDI_HAND));
}

#else

// Runs the report in a process of its own with the given standard input; what it wrote to standard error.
std::string ReportInChild(int input, int& status)
{
    int channel[2] = {-1, -1};
    if (::pipe(channel) != 0) {
        return "no pipe";
    }
    pid_t const child = ::fork();
    if (child == 0) {
        ::dup2(input, STDIN_FILENO);
        ::dup2(channel[1], STDERR_FILENO);
        ::alarm(60); // a message that waits ends the child with a signal
        Quarn::SetMessageHandler(nullptr);
        ::_exit(static_cast<int>(Int64ToUInt32(4294967301, "caller.cpp", 1)));
    }
    ::close(channel[1]);
    std::string output;
    char buffer[256];
    for (ssize_t n = 0; (n = ::read(channel[0], buffer, sizeof buffer)) > 0;) {
        output.append(buffer, static_cast<std::size_t>(n));
    }
    ::close(channel[0]);
    ::waitpid(child, &status, 0);
    return output;
}

TEST(NarrowingBox, WithoutWindowsWritesToStandardErrorAndDoesNotWait)
{
    // The write end of the input stays open, so that a read from it would block.
    int input[2] = {-1, -1};
    ASSERT_EQ(::pipe(input), 0);
    int status = -1;
    std::string const output = ReportInChild(input[0], status);
    ::close(input[0]);
    ::close(input[1]);
    EXPECT_EQ(output, "Int64 Conversion Error, quarn/text/narrowing.h: 488\n"
                      "Int64 Conversion Error, quarn/text/narrowing.h: 488\n");
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST(NarrowingBox, ATerminalThatIsNotOursDoesNotHoldTheReportUp)
{
    // A fresh terminal that controls no process: there is no foreground group to be in.
    int const terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    int const slave = ::open(::ptsname(terminal), O_RDWR | O_NOCTTY);
    ASSERT_GE(slave, 0);
    int status = -1;
    std::string const output = ReportInChild(slave, status);
    ::close(slave);
    ::close(terminal);
    EXPECT_NE(output.find("Int64 Conversion Error"), std::string::npos);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

TEST(NarrowingBox, InTheForegroundOfATerminalWaitsForALine)
{
    int const terminal = ::posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_GE(terminal, 0);
    ASSERT_EQ(::grantpt(terminal), 0);
    ASSERT_EQ(::unlockpt(terminal), 0);
    int channel[2] = {-1, -1};
    ASSERT_EQ(::pipe(channel), 0);
    pid_t const child = ::fork();
    if (child == 0) {
        ::setsid();
        ::close(STDIN_FILENO);
        // The first terminal that a session leader opens becomes its own, with it in the foreground.
        if (::open(::ptsname(terminal), O_RDWR) != STDIN_FILENO) {
            ::_exit(99);
        }
        ::dup2(channel[1], STDERR_FILENO);
        ::alarm(60);
        Quarn::SetMessageHandler(nullptr);
        unsigned int const result = Int64ToUInt32(4294967301, "caller.cpp", 1);
        ::_exit(::write(channel[1], "!", 1) == 1 ? static_cast<int>(result) : 98);
    }
    ::close(channel[1]);
    std::string output;
    char c = '\0';
    bool isAnswered = false;
    while (::read(channel[0], &c, 1) == 1) {
        output.push_back(c);
        if (!isAnswered && output.ends_with("[Enter] ")) {
            isAnswered = true;
            EXPECT_EQ(::write(terminal, "x\n", 2), 2);
        }
    }
    ::close(channel[0]);
    ::close(terminal);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_TRUE(isAnswered);
    EXPECT_TRUE(output.ends_with("[Enter] !")) << output;
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 5);
}

#endif

} // namespace
