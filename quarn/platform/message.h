// The one blocking message of the library (a size that does not fit, see text/narrowing.h) and the handler
// that can take its place: a station without an operator, or a test, sets its own. Any thread may call both.
#pragma once

#include "quarn/export.h"

namespace Quarn {

// Gets the message and its caption, both zero-terminated and valid during the call. Called on the thread that
// met the condition, from any thread, possibly several at once; what it throws is dropped.
using MessageHandler = void (*)(char const* text, char const* caption);

// Replaces the handler for the whole process and returns the one before; null means the default, the
// platform's message box with a stop icon and one OK button. Any thread may call it.
QUARN_API MessageHandler SetMessageHandler(MessageHandler handler) noexcept;

// Hands the message to the handler and returns when that has returned. Never throws.
QUARN_API void ShowBlockingMessage(char const* text, char const* caption) noexcept;

} // namespace Quarn
