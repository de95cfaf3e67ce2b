// The settings of docs/guide.md.
#pragma once

#include "quarn/quarn_util.h"

namespace guide {

long CountRuns();
Quarn::string StationName();

} // namespace guide
