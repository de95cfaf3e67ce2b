// Quarn::ostream: the abstract binary output stream. A concrete stream moves raw bytes (`output`) and
// positions; how numbers, strings and records are stored is decided here, once. Numbers are little-endian in
// the widths of 64-bit Windows: `long` is stored in 32 bits on every system. A stream belongs to one thread
// at a time. Failures are exceptions (stream_exception.h) of the concrete stream; what was written before one
// stays written.
//
// A stream that is made in dump mode is a text for people instead: the `dump` family, which otherwise stores
// each value as operator<< does, writes a line for it. So one function serves a record and its listing:
//
//     void Save(Quarn::ostream& stream, Point const& point)
//     {
//         stream.dump("X", point.x);      // 4 bytes, or the line "X=5"
//         stream.dump("Name", point.name);
//     }
#pragma once

#include "quarn/export.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/window.h"
#include "quarn/stream/wire.h"
#include "quarn/text/string.h"
#include "quarn/text/string_list.h"

#include <concepts>
#include <cstdint>
#include <ios>
#include <string>
#include <string_view>
#include <type_traits>

namespace Quarn {

class DumpStreamIndent;
class StreamCompress;
class Time;

class QUARN_API ostream
{
public:
    virtual ~ostream();

    // Stores id, then version.
    virtual ostream& operator<<(Stream::HeaderBlock const& header);
    // Stores High, then Low (time/time.h).
    virtual ostream& operator<<(Time const& time);
    // Strings: the marker 0xFFFFFFFF, the length, its bitwise complement (32 bits each), then the characters
    // through write(), without a terminator; an empty string has no body. A length above 32 bits is narrowed
    // as Int64ToUInt32 does. In dump mode only the characters are written. A `char const*` is stored as the
    // Quarn::string of its text up to the terminator; null counts as empty.
    virtual ostream& operator<<(char const* text);
    virtual ostream& operator<<(std::string const& text);
    virtual ostream& operator<<(string const& text);

    // Hands buffered bytes on. What it could not write shows in IsValidOutput().
    virtual ostream& flush() = 0;
    // The position of the next byte.
    virtual std::streampos tellp() = 0;
    // Moves to the low 32 bits of `offset` from the beginning (direction 0), the current position (1) or the
    // end (2); the concrete stream says what becomes of other directions and of places outside.
    virtual ostream& seekp(unsigned long offset, unsigned int direction) = 0;
    // Moves to a position from the beginning, beyond 4 GiB too.
    virtual ostream& seekp(std::streampos position) = 0;
    // Whether no operation has failed since the last clearstate().
    virtual bool IsValidOutput() const = 0;
    // Forgets the failures so far, where the concrete stream can.
    virtual void clearstate() = 0;
    // Ends the use of what is behind the stream; does nothing where there is nothing to end.
    virtual void close();
    // The path of the file behind the stream, valid until the stream is opened anew or destroyed; null where
    // there is none.
    virtual char const* get_path();

protected:
    // Moves `n` bytes; the one way by which anything leaves.
    virtual ostream& output(unsigned char const* data, unsigned long n) = 0;

public:
    // Numbers go to `output` as they are, never compressed: char and bool (0 or 1) in 1 byte, short in 2,
    // int, long and float in 4, double and long double (as a double) in 8. A long that does not fit 32 bits
    // is reported as Int64ToUInt32 does (text/narrowing.h) and cut.
    ostream& operator<<(char value) { return Put(value); }
    ostream& operator<<(unsigned char value) { return Put(value); }
    ostream& operator<<(bool value) { return Put(static_cast<unsigned char>(value ? 1 : 0)); }
    ostream& operator<<(short value) { return Put(value); }
    ostream& operator<<(unsigned short value) { return Put(value); }
    ostream& operator<<(int value) { return Put(value); }
    ostream& operator<<(unsigned int value) { return Put(value); }
    ostream& operator<<(long value);
    ostream& operator<<(unsigned long value);
    ostream& operator<<(float value) { return Put(value); }
    ostream& operator<<(double value) { return Put(value); }
    ostream& operator<<(long double value) { return Put(static_cast<double>(value)); }
    // An address is no value to store; without this it would become a bool.
    template<typename T>
        requires(!std::same_as<std::remove_cv_t<T>, char>)
    ostream& operator<<(T*) = delete;

