// The exceptions of the binary streams. All carry a message alone; they are thrown by value and caught by
// their own type or any base, QuarnException and std::runtime_error among them. Threads as QuarnException.
#pragma once

#include "quarn/export.h"
#include "quarn/text/exception.h"
#include "quarn/text/string.h"

namespace Quarn {

// A stream's failure.
class QUARN_API StreamException : public QuarnException
{
public:
    // What went wrong, with the message that tells it.
    enum Error
    {
        None = 0,                // ""
        GenericRead = 1,         // "Generic Read": bytes that are not there; also a write past a memory block
        GenericWrite = 2,        // "Generic Write": a file does not take the bytes
        InvalidStringLength = 3, // "Invalid String Length": a length and its check word disagree
        MemoryAllocation = 4,    // "Memory Allocation": for users; the library does not throw it
        CorruptedData = 5,       // "Corrupted Data": for users, compressors among them
        Reserved = 6,            // ""
        CompressionSizeFault =
            7, // "Compression Size Fault": a compressed block has another size than asked for
    };

    // The message of `e` as listed above; a value outside the list gives the empty message.
    explicit StreamException(Error e);
    // A message of the thrower's own.
    explicit StreamException(string const& message);
    StreamException(StreamException const& other) = default;
    StreamException& operator=(StreamException const& other) = default;
    ~StreamException() override;
};

// A record is of another kind than its reader expects.
class QUARN_API StreamVerifyIdException : public StreamException
{
public:
    // "Stream type check failed, expecting 0x%08lx found 0x%08lx"; of the numbers the low 32 bits.
    StreamVerifyIdException(unsigned long found, unsigned long expected);
    StreamVerifyIdException(StreamVerifyIdException const& other) = default;
    StreamVerifyIdException& operator=(StreamVerifyIdException const& other) = default;
    ~StreamVerifyIdException() override;

private:
    static string Make(unsigned long found, unsigned long expected);
};

// A record was written in a newer layout than its reader knows.
class QUARN_API StreamVersionException : public StreamException
{
public:
    // "Version check %d exceeds %d for id=0x%08lX. Software is out of date."; with id 0 the part from " for"
    // to the number is left out. Of the numbers the low 32 bits; versions show as signed numbers.
    StreamVersionException(unsigned long found, unsigned long newest, unsigned long id);
    StreamVersionException(StreamVersionException const& other) = default;
    StreamVersionException& operator=(StreamVersionException const& other) = default;
    ~StreamVersionException() override;

private:
    static string Make(unsigned long found, unsigned long newest, unsigned long id);
};

} // namespace Quarn
