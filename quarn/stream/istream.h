// Quarn::istream: the abstract binary input stream, the counterpart of Quarn::ostream. A concrete stream
// moves raw bytes (`input`) and positions; how stored numbers, strings and records are read is decided here,
// once. A stream belongs to one thread at a time. Failures are exceptions (stream_exception.h); nothing is
// rolled back: the stream stands behind what was consumed, and the target of the failed read keeps its old
// value where the text below does not say otherwise.
#pragma once

#include "quarn/export.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/window.h"
#include "quarn/stream/wire.h"
#include "quarn/text/string.h"
#include "quarn/text/string_list.h"

#include <cstdint>
#include <cstring>
#include <ios>
#include <string>

namespace Quarn {

class StreamCompress;
class TextStreamReader;
class Time;

class QUARN_API istream
{
public:
    virtual ~istream();

    // Bytes moved by the last read.
    virtual unsigned int gcount() const = 0;
    // The next byte, which stays the next.
    virtual unsigned int peek() = 0;
    // Reads up to `n` bytes, those at hand, and returns their count.
    virtual unsigned int readsome(unsigned char* buffer, unsigned long n) = 0;
    // Steps back by one byte; the concrete stream says when it can and whether `c` is stored there.
    virtual istream& putback(unsigned char c) = 0;
    // Steps back by one byte, where the concrete stream can.
    virtual istream& unget() = 0;
    // The position of the next byte.
    virtual std::streampos tellg() = 0;
    // As ostream::seekp.
    virtual istream& seekg(unsigned long offset, unsigned int direction) = 0;
    virtual istream& seekg(std::streampos position) = 0;
    // Brings what is buffered and what is behind the stream together; 0 for success.
    virtual int sync() = 0;
    // Whether no operation has failed since the last clearstate().
    virtual bool IsValidInput() const = 0;
    // Forgets the failures so far, where the concrete stream can.
    virtual void clearstate() = 0;
    // Ends the use of what is behind the stream; does nothing where there is nothing to end.
    virtual void close();
    // The path of the file behind the stream; null where there is none.
    virtual char const* get_path();

protected:
    // Moves `n` bytes; the one way by which anything arrives.
    virtual istream& input(unsigned char* buffer, unsigned long n) = 0;

public:
    // Numbers come from `input` in the widths of ostream, never compressed. The bytes go straight into the
    // variable: where `input` brings none or too few, the others stay as they were (a long double becomes 0).
    // A long extends the stored sign, an unsigned long fills up with zeros. Of a bool the byte is stored as
    // it stands: look at it through unsigned char where it may come from outside and be neither 0 nor 1.
    istream& operator>>(char& value) { return Get(value); }
    istream& operator>>(unsigned char& value) { return Get(value); }
    istream& operator>>(bool& value) { return Get(value); }
    istream& operator>>(short& value) { return Get(value); }
    istream& operator>>(unsigned short& value) { return Get(value); }
    istream& operator>>(int& value) { return Get(value); }
    istream& operator>>(unsigned int& value) { return Get(value); }
    istream& operator>>(long& value);
    istream& operator>>(unsigned long& value);
    istream& operator>>(float& value) { return Get(value); }
    istream& operator>>(double& value) { return Get(value); }
    istream& operator>>(long double& value);

    // Reads id, then version.
    istream& operator>>(Stream::HeaderBlock& header);
    // Reads High, then Low (time/time.h).
    istream& operator>>(Time& time);
    // Reads a string as ostream stores it, or in the older format: its length in place of the marker, the
    // complement, then the characters, never compressed. The text ends at the first zero byte. Throws
    // StreamException(InvalidStringLength), before any character is read, where length and complement
    // disagree. Lengths are not believed: a body above 64 KiB is read in pieces, and a false length costs no
    // more memory than that beyond what the stream held.
    istream& operator>>(std::string& text);
    istream& operator>>(string& text);
    // The same, copied with a terminator to `text`, which must have the room: no bound is applied.
    istream& operator>>(char* text);

    // Reads a block of `n` bytes as ostream::write stored it. Where a compressor is set and `n` is at least
    // its minimum size: throws StreamException(CompressionSizeFault) where the stored size is not `n`, else
    // expands the block into `buffer`. Otherwise `n` bytes as they are. A count above 32 bits is narrowed as
    // Int64ToUInt32 does.
    istream& read(unsigned char* buffer, unsigned long n);
    istream& read(void* buffer, unsigned long n);

    // The compressor for all blocks and string bodies from now on; null (as in the beginning) for none. It
    // stays the caller's and must outlive its use here.
    void SetCompressor(StreamCompress* compressor) { m_compressor = compressor; }

    // Reads a header block and returns its version, which is at most `newest`. Throws StreamVerifyIdException
    // where the id is not `id`, else StreamVersionException where the version is newer; the stream then
    // stands behind the header. Of both numbers the low 32 bits count.
    unsigned long ReadAndVerifyHeader(unsigned long id, unsigned long newest);

protected:
    istream() = default;
    // Copies share the compressor. A copy has no window.
    istream(istream const& other);
    istream& operator=(istream const& other);

    // Lends memory for reading, for as long as this stream lives. Only for a stream whose `input` would bring
    // the same bytes.
    void SetWindow(detail::Window* window) { m_window = window; }

private:
    friend class TextStreamReader;

    // The next `n` bytes, or null where they must come through `input`.
    unsigned char const* Take(std::size_t n)
    {
        if (m_window == nullptr || m_window->Room() < n) {
            return nullptr;
        }
        m_window->lastRead = static_cast<std::uint32_t>(n);
        return m_window->Take(n);
    }
    template<typename T>
    istream& Get(T& value)
    {
        auto* const bytes = reinterpret_cast<unsigned char*>(&value);
        if (unsigned char const* const stored = Take(sizeof value)) {
            std::memcpy(bytes, stored, sizeof value);
        } else {
            input(bytes, sizeof value);
        }
        detail::FixByteOrder(bytes, sizeof value);
        return *this;
    }
    template<typename Stored, typename T>
    istream& GetLow(T& value);
    void GetText(std::string& text);
    // A string in the current format whose bytes are all in the window; false where that is not the case.
    bool TakeText(std::string& text);
    // The `n` bytes of a body, read through `input` in pieces where `n` is large.
    std::string GetBody(std::uint32_t n);
    bool IsCompressed(std::uint32_t n) const;
    // The stored bytes of a compressed block of `n` bytes, and their expansion.
    std::string GetStored(std::uint32_t n);
    void Expand(std::string const& stored, unsigned char* buffer, std::uint32_t n);

    StreamCompress* m_compressor = nullptr;
    detail::Window* m_window = nullptr;
};

// Reads a list: the count in 32 bits, then that many strings. The list is cleared first and holds what was
// read when an exception ends the reading.
QUARN_API istream& operator>>(istream& stream, StringList& list);

} // namespace Quarn
