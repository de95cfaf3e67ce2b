#include "quarn/stream/stream_exception.h"

#include <cstdint>
#include <iterator>

namespace Quarn {

namespace {

char const* const g_messages[] = {
    "",
    "Generic Read",
    "Generic Write",
    "Invalid String Length",
    "Memory Allocation",
    "Corrupted Data",
    "",
    "Compression Size Fault",
};

char const* MessageOf(StreamException::Error e)
{
    auto const index = static_cast<unsigned int>(e);
    return index < std::size(g_messages) ? g_messages[index] : "";
}

unsigned int Low32(unsigned long value)
{
    return static_cast<std::uint32_t>(value);
}

} // namespace

StreamException::StreamException(Error e) : QuarnException(MessageOf(e)) {}

StreamException::StreamException(string const& message) : QuarnException(message) {}

StreamException::~StreamException() = default;

StreamVerifyIdException::StreamVerifyIdException(unsigned long found, unsigned long expected)
    : StreamException(Make(found, expected))
{}

StreamVerifyIdException::~StreamVerifyIdException() = default;

string StreamVerifyIdException::Make(unsigned long found, unsigned long expected)
{
    string message;
    message.Format("Stream type check failed, expecting 0x%08x found 0x%08x", Low32(expected), Low32(found));
    return message;
}

StreamVersionException::StreamVersionException(unsigned long found, unsigned long newest, unsigned long id)
    : StreamException(Make(found, newest, id))
{}

StreamVersionException::~StreamVersionException() = default;

string StreamVersionException::Make(unsigned long found, unsigned long newest, unsigned long id)
{
    auto const foundNumber = static_cast<int>(Low32(found));
    auto const newestNumber = static_cast<int>(Low32(newest));
    string message;
    if (Low32(id) != 0) {
        message.Format("Version check %d exceeds %d for id=0x%08X. Software is out of date.", foundNumber,
                       newestNumber, Low32(id));
    } else {
        message.Format("Version check %d exceeds %d. Software is out of date.", foundNumber, newestNumber);
    }
    return message;
}

} // namespace Quarn
