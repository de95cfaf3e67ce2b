// Settings stores.
#include "settings.h"

#include "quarn/platform/win32_api.h" // HKEY_LOCAL_MACHINE

namespace guide {

// [keep settings]
// The number of this run, counted from 1; 0 where it could not be saved.
long CountRuns()
{
    Quarn::Win32::QuarnProperties settings("Pumps.xml", "Pumps");
    settings.Populate(); // false on the first run: the store is empty then, and the defaults hold
    long const run = settings.GetValueInt32("Runs:Count", 0) + 1;

    Quarn::string assignment;
    assignment.Format("Runs:Count=%ld", run);
    settings.SetValueInt32(assignment, true);
    settings.SetValueString("Operator:Name=Smith", true);
    return settings.Persist(false) ? run : 0;
}
// [end]

// [seed settings]
Quarn::string StationName()
{
    Quarn::Win32::QuarnProperties settings("Station2.xml", "Station", HKEY_LOCAL_MACHINE,
                                           R"(SOFTWARE\Acme\Station)");
    settings.Populate(); // the file, or, where there is none yet, the registry's key
    return settings.GetValueString("Identity:Name", "a station without a name");
}
// [end]

} // namespace guide
