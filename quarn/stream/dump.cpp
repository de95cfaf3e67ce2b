// The dump family: a value as it is stored, or as a line for people.
#include "quarn/stream/dump_indent.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/narrowing.h"

#include <algorithm>

namespace Quarn {

namespace {

string SignedLine(string const& label, int value)
{
    string line;
    line.Format("%s=%d\n", label.c_str(), value);
    return line;
}

string UnsignedLine(string const& label, unsigned int value)
{
    string line;
    line.Format("%s=%u\n", label.c_str(), value);
    return line;
}

string RealLine(string const& label, double value)
{
    string line;
    line.Format("%s=%f\n", label.c_str(), value);
    return line;
}

// Not by Format, whose texts end at 2 GiB.
string TextLine(string const& label, std::string_view text)
{
    constexpr char unprintable = '\x98';
    string line = label.c_str(); // NOLINT(readability-redundant-string-cstr): up to a zero byte
    line += "=\"";
    std::size_t const start = line.size();
    line.append(text.begin(), text.end());
    auto const first = line.begin() + static_cast<std::ptrdiff_t>(start);
    std::replace_if(
        first, line.end(), [](char c) { return static_cast<signed char>(c) < 32; }, unprintable);
    line += "\"\n";
    return line;
}

} // namespace

ostream& ostream::DumpLine(string const& line)
{
    constexpr std::int32_t step = 128;
    static char const spaces[] = "                                                                "
                                 "                                                                ";
    static_assert(sizeof spaces == step + 1);
    std::int32_t left = std::max(m_indent, 0);
    for (; left > step; left -= step) {
        *this << spaces;
    }
    *this << spaces + (step - left);
    return output(reinterpret_cast<unsigned char const*>(line.data()), detail::NarrowCount(line.size()));
}

ostream& ostream::dump(string const& label, char value)
{
    return m_dumpMode ? DumpLine(SignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned char value)
{
    return m_dumpMode ? DumpLine(UnsignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, short value)
{
    return m_dumpMode ? DumpLine(SignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned short value)
{
    return m_dumpMode ? DumpLine(UnsignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, int value)
{
    return m_dumpMode ? DumpLine(SignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned int value)
{
    return m_dumpMode ? DumpLine(UnsignedLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, long value)
{
    return m_dumpMode ? DumpLine(SignedLine(label, detail::NarrowLong(value))) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned long value)
{
    return m_dumpMode ? DumpLine(UnsignedLine(label, detail::NarrowLong(value))) : *this << value;
}

ostream& ostream::dump(string const& label, float value)
{
    return m_dumpMode ? DumpLine(RealLine(label, static_cast<double>(value))) : *this << value;
}

ostream& ostream::dump(string const& label, double value)
{
    return m_dumpMode ? DumpLine(RealLine(label, value)) : *this << value;
}

ostream& ostream::dump(string const& label, long double value)
{
    return m_dumpMode ? DumpLine(RealLine(label, static_cast<double>(value))) : *this << value;
}

ostream& ostream::dump(string const& label, bool value)
{
    if (!m_dumpMode) {
        return *this << value;
    }
    string line;
    line.Format("%s=%s\n", label.c_str(), value ? "true" : "false");
    return DumpLine(line);
}

ostream& ostream::dump(string const& label, char const* text)
{
    return m_dumpMode ? DumpLine(TextLine(label, text != nullptr ? text : "")) : *this << text;
}

ostream& ostream::dump(string const& label, string const& text)
{
    return m_dumpMode ? DumpLine(TextLine(label, text)) : *this << text;
}

ostream& ostream::dump(string const& label, Stream::HeaderBlock const& header)
{
    if (!m_dumpMode) {
        return *this << header;
    }
    string line;
    line.Format("%s(ID=0x%08x), Version=%u\n", label.c_str(), header.id, header.version);
    return DumpLine(line);
}

ostream& ostream::dump(string const& label)
{
    return m_dumpMode ? dumpLabel(label) : *this << label;
}

ostream& ostream::dumpLabel(string const& label)
{
    return m_dumpMode ? *this << label << "\n" : *this;
}

ostream& dump(ostream& stream, string const& label, StringList const& list)
{
    stream.dumpLabel(label);
    DumpStreamIndent const indent(stream, 4);
    stream.dump("String Count", detail::NarrowCount(list.size()));
    for (string const& text : list) {
        stream.dump(text);
    }
    return stream;
}

} // namespace Quarn
