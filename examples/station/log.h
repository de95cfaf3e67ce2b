// The station's log: a line for each event, with date and time, in a file beside its settings.
#pragma once

#include "quarn/properties/win32/property_stores.h"
#include "quarn/text/string.h"

namespace station {

// Levels: what an operator must know, and what helps to understand it.
constexpr int logEvents = 0;
constexpr int logDetails = 1;

// From now on the log is the file beside the settings file, and grows from run to run. Returns its path.
std::string OpenLog(Quarn::Win32::QuarnProperties& settings);
// Messages up to this level are kept: the setting "Log:Level", else all.
void SetLogLevel(Quarn::Win32::QuarnProperties const& settings);
// Writes one line. A log that cannot be written stops nothing; CloseLog tells.
void Log(int level, Quarn::string const& text);
// The code of the first failure, 0 where every line was written.
int CloseLog();

} // namespace station
