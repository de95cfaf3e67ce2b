// A compressor over zlib for the library's streams: what a program plugs in with SetCompressor.
#pragma once

#include "quarn/stream/compress.h"
#include "quarn/stream/stream_exception.h"

#include <vector>

#include <zlib.h>

class ZlibCompressor : public Quarn::StreamCompress
{
public:
    // Blocks shorter than `minimumSize` bytes stay as they are; writer and reader must agree on it.
    explicit ZlibCompressor(unsigned int minimumSize = 64) : m_minimumSize(minimumSize) {}

    void Compress(Result& result, unsigned char const* source, unsigned long count) override
    {
        uLongf size = ::compressBound(count);
        m_buffer.resize(size);
        if (::compress2(m_buffer.data(), &size, source, count, Z_DEFAULT_COMPRESSION) != Z_OK) {
            throw Quarn::StreamException(Quarn::StreamException::MemoryAllocation);
        }
        result.data = m_buffer.data();
        result.count = static_cast<unsigned int>(size);
    }

    // A block that does not expand to exactly the bytes asked for throws "Corrupted Data".
    void Decompress(Result& result, unsigned char const* source, unsigned long sourceCount,
                    unsigned char* destination, unsigned long destinationCount) override
    {
        uLongf size = destinationCount;
        if (::uncompress(destination, &size, source, sourceCount) != Z_OK || size != destinationCount) {
            throw Quarn::StreamException(Quarn::StreamException::CorruptedData);
        }
        result.data = destination;
        result.count = static_cast<unsigned int>(destinationCount);
    }

    void Reset() override {}
    unsigned int GetMinimumSize() override { return m_minimumSize; }
    void Release() override { m_buffer.clear(); }

private:
    unsigned int m_minimumSize;
    std::vector<unsigned char> m_buffer;
};
