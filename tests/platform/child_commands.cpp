#include "quarn/platform/win32_library.h"

#include "platform/child_process.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string_view>

namespace {

// Takes the mutex, makes the file "held" and keeps the mutex until the file "go" exists.
int Hold(char const* name, std::string const& folder)
{
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name);
    if (::WaitForSingleObject(mutex, INFINITE) != WAIT_OBJECT_0) {
        return 1;
    }
    std::ofstream(folder + "/held") << "x";
    bool const isTold = WaitForFile(folder + "/go");
    ::ReleaseMutex(mutex);
    ::CloseHandle(mutex);
    return isTold ? 0 : 2;
}

// Adds 1 to the number in the file, so many times.
int Count(char const* name, std::string const& path, int times)
{
    for (int i = 0; i < times; ++i) {
        HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name);
        if (::WaitForSingleObject(mutex, i % 2 == 0 ? INFINITE : 60'000) != WAIT_OBJECT_0) {
            return 1;
        }
        int number = 0;
        std::ifstream(path) >> number;
        std::ofstream(path) << number + 1;
        ::ReleaseMutex(mutex);
        ::CloseHandle(mutex);
    }
    return 0;
}

// 1 when another process has a mutex of the name.
int Exists(char const* name)
{
    ::SetLastError(ERROR_SUCCESS);
    HANDLE const mutex = ::CreateMutexA(nullptr, FALSE, name);
    int const result = ::GetLastError() == ERROR_ALREADY_EXISTS ? 1 : 0;
    return ::CloseHandle(mutex) ? result : 2;
}

// 1 when the shell's folder is the one given, 0 when it is another or none.
int IsFolder(int number, std::string_view path)
{
    char folder[MAX_PATH];
    return SUCCEEDED(::SHGetFolderPathA(nullptr, number, nullptr, 0, folder)) && folder == path ? 1 : 0;
}

std::string PathOfTheSystem()
{
    std::string path(65'536, '\0');
    path.resize(::GetEnvironmentVariableA("PATH", path.data(), static_cast<DWORD>(path.size())));
    return path;
}

// Does the steps in their order: "PATH=value" sets PATH, where nothing removes it; "cd=folder"; "load=name"
// lets the library find a module, "system=name" the system alone; "mark=file" makes a file. Then writes PATH
// to the file `result`, as the runtime library has it and as the system has it, unless the name is empty.
// Returns the number of the module that was found last; 0 where the last search has found none.
int UseLibraries(std::string const& result, char** begin, char** end)
{
    HINSTANCE module = nullptr;
    for (std::string step : std::vector<std::string>(begin, end)) {
        std::string const value = step.substr(step.find('=') + 1);
        step.resize(step.find('='));
        if (step == "PATH") {
            ::_putenv_s("PATH", value.c_str());
        } else if (step == "cd") {
            std::filesystem::current_path(value);
        } else if (step == "load") {
            module = Win32Quarn::LoadLib(value);
        } else if (step == "system") {
            module = ::LoadLibraryA(value.c_str());
        } else {
            std::ofstream(value) << "x";
        }
    }
    if (!result.empty()) {
        char const* const path = std::getenv("PATH");
        std::ofstream(result, std::ios_base::binary) << (path != nullptr ? path : "") << '\n'
                                                     << PathOfTheSystem();
    }
    if (module == nullptr) {
        return 0;
    }
    auto const number = reinterpret_cast<void (*)()>(::GetProcAddress(module, "CompanionNumber"));
    return number != nullptr ? reinterpret_cast<int (*)()>(number)() : 0;
}

// Loads the companion with the number 3 and gives it back, so many times.
int LoadAgain(std::string const& path, int times)
{
    for (int i = 0; i < times; ++i) {
        Win32Quarn::Win32Library library(path, "");
        if (!library.Load()) {
            return 1;
        }
        auto const number = reinterpret_cast<int (*)()>(library.GetFunction("CompanionNumber"));
        if (number == nullptr || number() != 3) {
            return 2;
        }
        library.Unload();
    }
    return 0;
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    std::string_view const command = count > 2 ? arguments[1] : "";
    if (command == "hold" && count == 4) {
        return Hold(arguments[2], arguments[3]);
    }
    if (command == "count" && count == 5) {
        return Count(arguments[2], arguments[3], std::atoi(arguments[4]));
    }
    if (command == "exists" && count == 3) {
        return Exists(arguments[2]);
    }
    if (command == "folder" && count == 4) {
        return IsFolder(std::atoi(arguments[2]), arguments[3]);
    }
    if (command == "loader" && count == 4) {
        return LoadAgain(arguments[2], std::atoi(arguments[3]));
    }
    if (command == "library" && count > 3) {
        return UseLibraries(arguments[2], arguments + 3, arguments + count);
    }
    return -1;
}
