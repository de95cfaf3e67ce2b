#include "quarn/stream/null_stream.h"

namespace Quarn {

nullstream::~nullstream() = default;

unsigned int nullstream::gcount() const
{
    return 0;
}

unsigned int nullstream::peek()
{
    return 0;
}

unsigned int nullstream::readsome(unsigned char* /*buffer*/, unsigned long /*n*/)
{
    return 0;
}

istream& nullstream::putback(unsigned char /*c*/)
{
    return *this;
}

istream& nullstream::unget()
{
    return *this;
}

std::streampos nullstream::tellg()
{
    return 0;
}

istream& nullstream::seekg(unsigned long /*offset*/, unsigned int /*direction*/)
{
    return *this;
}

istream& nullstream::seekg(std::streampos /*position*/)
{
    return *this;
}

int nullstream::sync()
{
    return 0;
}

bool nullstream::IsValidInput() const
{
    return true;
}

ostream& nullstream::flush()
{
    return *this;
}

std::streampos nullstream::tellp()
{
    return 0;
}

ostream& nullstream::seekp(unsigned long /*offset*/, unsigned int /*direction*/)
{
    return *this;
}

ostream& nullstream::seekp(std::streampos /*position*/)
{
    return *this;
}

bool nullstream::IsValidOutput() const
{
    return true;
}

void nullstream::clearstate() {}

void nullstream::close() {}

char const* nullstream::get_path()
{
    return nullptr;
}

istream& nullstream::input(unsigned char* /*buffer*/, unsigned long /*n*/)
{
    return *this;
}

ostream& nullstream::output(unsigned char const* /*data*/, unsigned long /*n*/)
{
    return *this;
}

} // namespace Quarn
