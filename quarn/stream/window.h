// The part of a stream's memory that typed reads and writes use without a call: from `next` up to `end`,
// empty as long as every byte has to go through the stream's own input and output. A stream that lends such a
// window counts what it moved there, and closes the window before it does anything else. Its thread's alone.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Quarn::detail {

struct Window
{
    unsigned char* next = nullptr;
    unsigned char* end = nullptr;
    // Bytes moved by the last read.
    std::uint32_t lastRead = 0;

    std::size_t Room() const { return static_cast<std::size_t>(end - next); }
    // The next `n` bytes, which are there, and past them.
    unsigned char* Take(std::size_t n)
    {
        unsigned char* const taken = next;
        next += n;
        return taken;
    }
};

} // namespace Quarn::detail
