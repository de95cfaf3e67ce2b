#include "quarn/platform/log_file.h"

namespace Quarn::detail {

::FILE* OpenLogFile(char const* path, bool truncates)
{
    return ::fopen(path, truncates ? "wbN" : "abN"); // N: not for the programs that this one starts
}

} // namespace Quarn::detail
