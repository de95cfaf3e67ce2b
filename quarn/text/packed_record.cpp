#include "quarn/text/packed_record.h"

#include "quarn/text/ascii.h"
#include "quarn/text/number_text.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>

#include <string.h>

namespace Quarn::detail {

namespace {

std::uint32_t HighHalf(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value >> 32);
}

std::uint32_t LowHalf(std::uint64_t value)
{
    return static_cast<std::uint32_t>(value);
}

template<typename Number>
void AppendInteger(string& text, Number number)
{
    char buffer[16];
    text.append(buffer,
                static_cast<std::size_t>(std::to_chars(buffer, buffer + sizeof buffer, number).ptr - buffer));
}

void AppendFloat(string& text, float number)
{
    char buffer[64]; // 39 digits, a sign, a point and six decimals at most
    text.append(
        buffer,
        static_cast<std::size_t>(
            std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, 6).ptr - buffer));
}

string Halves(std::uint32_t first, std::uint32_t second)
{
    string text;
    AppendInteger(text, first);
    text += ':';
    AppendInteger(text, second);
    return text;
}

// The leading number of a text; 0 where there is none, infinity beyond the largest.
double LeadingNumber(std::string_view text)
{
    text.remove_prefix(
        static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), IsSpace) - text.begin()));
    if (text.starts_with('+') && !text.starts_with("+-")) {
        text.remove_prefix(1);
    }
    double number = 0;
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number);
    if (result.ec == std::errc::result_out_of_range) {
        std::istringstream stream(std::string(text.data(), result.ptr));
        stream.imbue(std::locale::classic());
        stream >> number; // the largest number where it is too large, a tiny one or 0 where it is too small
        constexpr double largest = std::numeric_limits<double>::max();
        constexpr double infinite = std::numeric_limits<double>::infinity();
        return number >= largest ? infinite : number <= -largest ? -infinite : number;
    }
    return number;
}

// What is left of a record. Its step is that of string::ClipTo: a text without the delimiter stays.
class RecordReader
{
public:
    explicit RecordReader(std::string_view text) : m_rest(text) {}

    std::string_view ClipTo(char delimiter)
    {
        std::size_t const found = m_rest.find(delimiter);
        std::string_view const token = m_rest.substr(0, found);
        if (found != m_rest.npos) {
            m_rest.remove_prefix(found + 1);
        }
        return token;
    }

    void ReadText(DrivePaths drivePaths, string& target);

private:
    std::string_view m_rest;
};

void RecordReader::ReadText(DrivePaths drivePaths, string& target)
{
    ClipTo('"');
    bool const isLiteral =
        drivePaths == DrivePaths::Literal && m_rest.size() > 2 && m_rest[1] == ':' && m_rest[2] == '\\';
    for (std::size_t i = 0; i < m_rest.size(); ++i) {
        char c = m_rest[i];
        if (c == '"') {
            m_rest.remove_prefix(i + 1);
            ClipTo(',');
            return;
        }
        if (c == '\\' && !isLiteral && m_rest.substr(i + 1).starts_with('"')) {
            c = '"';
            ++i;
        }
        target.push_back(c);
    }
}

struct Pair
{
    std::uint32_t first;
    std::uint32_t second;
};

Pair ReadHalves(std::string_view field)
{
    RecordReader reader(field);
    auto const first = static_cast<std::uint32_t>(AsciiToLong(reader.ClipTo(':')));
    return {first, static_cast<std::uint32_t>(AsciiToLong(reader.ClipTo(':')))};
}

void StoreHalves(void* target, std::uint32_t high, std::uint32_t low)
{
    std::uint64_t const value = std::uint64_t{high} << 32 | low;
    ::memcpy(target, &value, sizeof value);
}

} // namespace

string WritePackedRecord(char const* format, std::va_list args)
{
    string record;
    string item;
    for (char const* letter = format; *letter != '\0'; ++letter) {
        if (*letter == ' ') {
            continue;
        }
        switch (*letter) {
        case 'D':
        case 'L':
            item.clear();
            AppendInteger(item, va_arg(args, unsigned int));
            break;
        case 'i':
            item.clear();
            AppendInteger(item, va_arg(args, int));
            break;
        case 'b':
            item = va_arg(args, int) != 0 ? "1" : "0";
            break;
        case 'd':
            item.clear();
            AppendFloat(item, static_cast<float>(va_arg(args, double))); // deliberately no more than a float
            break;
        case 'f':
            item.clear();
            AppendFloat(item, *va_arg(args, float const*));
            break;
        case 'T': {
            std::uint64_t const value = va_arg(args, std::uint64_t);
            item = Halves(HighHalf(value), LowHalf(value));
            break;
        }
        case 'v': {
            std::uint64_t const value = va_arg(args, std::uint64_t);
            item = Halves(LowHalf(value), HighHalf(value));
            break;
        }
        case 't':
            item = letter == format ? ",\"" : "\"";
            item.append(va_arg(args, string const*)->c_str()).append('"');
            break;
        default:
            break;
        }
        record.append(item).append(',');
    }
    return record;
}

bool ReadPackedRecord(string const& record, DrivePaths drivePaths, char const* format, std::va_list args)
{
    RecordReader reader(record);
    std::string_view field = reader.ClipTo(',');
    for (char const* letter = format; *letter != '\0'; ++letter) {
        if (field.empty() && letter != format) {
            return false;
        }
        switch (*letter) {
        case ' ':
            continue;
        case 'D':
        case 'L':
            *va_arg(args, std::uint32_t*) = static_cast<std::uint32_t>(AsciiToLong(field));
            break;
        case 'i':
            *va_arg(args, int*) = AsciiToLong(field);
            break;
        case 'b':
            *va_arg(args, bool*) = AsciiToLong(field) != 0;
            break;
        case 'd':
            *va_arg(args, double*) = LeadingNumber(field);
            break;
        case 'f':
            *va_arg(args, float*) = static_cast<float>(LeadingNumber(field));
            break;
        case 'T': {
            Pair const halves = ReadHalves(field);
            StoreHalves(va_arg(args, void*), halves.first, halves.second);
            break;
        }
        case 'v': {
            Pair const halves = ReadHalves(field);
            StoreHalves(va_arg(args, void*), halves.second, halves.first);
            break;
        }
        case 't': {
            string& target = *va_arg(args, string*);
            if (letter == format) {
                reader.ReadText(drivePaths, target);
            } else {
                RecordReader(field).ReadText(drivePaths, target);
            }
            break;
        }
        default:
            break;
        }
        field = reader.ClipTo(',');
    }
    return true;
}

} // namespace Quarn::detail
