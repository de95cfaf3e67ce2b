// The dump family: a value as it is stored, or as a line for people.
#include "quarn/stream/dump_indent.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/narrowing.h"

#include <algorithm>
#include <charconv>
#include <concepts>
#include <limits>
#include <string>
#include <string_view>

namespace Quarn {

namespace {

// The label, which counts up to a zero byte, then the rest; not by Format, which takes longer and whose texts
// end at 2 GiB.
std::string Line(string const& label, std::string_view before, std::string_view value, std::string_view after)
{
    std::string_view const name = label.c_str(); // NOLINT(readability-redundant-string-cstr)
    std::string line;
    line.reserve(name.size() + before.size() + value.size() + after.size());
    line.append(name).append(before).append(value).append(after);
    return line;
}

std::string ValueLine(string const& label, std::string_view value)
{
    return Line(label, "=", value, "\n");
}

template<std::integral Int>
std::string NumberLine(string const& label, Int value)
{
    constexpr std::size_t most = std::numeric_limits<Int>::digits10 + 2;
    char digits[most];
    char const* const end = std::to_chars(digits, digits + most, value).ptr;
    return ValueLine(label, {digits, static_cast<std::size_t>(end - digits)});
}

std::string RealLine(string const& label, double value)
{
    string digits;
    digits.Format("%f", value);
    return ValueLine(label, digits);
}

std::string TextLine(string const& label, std::string_view text)
{
    constexpr char unprintable = '\x98';
    constexpr std::string_view after = "\"\n";
    std::string line = Line(label, "=\"", text, after);
    auto const last = line.end() - static_cast<std::ptrdiff_t>(after.size());
    auto const first = last - static_cast<std::ptrdiff_t>(text.size());
    std::transform(first, last, first,
                   [](char c) { return static_cast<signed char>(c) < 32 ? unprintable : c; });
    return line;
}

} // namespace

ostream& ostream::DumpLine(std::string_view line)
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
    return m_dumpMode ? DumpLine(NumberLine(label, int{value})) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned char value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, unsigned{value})) : *this << value;
}

ostream& ostream::dump(string const& label, short value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, int{value})) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned short value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, unsigned{value})) : *this << value;
}

ostream& ostream::dump(string const& label, int value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, int{value})) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned int value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, unsigned{value})) : *this << value;
}

ostream& ostream::dump(string const& label, long value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, detail::NarrowLong(value))) : *this << value;
}

ostream& ostream::dump(string const& label, unsigned long value)
{
    return m_dumpMode ? DumpLine(NumberLine(label, detail::NarrowLong(value))) : *this << value;
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
    return m_dumpMode ? DumpLine(ValueLine(label, value ? "true" : "false")) : *this << value;
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
