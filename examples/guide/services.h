// The services of docs/guide.md.
#pragma once

#include "quarn/quarn_util.h"

#include <vector>

namespace guide {

bool StartLog(char const* path);
void LogText(int level, Quarn::string const& text);
void RunUnattended();
Quarn::string Describe(Quarn::Distance<float> const& distance);
Quarn::Distance<float> Convert(Quarn::Distance<float> const& distance, Quarn::Distance<float>::Unit unit);
Quarn::string BackupName(Quarn::Time const& time);
bool IsDue(Quarn::Time const& last, Quarn::Time const& now);
std::vector<Quarn::string> ReadNames(char const* path);
int NextNumber(char const* path);

} // namespace guide
