// Another process that runs this test program, or a copy of it, with a command of child_commands.cpp.
#pragma once

#include "quarn/platform/win32_api.h"

#include <string>
#include <vector>

// The path of this test program.
std::string const& OwnProgram();

class ChildProcess
{
public:
    explicit ChildProcess(std::vector<std::string> const& command, std::string const& program = OwnProgram());
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    // Kills it when it still runs.
    ~ChildProcess();

    // Waits for its end and returns its exit code; -1 when it was killed or never ran.
    int Wait();
    // Ends it without giving it a chance to tidy up.
    void Kill();

private:
#if defined(_WIN32)
    HANDLE m_process = nullptr;
#else
    int m_process = -1;
#endif
};

// Runs the command line's command and returns its exit code; -1 when there is none.
int RunChildCommand(int count, char** arguments);

// Waits until the file exists; false after a minute.
bool WaitForFile(std::string const& path);
