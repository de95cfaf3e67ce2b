// The log, messages, units, times, lines and locks.
#include "services.h"

namespace guide {

// [log]
namespace Log = Win32Quarn::Log;

bool StartLog(char const* path)
{
    Log::SetOutputLevel(2);        // 0 to 2 are written, 3 and more dropped
    Log::SetOutputOptions(4 | 16); // append; the date in front, a line feed behind
    return Log::SetPath(path) == 0;
}

void LogText(int level, Quarn::string const& text)
{
    Quarn::string message; // with doubled percent signs: the log reads texts as formats
    for (char const c : text) {
        message.append(c == '%' ? 2 : 1, c);
    }
    if (Log::Output(level, message.c_str()) < 0) {
        Log::ClearError(); // try again with the next message
    }
}
// [end]

// [set the message handler]
namespace {

void ReportToLog(char const* text, char const* /*caption*/)
{
    LogText(0, text);
}

} // namespace

void RunUnattended()
{
    Quarn::SetMessageHandler(ReportToLog);
}
// [end]

// [translate units]
Quarn::string Describe(Quarn::Distance<float> const& distance)
{
    Quarn::string text;
    text.Format("%g %s", static_cast<double>(distance.value),
                Win32Quarn::GetUnitsNamePlural(distance.unit).c_str());
    return text;
}
// [end]

// [convert units]
Quarn::Distance<float> Convert(Quarn::Distance<float> const& distance, Quarn::Distance<float>::Unit unit)
{
    // As long as it takes at one of the unit in a time.
    Quarn::Velocity<float> const one{{unit, 0}, 1};
    return {unit, (distance / one).value};
}
// [end]

// [format times]
Quarn::string BackupName(Quarn::Time const& time)
{
    return time.Format("pumps-%Y%m%d-%H%M%S.bak");
}

bool IsDue(Quarn::Time const& last, Quarn::Time const& now)
{
    Quarn::TimeValue const everySixHours(0, 6, 0, 0, 0, 0);
    return now >= last + everySixHours;
}
// [end]

// [read lines]
std::vector<Quarn::string> ReadNames(char const* path)
{
    std::vector<Quarn::string> names;
    Quarn::ifstream file(path, std::ios_base::binary);
    Quarn::TextStreamReader reader(file);
    for (Quarn::string line; reader.ReadLine(line);) {
        names.push_back(line);
    }
    return names;
}
// [end]

// [lock between processes]
// The next number of a series that all processes share, counted from 1.
int NextNumber(char const* path)
{
    Win32Quarn::MutexWrapper const lock("PumpsSeries"); // waits for its turn; given back at the end
    int number = 0;
    Quarn::ifstream old(path, std::ios_base::binary);
    if (old.IsValidInput()) {
        old >> number;
        old.close();
    }
    ++number;
    Quarn::ofstream file(path, std::ios_base::binary | std::ios_base::trunc);
    file << number;
    return number;
}
// [end]

} // namespace guide
