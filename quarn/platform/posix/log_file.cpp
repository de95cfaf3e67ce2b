#include "quarn/platform/log_file.h"

#include "quarn/platform/posix/files.h"

#include <fcntl.h>

namespace Quarn::detail {

::FILE* OpenLogFile(char const* path, bool truncates)
{
    int const mode = truncates ? O_TRUNC : O_APPEND;
    Descriptor file = Open(path, O_WRONLY | O_CREAT | O_NONBLOCK | O_NOCTTY | mode, 0666);
    if (!file || ::fcntl(file.Get(), F_SETFL, truncates ? 0 : O_APPEND) != 0) {
        return nullptr;
    }
    ::FILE* const stream = ::fdopen(file.Get(), truncates ? "wb" : "ab");
    if (stream != nullptr) {
        file.Release();
    }
    return stream;
}

} // namespace Quarn::detail
