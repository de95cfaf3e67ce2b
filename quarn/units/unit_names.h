// What the distance units are called, in the language that QuarnUtil::InitLanguage chose (platform/module.h),
// else in English, in the process code page. The unknown unit is "unknown" in all three forms, and so is the
// number behind it, 13; other numbers that are no unit have the empty text. Any thread may call the
// functions.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"
#include "quarn/units/distance.h"

namespace Win32Quarn {

// "foot"
QUARN_API Quarn::string GetUnitsName(Quarn::Distance<float>::Unit unit);
// "feet"
QUARN_API Quarn::string GetUnitsNamePlural(Quarn::Distance<float>::Unit unit);
// "ft"
QUARN_API Quarn::string GetUnitsAbbrev(Quarn::Distance<float>::Unit unit);

} // namespace Win32Quarn
