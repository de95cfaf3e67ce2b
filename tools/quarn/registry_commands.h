// The commands "quarn registry ...", on a key whose path the text is. Each returns the exit code, or throws
// Failure.
#pragma once

#include "outcome.h"

#include <string>

namespace tool {

ExitCode ShowRegistry(std::string const& text, bool json);
// Makes the file what a store that is seeded from the key would hold. Differs where something was left out.
ExitCode ExportRegistry(std::string const& text, std::string const& file, bool json);
// Adds the file's values to the key. Differs where something was left out.
ExitCode ImportRegistry(std::string const& text, std::string const& file, bool json);

} // namespace tool
