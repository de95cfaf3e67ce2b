// What a line reader brings, by a model over a text in memory; and streams of a client's own type over the
// same bytes, which are read byte by byte.
#pragma once

#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"

#include <cstddef>
#include <string>
#include <utility>

class LineModel
{
public:
    explicit LineModel(std::string text) : m_text(std::move(text)) {}

    std::size_t Position() const { return m_position; }
    // Bytes moved by the last read: none where the data ended.
    unsigned int Count() const { return m_count; }

    bool ReadLine(std::string& line)
    {
        std::size_t const start = m_position;
        m_count = 1;
        for (line.clear(); m_position != m_text.size();) {
            char const c = m_text[m_position++];
            if ((c & 0x80) != 0) {
                return false;
            }
            if (c != 13 && c != 10) {
                line += c;
            } else if (m_end == 0 || m_end == c) {
                m_end = c;
                return true;
            }
        }
        m_count = 0;
        return m_position != start;
    }

private:
    std::string m_text;
    std::size_t m_position = 0;
    unsigned int m_count = 0;
    char m_end = 0;
};

class DerivedMemory : public Quarn::memorystream
{
public:
    using memorystream::memorystream;
};

class DerivedFile : public Quarn::ifstream
{
public:
    using ifstream::ifstream;
};
