// Quarn::StreamCompress: the hook through which a caller plugs a compressor into a stream. The library holds
// none itself. A stream never owns its compressor, which outlives every use; one compressor serves one thread
// at a time. Writer and reader each decide from GetMinimumSize() alone whether a block is compressed, so both
// sides use compressors with equal minimum sizes.
#pragma once

#include "quarn/export.h"

namespace Quarn {

class QUARN_API StreamCompress
{
public:
    // What Compress made: `count` bytes at `data`, which stay the compressor's until Release().
    struct Result
    {
        unsigned char* data = nullptr; // the compressed bytes
        unsigned int count = 0;        // how many
    };

    StreamCompress() = default;
    StreamCompress(StreamCompress const& other) = default;
    StreamCompress& operator=(StreamCompress const& other) = default;

    // Compresses the `count` bytes at `source` and describes the outcome in `result`. Reports a failure by an
    // exception, which passes through the stream to its user.
    virtual void Compress(Result& result, unsigned char const* source, unsigned long count) = 0;
    // Expands the `sourceCount` compressed bytes at `source` into exactly `destinationCount` bytes at
    // `destination`; `result` is the compressor's own business. The source comes from outside: bytes that do
    // not expand to that very count are reported by an exception, StreamException(CorruptedData) by custom.
    virtual void Decompress(Result& result, unsigned char const* source, unsigned long sourceCount,
                            unsigned char* destination, unsigned long destinationCount) = 0;
    // The compressor's own; the library never calls it.
    virtual void Reset() = 0;
    // Blocks shorter than this are stored as they are.
    virtual unsigned int GetMinimumSize() = 0;
    // Frees what the last Compress or Decompress allocated. Called exactly once after each, also after one
    // that threw.
    virtual void Release() = 0;

    virtual ~StreamCompress();
};

} // namespace Quarn
