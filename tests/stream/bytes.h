// Bytes in tests: written as hexadecimal text, read from the golden files that both systems share, taken out
// of streams.
#pragma once

#include "quarn/stream/memory_stream.h"

#include <cstddef>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

using Bytes = std::vector<unsigned char>;

// "FE FF" as two bytes.
inline Bytes Hex(std::string const& text)
{
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < text.size(); i += 3) {
        bytes.push_back(static_cast<unsigned char>(std::stoul(text.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

inline Bytes FileBytes(std::string const& path)
{
    std::ifstream file(path, std::ios_base::binary);
    if (!file) {
        throw std::runtime_error("no file " + path);
    }
    return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline Bytes Golden(std::string const& name)
{
    return FileBytes(std::string(QUARN_TEST_DATA) + "/stream/" + name);
}

inline std::string TextOf(Bytes const& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

// What has been written to the stream up to its position.
inline Bytes Written(Quarn::memorystream& stream)
{
    unsigned char const* const memory = stream.GetMemory();
    return Bytes(memory, memory + static_cast<std::ptrdiff_t>(stream.tellp()));
}

// A memory stream over bytes of its own, to read from; of exactly the library's type.
class Source
{
public:
    explicit Source(Bytes const& bytes)
        : m_bytes(bytes),
          m_stream(m_bytes.data(), static_cast<std::streamoff>(m_bytes.size()))
    {}
    explicit Source(std::string const& hex) : Source(Hex(hex)) {}
    Source(Source const& other) = delete;
    Source& operator=(Source const& other) = delete;

    operator Quarn::memorystream&() { return m_stream; }

private:
    Bytes m_bytes;
    Quarn::memorystream m_stream;
};
