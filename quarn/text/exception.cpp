#include "quarn/text/exception.h"

namespace Quarn {

QuarnException::QuarnException(string const& message) : std::runtime_error(message) {}

// Out of line, so that the type's identity lives in the library alone.
QuarnException::~QuarnException() = default;

QuarnException::operator bool() const
{
    char const* const text = what();
    return text != nullptr && *text != '\0';
}

} // namespace Quarn
