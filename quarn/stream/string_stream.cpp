#include "quarn/stream/string_stream.h"

namespace Quarn {

stringostream::~stringostream() = default;

ostream& stringostream::operator<<(char const* text)
{
    m_text += text != nullptr ? text : "";
    return *this;
}

ostream& stringostream::operator<<(std::string const& text)
{
    return *this << text.c_str();
}

ostream& stringostream::operator<<(string const& text)
{
    m_text += text;
    return *this;
}

ostream& stringostream::flush()
{
    return *this;
}

std::streampos stringostream::tellp()
{
    return static_cast<std::streamoff>(m_text.size());
}

ostream& stringostream::seekp(unsigned long /*offset*/, unsigned int /*direction*/)
{
    return *this;
}

ostream& stringostream::seekp(std::streampos /*position*/)
{
    return *this;
}

bool stringostream::IsValidOutput() const
{
    return true;
}

void stringostream::clearstate() {}

ostream& stringostream::output(unsigned char const* /*data*/, unsigned long /*n*/)
{
    m_text += "<<binary data>>";
    return *this;
}

stringodumpstream::~stringodumpstream() = default;

} // namespace Quarn
