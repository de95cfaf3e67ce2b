#include "log.h"

#include "quarn/platform/log.h"
#include "quarn/time/time.h"

#include <filesystem>

namespace station {

namespace {

// Append, date and line feed. The time stands in the message: the option for it takes its writing for a
// failure.
constexpr unsigned int logOptions = 4 | 16;

int g_failure = 0;

void Keep(int result)
{
    g_failure = g_failure == 0 ? result : g_failure;
}

} // namespace

std::string OpenLog(Quarn::Win32::QuarnProperties& settings)
{
    std::string path =
        std::filesystem::path(settings.GetXMLFilePath().c_str()).replace_extension(".log").string();
    Keep(Win32Quarn::Log::SetPath(path.c_str()));
    Win32Quarn::Log::SetOutputOptions(logOptions);
    Win32Quarn::Log::SetOutputLevel(logDetails);
    return path;
}

void SetLogLevel(Quarn::Win32::QuarnProperties const& settings)
{
    Win32Quarn::Log::SetOutputLevel(static_cast<int>(settings.GetValueInt32("Log:Level", logDetails)));
}

void Log(int level, Quarn::string const& text)
{
    // The log reads its text as a format.
    Quarn::string line = Quarn::LocalTime().Format("%H:%M:%S") + " ";
    for (char const c : text) {
        line.append(c == '%' ? 2 : 1, c);
    }
    Keep(Win32Quarn::Log::Output(level, line.c_str()));
}

int CloseLog()
{
    int const result = Win32Quarn::Log::Close();
    // Nothing was open where no line was to be kept.
    if (result != -2) {
        Keep(result);
    }
    return g_failure;
}

} // namespace station
