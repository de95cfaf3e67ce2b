// Reading a settings file whole.
#pragma once

#include "quarn/text/string.h"

namespace Quarn::detail {

// Replaces `content` by the file's. False where the file cannot be read or is longer than a settings document
// can be. A save of the file waits for the end of the reading on Windows (see ShareAll), elsewhere nobody
// does. Throws std::bad_alloc.
bool ReadWholeFile(string const& path, std::string& content);

} // namespace Quarn::detail
