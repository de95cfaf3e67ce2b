// Streams that fail after so many bytes, and remember how they were asked: the smallest streams that a client
// can write.
#pragma once

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/stream/stream_exception.h"

#include "tests/stream/bytes.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

class FakeOutput : public Quarn::ostream
{
public:
    // Takes `room` bytes, then throws GenericWrite.
    explicit FakeOutput(bool dumpMode = false, std::size_t room = SIZE_MAX) : ostream(dumpMode), m_room(room)
    {}

    Bytes const& Taken() const { return m_taken; }
    // The sizes of the raw writes.
    std::vector<std::size_t> const& Calls() const { return m_calls; }

    ostream& flush() override { return *this; }
    std::streampos tellp() override { return static_cast<std::streamoff>(m_taken.size()); }
    ostream& seekp(unsigned long /*offset*/, unsigned int /*direction*/) override { return *this; }
    ostream& seekp(std::streampos /*position*/) override { return *this; }
    bool IsValidOutput() const override { return true; }
    void clearstate() override {}

protected:
    ostream& output(unsigned char const* data, unsigned long n) override
    {
        m_calls.push_back(n);
        std::size_t const count = std::min<std::size_t>(n, m_room - m_taken.size());
        m_taken.insert(m_taken.end(), data, data + count);
        if (count != n) {
            throw Quarn::StreamException(Quarn::StreamException::GenericWrite);
        }
        return *this;
    }

private:
    Bytes m_taken;
    std::vector<std::size_t> m_calls;
    std::size_t m_room;
};

class FakeInput : public Quarn::istream
{
public:
    // Brings `bytes`, then throws GenericRead.
    explicit FakeInput(Bytes const& bytes) : m_bytes(bytes) {}

    std::size_t Left() const { return m_bytes.size() - m_position; }
    // The sizes of the raw reads.
    std::vector<std::size_t> const& Calls() const { return m_calls; }

    unsigned int gcount() const override { return 0; }
    unsigned int peek() override { return 0; }
    unsigned int readsome(unsigned char* /*buffer*/, unsigned long /*n*/) override { return 0; }
    istream& putback(unsigned char /*c*/) override { return *this; }
    istream& unget() override { return *this; }
    std::streampos tellg() override { return static_cast<std::streamoff>(m_position); }
    istream& seekg(unsigned long /*offset*/, unsigned int /*direction*/) override { return *this; }
    istream& seekg(std::streampos /*position*/) override { return *this; }
    int sync() override { return 0; }
    bool IsValidInput() const override { return true; }
    void clearstate() override {}

protected:
    istream& input(unsigned char* buffer, unsigned long n) override
    {
        m_calls.push_back(n);
        std::size_t const count = std::min<std::size_t>(n, Left());
        if (count != 0) {
            std::memcpy(buffer, m_bytes.data() + m_position, count);
        }
        m_position += count;
        if (count != n) {
            throw Quarn::StreamException(Quarn::StreamException::GenericRead);
        }
        return *this;
    }

private:
    Bytes m_bytes;
    std::size_t m_position = 0;
    std::vector<std::size_t> m_calls;
};
