// The station's settings: where they come from, and what makes them safe to change.
#pragma once

#include "quarn/properties/win32/property_stores.h"

#include <string>

namespace station {

// What an installer does: leaves the station's name and its limit in the registry for the first run. False
// where that is not allowed.
bool Commission(Quarn::string const& name, unsigned long freeDiskPercent);

// The settings file; the registry seeds the first one.
Quarn::Win32::QuarnProperties MakeSettings();

// Loads the settings, and puts the newest good backup back where they cannot be read. Returns what happened,
// for the operator.
std::string Load(Quarn::Win32::QuarnProperties& settings);

// Backs the file up before the settings change. The backup of the run before goes, so that there is one at a
// time. Returns the backup's path, empty where there is nothing to back up or no backup could be made.
std::string BackUp(Quarn::Win32::QuarnProperties& settings);

} // namespace station
