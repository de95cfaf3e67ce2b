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

// [pack a value]
bool SaveWindow(Quarn::PropertyKey& settings, Window const& window)
{
    Quarn::PropertyValue* const value = settings.AddValue("Window");
    return value != nullptr && Quarn::Pack(*value, window.left, window.top, window.zoom, window.title);
}

// Empty, or why the window keeps its place.
Quarn::string LoadWindow(Quarn::PropertyKey const& settings, Window& window)
{
    Quarn::PropertyValue const* const value = settings.GetValue("Window");
    if (value == nullptr) {
        return "there is none yet";
    }
    Quarn::UnpackResult const result =
        Quarn::Unpack(*value, window.left, window.top, window.zoom, window.title);
    Quarn::string reason;
    if (!result) {
        reason.Format("item %zu of the record is not as it should be", result.item + 1);
    }
    return reason;
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
