// Quarn::nullstream: an input and output stream that takes everything, keeps nothing and brings nothing. A
// number read from it keeps its value, a header block becomes 0, 0, a list becomes empty, and a string throws
// StreamException(InvalidStringLength). One object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"

#include <ios>

namespace Quarn {

class QUARN_API nullstream : public istream, public ostream
{
public:
    // In binary mode.
    nullstream() : ostream(false) {}
    nullstream(nullstream const& other) = default;
    nullstream& operator=(nullstream const& other) = default;
    ~nullstream() override;

    // Each count and position is 0, peek() too; the stream is always valid; the rest does nothing.
    unsigned int gcount() const override;
    unsigned int peek() override;
    unsigned int readsome(unsigned char* buffer, unsigned long n) override;
    istream& putback(unsigned char c) override;
    istream& unget() override;
    std::streampos tellg() override;
    istream& seekg(unsigned long offset, unsigned int direction) override;
    istream& seekg(std::streampos position) override;
    int sync() override;
    bool IsValidInput() const override;

    ostream& flush() override;
    std::streampos tellp() override;
    ostream& seekp(unsigned long offset, unsigned int direction) override;
    ostream& seekp(std::streampos position) override;
    bool IsValidOutput() const override;

    void clearstate() override;
    void close() override;
    char const* get_path() override;

protected:
    // Leaves the buffer as it is.
    istream& input(unsigned char* buffer, unsigned long n) override;
    ostream& output(unsigned char const* data, unsigned long n) override;
};

} // namespace Quarn
