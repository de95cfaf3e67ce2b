// Quarn::TextStreamReader: reads lines of 7-bit text from a stream and finds out by itself whether carriage
// return or line feed ends them: whichever comes first does from then on, and the other is dropped wherever
// it stands. So text with either, or with both in this or that order, comes out the same. One object belongs
// to one thread at a time, as its stream does.
//
//     Quarn::ifstream file("stations.txt", std::ios_base::binary);
//     Quarn::TextStreamReader reader(file);
//     for (Quarn::string line; reader.ReadLine(line);) { ... }
#pragma once

#include "quarn/export.h"
#include "quarn/stream/istream.h"
#include "quarn/text/string.h"

namespace Quarn {

class QUARN_API TextStreamReader
{
public:
    // The stream stays the caller's and must outlive its use here.
    TextStreamReader(istream& in) : m_in(in) {}

    // Reads the next line, without its end, into `line`. The stream then stands exactly behind what was read,
    // in the state of a stream that was read byte by byte.
    //
    // True where a line end was met. At the end of the data, which is where the stream throws a
    // StreamException, whether this call has read any byte: an unfinished last line gives true, and so does,
    // with an empty line, the line feed that is left of a last carriage return and line feed. A byte of 128
    // or more ends the call with false and is consumed; `line` holds what stood before it, and the next call
    // goes on behind it. A stream that brings nothing and does not throw (nullstream) gives false. Every
    // other exception passes through.
    bool ReadLine(string& line);

    // Whether `c` is carriage return or line feed.
    static bool IsCRLF(char c) { return c == '\r' || c == '\n'; }

private:
    bool TakeAtHand(string& line);
    unsigned char ReadByte();

    istream& m_in;
    char m_lineEnd = 0; // 0 until the first line end
};

} // namespace Quarn
