// What the station measures: the machine that it runs on.
#pragma once

#include "record.h"

namespace station {

// Fills in disk space, up time, processors and the time of day; what cannot be read stays 0, with a remark.
void TakeReadings(Record& record);

} // namespace station
