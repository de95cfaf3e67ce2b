// How a command ends: the program's exit codes, and the failure that leads to one.
#pragma once

#include <stdexcept>
#include <string>

namespace tool {

enum ExitCode
{
    Done = 0,
    Differs = 1,     // the answer is no: a difference, a file that would not load, a value that is not there
    WrongUsage = 2,  // the command line
    CannotRead = 3,  // a file, or a registry key
    CannotWrite = 4, // a file, a registry key, the standard output
};

// The text says what and why, without the program's name.
class Failure : public std::runtime_error
{
public:
    Failure(ExitCode code, std::string const& text) : std::runtime_error(text), m_code(code) {}

    ExitCode Code() const { return m_code; }

private:
    ExitCode m_code;
};

} // namespace tool
