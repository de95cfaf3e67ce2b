#include "platform/child_process.h"

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

namespace {

std::string g_program;

} // namespace

std::string const& OwnProgram()
{
    return g_program;
}

bool WaitForFile(std::string const& path)
{
    for (int i = 0; i < 12'000; ++i) {
        if (::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
            return true;
        }
        ::Sleep(5);
    }
    return false;
}

#if defined(_WIN32)

ChildProcess::ChildProcess(std::vector<std::string> const& command, std::string const& program)
{
    std::string line = '"' + program + '"';
    for (std::string const& argument : command) {
        line += " \"" + argument + '"';
    }
    STARTUPINFOA start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (::CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                         &process)) {
        ::CloseHandle(process.hThread);
        m_process = process.hProcess;
    }
}

ChildProcess::~ChildProcess()
{
    Kill();
}

int ChildProcess::Wait()
{
    if (m_process == nullptr) {
        return -1;
    }
    DWORD code = 0;
    ::WaitForSingleObject(m_process, INFINITE);
    ::GetExitCodeProcess(m_process, &code);
    ::CloseHandle(m_process);
    m_process = nullptr;
    return static_cast<int>(code);
}

void ChildProcess::Kill()
{
    if (m_process != nullptr) {
        ::TerminateProcess(m_process, static_cast<UINT>(-1));
        Wait();
    }
}

#else

ChildProcess::ChildProcess(std::vector<std::string> const& command, std::string const& program)
{
    std::vector<std::string> texts = command;
    texts.insert(texts.begin(), program);
    std::vector<char*> arguments;
    for (std::string& text : texts) {
        arguments.push_back(text.data());
    }
    arguments.push_back(nullptr);
    if (::posix_spawn(&m_process, program.c_str(), nullptr, nullptr, arguments.data(), environ) != 0) {
        m_process = -1;
    }
}

ChildProcess::~ChildProcess()
{
    Kill();
}

int ChildProcess::Wait()
{
    int status = 0;
    if (m_process < 0 || ::waitpid(m_process, &status, 0) != m_process) {
        return -1;
    }
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void ChildProcess::Kill()
{
    if (m_process >= 0) {
        ::kill(m_process, SIGKILL);
        Wait();
    }
}

#endif

int main(int count, char** arguments)
{
    g_program = arguments[0];
    if (int const result = RunChildCommand(count, arguments); result >= 0) {
        return result;
    }
    testing::InitGoogleTest(&count, arguments);
    return RUN_ALL_TESTS();
}
