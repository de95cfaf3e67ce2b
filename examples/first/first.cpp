#include "quarn/properties/win32/property_stores.h"
#include "quarn/stream/file_stream.h"

#include <cstdio>

int main()
{
    Quarn::Win32::QuarnProperties settings("First.xml", "First");
    settings.Populate(); // false on the first run: there is no file yet, and the defaults hold
    long const run = settings.GetValueInt32("Runs:Count", 0) + 1;
    Quarn::string assignment;
    assignment.Format("Runs:Count=%ld", run);
    settings.SetValueInt32(assignment, true);

    Quarn::ofstream record("first.record", std::ios_base::binary | std::ios_base::trunc);
    record << Quarn::Stream::HeaderBlock{0x46495253, 1} << run << "pump started";
    record.close();

    if (!record.IsValidOutput() || !settings.Persist(false)) {
        std::puts("The run could not be saved.");
        return 1;
    }
    std::printf("Run %ld\n", run);
    return 0;
}
