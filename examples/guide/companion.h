// The companion library of docs/guide.md.
#pragma once

#include "quarn/quarn_util.h"

namespace guide {

double FlowAt(double level);

} // namespace guide
