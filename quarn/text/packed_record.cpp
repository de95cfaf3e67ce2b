#include "quarn/text/packed_record.h"

#include "quarn/text/ascii.h"
#include "quarn/text/number_text.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <limits>
#include <locale>
#include <sstream>
#include <string_view>
#include <utility>

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

// The text of an item, the comma behind it included, as long as it is no text.
class NumberItem
{
public:
    std::string_view Text() const { return {m_text, static_cast<std::size_t>(m_end - m_text)}; }

    void Put(char c) { *m_end++ = c; }

    template<typename Integer>
    void PutInteger(Integer number)
    {
        m_end = std::to_chars(m_end, std::end(m_text), number).ptr;
    }

    void PutHalves(std::uint32_t first, std::uint32_t second)
    {
        PutInteger(first);
        Put(':');
        PutInteger(second);
    }

    // As std::to_chars with six decimals: the nearest such number, of two the one with the even last digit.
    void PutFloat(float number);

private:
    char m_text[64]; // a float has 39 digits, a sign, a point and six decimals at most
    char* m_end = m_text;
};

void NumberItem::PutFloat(float number)
{
    constexpr std::uint32_t million = 1000000;
    constexpr int wholeBits = 24; // of the significand, whose lowest bit then counts 1
    auto const bits = std::bit_cast<std::uint32_t>(number);
    int const exponent = static_cast<int>(bits >> 23U & 0xFFU) - 127 - (wholeBits - 1);
    if (exponent > 64 - wholeBits) { // no longer an integer of 64 bits, infinite, or not a number
        m_end = std::to_chars(m_end, std::end(m_text), number, std::chars_format::fixed, 6).ptr;
        return;
    }
    // Numbers below the normal ones are less than half a millionth with or without their highest bit.
    std::uint64_t const significand = (bits & 0x007FFFFFU) | 0x00800000U;
    std::uint64_t whole = 0;
    std::uint32_t decimals = 0;
    if (exponent >= 0) {
        whole = significand << static_cast<unsigned>(exponent);
    } else {
        std::uint64_t const scaled = significand * million; // below 2^44
        auto const shift = static_cast<unsigned>(std::min(-exponent, 63));
        std::uint64_t const half = std::uint64_t{1} << (shift - 1);
        std::uint64_t const rest = scaled & (2 * half - 1);
        std::uint64_t rounded = scaled >> shift;
        rounded += rest > half || (rest == half && (rounded & 1U) != 0) ? 1 : 0;
        whole = rounded / million;
        decimals = static_cast<std::uint32_t>(rounded % million);
    }
    if ((bits >> 31U) != 0) {
        Put('-');
    }
    PutInteger(whole);
    Put('.');
    for (std::uint32_t unit = million / 10; unit != 0; unit /= 10) {
        Put(static_cast<char>('0' + decimals / unit % 10));
    }
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
    std::memcpy(target, &value, sizeof value);
}

} // namespace

string WritePackedRecord(char const* format, std::va_list args)
{
    std::string record;
    record.reserve(16 * std::strlen(format)); // what items take as a rule
    std::size_t itemBegin = 0;
    for (char const* letter = format; *letter != '\0'; ++letter) {
        NumberItem item;
        switch (*letter) {
        case ' ':
            continue;
        case 'D':
        case 'L':
            item.PutInteger(va_arg(args, unsigned int));
            break;
        case 'i':
            item.PutInteger(va_arg(args, int));
            break;
        case 'b':
            item.Put(va_arg(args, int) != 0 ? '1' : '0');
            break;
        case 'd':
            item.PutFloat(static_cast<float>(va_arg(args, double))); // deliberately no more than a float
            break;
        case 'f':
            item.PutFloat(*va_arg(args, float const*));
            break;
        case 'T': {
            std::uint64_t const value = va_arg(args, std::uint64_t);
            item.PutHalves(HighHalf(value), LowHalf(value));
            break;
        }
        case 'v': {
            std::uint64_t const value = va_arg(args, std::uint64_t);
            item.PutHalves(LowHalf(value), HighHalf(value));
            break;
        }
        case 't':
            itemBegin = record.size();
            record.append(letter == format ? ",\"" : "\"");
            record.append(va_arg(args, string const*)->c_str()).append("\",");
            continue;
        default: {
            std::size_t const itemEnd = record.size();
            if (itemEnd == 0) {
                record.push_back(',');
            } else {
                record.append(record, itemBegin, itemEnd - itemBegin);
            }
            itemBegin = itemEnd;
            continue;
        }
        }
        item.Put(',');
        itemBegin = record.size();
        record.append(item.Text());
    }
    return string(std::move(record));
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
