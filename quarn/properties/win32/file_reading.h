// Reading a settings file whole.
#pragma once

#include "quarn/text/string.h"

namespace Quarn::detail {

// Replaces `content` by the file's. False where the file cannot be read or is longer than a settings document
// can be. The open file keeps nobody from replacing it. Throws std::bad_alloc.
bool ReadWholeFile(string const& path, std::string& content);

} // namespace Quarn::detail
