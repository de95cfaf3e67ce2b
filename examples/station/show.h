// Prints a settings tree for people.
#pragma once

#include "quarn/properties/property_collection.h"

namespace station {

void Show(Quarn::PropertyCollection const& settings);

} // namespace station
