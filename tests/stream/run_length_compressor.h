// A compressor for tests whose bytes can be written by hand: runs of up to 255 equal bytes, each as its count
// and the byte. It counts its calls, so that a test sees that every buffer was released.
#pragma once

#include "quarn/stream/compress.h"
#include "quarn/stream/stream_exception.h"

#include <cstring>
#include <vector>

class RunLengthCompressor : public Quarn::StreamCompress
{
public:
    explicit RunLengthCompressor(unsigned int minimum = 0) : m_minimum(minimum) {}

    int compressed = 0;
    int decompressed = 0;
    int released = 0;

    void Compress(Result& result, unsigned char const* source, unsigned long count) override
    {
        ++compressed;
        m_bytes.clear();
        for (unsigned long i = 0; i < count;) {
            unsigned char run = 1;
            while (run < 255 && i + run < count && source[i + run] == source[i]) {
                ++run;
            }
            m_bytes.push_back(run);
            m_bytes.push_back(source[i]);
            i += run;
        }
        result.data = m_bytes.data();
        result.count = static_cast<unsigned int>(m_bytes.size());
    }

    void Decompress(Result& /*result*/, unsigned char const* source, unsigned long sourceCount,
                    unsigned char* destination, unsigned long destinationCount) override
    {
        ++decompressed;
        unsigned long done = 0;
        for (unsigned long i = 0; i + 1 < sourceCount; i += 2) {
            if (source[i] > destinationCount - done) {
                throw Quarn::StreamException(Quarn::StreamException::CorruptedData);
            }
            std::memset(destination + done, source[i + 1], source[i]);
            done += source[i];
        }
        if (done != destinationCount || sourceCount % 2 != 0) {
            throw Quarn::StreamException(Quarn::StreamException::CorruptedData);
        }
    }

    void Reset() override {}
    unsigned int GetMinimumSize() override { return m_minimum; }

    void Release() override
    {
        ++released;
        m_bytes = {};
    }

private:
    unsigned int m_minimum;
    std::vector<unsigned char> m_bytes;
};
