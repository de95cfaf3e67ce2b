#include "run_quarn.h"

#if !defined(_WIN32)
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>
#endif

#include <atomic>

namespace {

std::string WithLineFeeds(std::string text)
{
    std::erase(text, '\r');
    return text;
}

#if defined(_WIN32)

// As the runtime library divides command lines.
std::string QuotedArgument(std::string const& argument)
{
    std::string text = "\"";
    std::size_t backslashes = 0;
    for (char const c : argument) {
        if (c == '"') {
            text.append(backslashes + 1, '\\');
        }
        backslashes = c == '\\' ? backslashes + 1 : 0;
        text += c;
    }
    text.append(backslashes, '\\');
    return text + '"';
}

#endif

} // namespace

#if defined(_WIN32)

int RunProgram(std::string const& program, std::vector<std::string> const& arguments,
               std::string const& output, std::string const& errors)
{
    std::string line = QuotedArgument(program);
    for (std::string const& argument : arguments) {
        line += ' ' + QuotedArgument(argument);
    }
    auto const create = [](std::string const& path) {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        return ::CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited, CREATE_ALWAYS,
                             FILE_ATTRIBUTE_NORMAL, nullptr);
    };
    STARTUPINFOA start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = create(output);
    start.hStdError = create(errors);
    PROCESS_INFORMATION process{};
    DWORD code = static_cast<DWORD>(-1);
    if (::CreateProcessA(program.c_str(), line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &start,
                         &process)) {
        ::WaitForSingleObject(process.hProcess, INFINITE);
        ::GetExitCodeProcess(process.hProcess, &code);
        ::CloseHandle(process.hThread);
        ::CloseHandle(process.hProcess);
    }
    ::CloseHandle(start.hStdOutput);
    ::CloseHandle(start.hStdError);
    return static_cast<int>(code);
}

#else

int RunProgram(std::string const& program, std::vector<std::string> const& arguments,
               std::string const& output, std::string const& errors)
{
    std::vector<std::string> texts = arguments;
    texts.insert(texts.begin(), program);
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    ::posix_spawn_file_actions_addopen(&actions, 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t process = -1;
    int const failed = ::posix_spawnp(&process, program.c_str(), &actions, nullptr, pointers.data(), environ);
    ::posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    if (failed != 0 || ::waitpid(process, &status, 0) != process) {
        return -1;
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

#endif

Outcome RunQuarn(std::vector<std::string> const& arguments)
{
    static std::atomic<int> count = 0;
    std::string const base =
        "quarn." + std::to_string(::GetCurrentProcessId()) + '.' + std::to_string(++count);
    Outcome outcome;
    std::string const program = std::filesystem::path(QUARN_TOOL).make_preferred().string();
    outcome.code = RunProgram(program, arguments, base + ".out", base + ".err");
    outcome.output = WithLineFeeds(ContentOf(base + ".out"));
    outcome.errors = WithLineFeeds(ContentOf(base + ".err"));
    std::filesystem::remove(base + ".out");
    std::filesystem::remove(base + ".err");
    return outcome;
}