    // Stores a block of `n` bytes. Where a compressor is set, `n` is at least its minimum size and the stream
    // is not in dump mode: `n`, the compressed count (32 bits each) and the compressed bytes; otherwise the
    // bytes as they are. A count above 32 bits is narrowed as Int64ToUInt32 does.
    ostream& write(unsigned char const* data, unsigned long n);
    ostream& write(void const* data, unsigned long n);

    // One value with its label. Binary mode: the value alone, as operator<< stores it. Dump mode: a line,
    // after as many spaces as the depth (dump_indent.h) says, "label=value" in the current locale; a negative
    // depth is none. The label is shown up to its first zero byte. A long that does not fit 32 bits is
    // reported and cut as above.
    ostream& dump(string const& label, char value);           // "%s=%d\n"
    ostream& dump(string const& label, unsigned char value);  // "%s=%u\n"
    ostream& dump(string const& label, short value);          // "%s=%d\n"
    ostream& dump(string const& label, unsigned short value); // "%s=%u\n"
    ostream& dump(string const& label, int value);            // "%s=%d\n"
    ostream& dump(string const& label, unsigned int value);   // "%s=%u\n"
    ostream& dump(string const& label, long value);           // "%s=%ld\n"
    ostream& dump(string const& label, unsigned long value);  // "%s=%lu\n"
    ostream& dump(string const& label, float value);          // "%s=%f\n", as these two
    ostream& dump(string const& label, double value);
    ostream& dump(string const& label, long double value);
    ostream& dump(string const& label, bool value); // "%s=%s\n", true or false
    // "%s=\"%s\"\n": every byte below 32 or above 127 shows as the byte 0x98. Null is the empty text.
    ostream& dump(string const& label, char const* text);
    ostream& dump(string const& label, string const& text);
    // "%s(ID=0x%08lx), Version=%lu\n"
    ostream& dump(string const& label, Stream::HeaderBlock const& header);
    // "%s=%s)\n" with Time::Format("%x %X"); the parenthesis belongs to the format.
    ostream& dump(string const& label, Time const& time);
    template<typename T>
        requires(!std::same_as<std::remove_cv_t<T>, char>)
    ostream& dump(string const& label, T*) = delete;
    // The label as a string, in binary mode too; in dump mode with a line feed, not indented.
    ostream& dump(string const& label);
    // The same in dump mode; nothing in binary mode.
    ostream& dumpLabel(string const& label);

    // The compressor for all blocks and string bodies from now on; null (as in the beginning) for none. It
    // stays the caller's and must outlive its use here.
    void SetCompressor(StreamCompress* compressor) { m_compressor = compressor; }

protected:
    // In dump mode the stream is a text for people: strings without their prefix, nothing compressed. Fixed
    // for life. Only a bool will do: no number or address passes for one.
    template<std::same_as<bool> Bool>
    explicit ostream(Bool dumpMode) : m_dumpMode(dumpMode)
    {}
    // Copies share the compressor. A copy has no window.
    ostream(ostream const& other);
    ostream& operator=(ostream const& other);

    // Lends memory for writing, for as long as this stream lives. Only for a stream whose `output` would do
    // the same with the bytes.
    void SetWindow(detail::Window* window) { m_window = window; }

private:
    friend class DumpStreamIndent;

    // Memory for `n` bytes, or null where they must go through `output`.
    unsigned char* Reserve(std::size_t n)
    {
        return m_window != nullptr && m_window->Room() >= n ? m_window->Take(n) : nullptr;
    }
    template<typename T>
    ostream& Put(T value)
    {
        if (unsigned char* const room = Reserve(sizeof value)) {
            detail::ToWire(room, value);
            return *this;
        }
        unsigned char bytes[sizeof value];
        detail::ToWire(bytes, value);
        return output(bytes, sizeof bytes);
    }
    ostream& PutString(std::string_view text);
    ostream& DumpLine(std::string_view line);

    bool m_dumpMode;
    std::int32_t m_indent = 0; // the depth: spaces before a dumped line
    StreamCompress* m_compressor = nullptr;
    detail::Window* m_window = nullptr;
};

// Writes a list: the count in 32 bits, then the strings, as istream reads it; or dumps it: the label, the
// line "String Count" indented by 4, and each string in a line of its own, as it is and not indented.
QUARN_API ostream& dump(ostream& stream, string const& label, StringList const& list);

} // namespace Quarn
