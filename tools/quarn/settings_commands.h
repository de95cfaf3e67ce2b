// The commands "quarn settings ...". Each returns the exit code, or throws Failure.
#pragma once

#include "outcome.h"

#include <string>
#include <vector>

namespace tool {

ExitCode ShowSettings(std::string const& file, std::string const& key, bool json);
ExitCode GetSetting(std::string const& file, std::string const& address, bool json);

// `type` is empty for that of the value that is there, "string" for a new one.
ExitCode SetSetting(std::string const& file, std::string const& address, std::string const& value,
                    std::string const& type, bool json);
ExitCode UnsetSetting(std::string const& file, std::string const& address, bool json);

ExitCode DiffSettings(std::string const& before, std::string const& after, bool json);
ExitCode CheckSettings(std::vector<std::string> const& files, bool json);

ExitCode BackupSettings(std::string const& file, bool json);
// An empty `backup` is the newest of the file's that loads.
ExitCode RestoreSettings(std::string const& file, std::string const& backup, bool json);

} // namespace tool
