// Quarn::QuarnException: the root of the library's exceptions. It carries a message for people, which any
// threads may read at once. They are thrown by value; catch them by reference, by their own type or any base.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <stdexcept>

namespace Quarn {

class QUARN_API QuarnException : public std::runtime_error
{
public:
    // The message up to its first zero byte.
    explicit QuarnException(string const& message = string());
    QuarnException(QuarnException const& other) = default;
    QuarnException& operator=(QuarnException const& other) = default;
    ~QuarnException() override;

    // The message, as what() gives it (an override of what() is honoured). Valid as long as this object.
    char const* GetString() const { return what(); }
    // True when there is a message.
    operator bool() const;
};

} // namespace Quarn
