#include "terminal.h"

#include <unistd.h>

namespace tool {

bool IsTerminal(std::FILE* stream)
{
    return ::isatty(::fileno(stream)) != 0;
}

void PrepareTerminal() {}

} // namespace tool
