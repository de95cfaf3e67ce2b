// Loading and saving a collection as a settings file: what the public classes share.
#pragma once

#include "quarn/text/string.h"

namespace Quarn {

class PropertyCollection;

namespace detail {

// Adds the file's tree to the collection; false where there is none to add, see ReadSettings. `spoiled` tells
// whether the file holds anything that the collection does not: such a file must not be replaced without a
// second name. Never throws; without memory the result is false.
bool LoadSettings(string const& path, PropertyCollection& collection, bool& spoiled) noexcept;

// Whether there is a file that LoadSettings would call spoiled. Never throws.
bool AreSettingsSpoiled(string const& path) noexcept;

// Makes the collection the content of the file; false where it could not be saved, and the old file is whole
// then. `spoiled` as the last loading has set it; cleared when the old file has its second name, or is no
// more. Never throws.
bool SaveSettings(string const& path, PropertyCollection const& collection, bool& spoiled) noexcept;

} // namespace detail

} // namespace Quarn
