// A compressor over zlib (RFC 1950), as a client of the library writes one.
#pragma once

#include "quarn/stream/compress.h"
#include "quarn/stream/stream_exception.h"

#include <vector>

#include <zlib.h>

class ZlibCompressor : public Quarn::StreamCompress
{
public:
    explicit ZlibCompressor(unsigned int minimum = 64) : m_minimum(minimum) {}

    void Compress(Result& result, unsigned char const* source, unsigned long count) override
    {
        uLongf room = ::compressBound(count);
        m_buffer.resize(room);
        if (::compress(m_buffer.data(), &room, source, count) != Z_OK) {
            throw Quarn::StreamException(Quarn::StreamException::MemoryAllocation);
        }
        result.data = m_buffer.data();
        result.count = static_cast<unsigned int>(room);
    }

    void Decompress(Result& /*result*/, unsigned char const* source, unsigned long sourceCount,
                    unsigned char* destination, unsigned long destinationCount) override
    {
        uLongf count = destinationCount;
        if (::uncompress(destination, &count, source, sourceCount) != Z_OK || count != destinationCount) {
            throw Quarn::StreamException(Quarn::StreamException::CorruptedData);
        }
    }

    void Reset() override {}
    unsigned int GetMinimumSize() override { return m_minimum; }
    void Release() override { m_buffer = {}; }

private:
    unsigned int m_minimum;
    std::vector<unsigned char> m_buffer;
};
