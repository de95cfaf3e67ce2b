// One run of the station, start to stop.
#pragma once

namespace station {

// Takes the readings, writes the record, tells the operator what happens. Returns the program's exit code.
int RunOnce();

} // namespace station
