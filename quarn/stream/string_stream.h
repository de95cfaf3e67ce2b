// Quarn::stringostream and Quarn::stringodumpstream: output streams that collect texts. Only the texts given
// to operator<< get in; whatever else is written, a dumped line too, shows as "<<binary data>>". One object
// belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/stream/ostream.h"

#include <concepts>

namespace Quarn {

class QUARN_API stringostream : public ostream
{
public:
    // `dumpMode` as in ostream; nothing but a bool passes for it.
    template<std::same_as<bool> Bool>
    explicit stringostream(Bool dumpMode) : ostream(dumpMode)
    {}
    stringostream(stringostream const& other) = default;
    stringostream& operator=(stringostream const& other) = default;
    ~stringostream() override;

    // Both give the texts so far. The reference is valid as long as the stream, the address until the next
    // text.
    operator string const&() const { return m_text; }
    operator char const*() const { return m_text.c_str(); }

    using ostream::operator<<;
    // Append the text; a standard string's up to its first zero byte. Null is the empty text.
    ostream& operator<<(char const* text) override;
    ostream& operator<<(std::string const& text) override;
    ostream& operator<<(string const& text) override;

    // There is nothing to flush and no place to seek to. The position is the length of the text.
    ostream& flush() override;
    std::streampos tellp() override;
    ostream& seekp(unsigned long offset, unsigned int direction) override;
    ostream& seekp(std::streampos position) override;
    // True.
    bool IsValidOutput() const override;
    void clearstate() override;

protected:
    // Appends "<<binary data>>", whatever the bytes.
    ostream& output(unsigned char const* data, unsigned long n) override;

private:
    string m_text;
};

// The same in dump mode.
class QUARN_API stringodumpstream : public stringostream
{
public:
    // No text yet.
    stringodumpstream() : stringostream(true) {}
    stringodumpstream(stringodumpstream const& other) = default;
    stringodumpstream& operator=(stringodumpstream const& other) = default;
    ~stringodumpstream() override;
};

} // namespace Quarn
