// Where the station's window stands, kept as one packed record: one value of the settings holds the four
// numbers.
#pragma once

#include "quarn/properties/property_key.h"

namespace station {

struct Window
{
    int left = 0;
    int top = 0;
    int width = 640;
    int height = 480;
};

// The window of the run before; where there is none, one in the corner of the screen.
Window ReadWindow(Quarn::PropertyKey const& settings);
void WriteWindow(Quarn::PropertyKey& settings, Window const& window);

// The next window stands a little lower and further right, as windows do, and after some in the corner again.
Window NextWindow(Window window);

} // namespace station
