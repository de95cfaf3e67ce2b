// (private) The log's file.
#pragma once

#include <stdio.h>

namespace Quarn::detail {

// A stream that writes to the file, from its start or behind its end; null with errno set where it cannot be
// opened. Programs that this one starts do not get it. Does not wait: a pipe that nobody reads is an error.
::FILE* OpenLogFile(char const* path, bool truncates);

} // namespace Quarn::detail
