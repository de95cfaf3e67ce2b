// The settings of docs/guide.md.
#pragma once

#include "quarn/quarn_util.h"

namespace guide {

struct Window
{
    int left = 0;
    int top = 0;
    double zoom = 1;
    Quarn::string title;
};

long CountRuns();
bool SaveWindow(Quarn::PropertyKey& settings, Window const& window);
Quarn::string LoadWindow(Quarn::PropertyKey const& settings, Window& window);
Quarn::string StationName();

} // namespace guide
