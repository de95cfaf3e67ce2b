// The reader of packed records, with both ways of reading texts, beside one that follows the language step by
// step on strings of its own; and Unpack, which takes fewer records, and none otherwise.
//
// Input: a format, a line feed, a record.
#include "quarn/text/packed_record.h"

#include "quarn/packing/unpack.h"
#include "quarn/text/number_text.h"

#include "fuzz/memory_bound.h"

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

using Quarn::string;
using Quarn::detail::AsciiToLong;
using Quarn::detail::DrivePaths;

constexpr std::size_t MaxItems = 8;

// A text grows in its string, and may be read by each of the eight items; a decimal number out of range goes
// through a stream.
constexpr fuzz::MemoryBound Bound = {"packed_record", 2048, 3 * MaxItems};
// The record and its first text, while that grows.
constexpr fuzz::MemoryBound UnpackBound = {"unpack", 512, 4};

struct Items
{
    std::array<std::uint64_t, MaxItems> numbers{};
    std::array<string, MaxItems> texts;
    bool complete = false;
};

bool TakesArgument(char letter)
{
    return std::strchr("DLibdfTvt", letter) != nullptr && letter != '\0';
}

bool Read(string const& record, DrivePaths drivePaths, char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    bool const complete = Quarn::detail::ReadPackedRecord(record, drivePaths, format, args);
    va_end(args);
    return complete;
}

Items ReadItems(string const& record, DrivePaths drivePaths, string const& format)
{
    Items items;
    std::array<void*, MaxItems> targets{};
    std::size_t count = 0;
    for (char const letter : format) {
        if (TakesArgument(letter)) {
            targets[count] = letter == 't' ? static_cast<void*>(&items.texts[count]) : &items.numbers[count];
            ++count;
        }
    }
    fuzz::Watch(Bound, format.size() + record.size(), [&] {
        items.complete = Read(record, drivePaths, format.c_str(), targets[0], targets[1], targets[2],
                              targets[3], targets[4], targets[5], targets[6], targets[7]);
    });
    return items;
}

void ParseText(string& source, DrivePaths drivePaths, string& target)
{
    source.ClipTo('"');
    bool const isPath =
        drivePaths == DrivePaths::Literal && source.size() > 2 && source[1] == ':' && source[2] == '\\';
    string rest = source;
    while (!rest.empty()) {
        char c = rest[0];
        rest.erase(0, 1);
        if (c == '"') {
            rest.ClipTo(',');
            source = rest;
            return;
        }
        if (c == '\\' && !isPath && !rest.empty() && rest[0] == '"') {
            c = '"';
            rest.erase(0, 1);
        }
        target.append(c);
    }
}

// By the C library, which is in its own locale; a hexadecimal number is to it what is none here.
double LeadingNumber(string const& field)
{
    return std::strtod(field.substr(0, field.find_first_of("xX")).c_str(), nullptr);
}

Items Expected(string record, DrivePaths drivePaths, string const& format)
{
    Items items;
    std::size_t count = 0;
    string field = record.ClipTo(',');
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (field.empty() && i != 0) {
            return items;
        }
        char const letter = format[i];
        if (letter == ' ') {
            continue;
        }
        std::uint64_t& number = items.numbers[count];
        if (letter == 'D' || letter == 'L' || letter == 'i') {
            number = static_cast<std::uint32_t>(AsciiToLong(field));
        } else if (letter == 'b') {
            number = AsciiToLong(field) != 0 ? 1 : 0;
        } else if (letter == 'd') {
            number = std::bit_cast<std::uint64_t>(LeadingNumber(field));
        } else if (letter == 'f') {
            number = std::bit_cast<std::uint32_t>(static_cast<float>(LeadingNumber(field)));
        } else if (letter == 'T' || letter == 'v') {
            auto const first = static_cast<std::uint32_t>(AsciiToLong(field.ClipTo(':')));
            auto const second = static_cast<std::uint32_t>(AsciiToLong(field.ClipTo(':')));
            number =
                letter == 'T' ? std::uint64_t{first} << 32 | second : std::uint64_t{second} << 32 | first;
        } else if (letter == 't') {
            ParseText(i == 0 ? record : field, drivePaths, items.texts[count]);
        }
        count += TakesArgument(letter) ? 1 : 0;
        field = record.ClipTo(',');
    }
    items.complete = true;
    return items;
}

void Check(bool holds, char const* what)
{
    if (!holds) {
        std::fputs(what, stderr);
        std::abort();
    }
}

// There are many forms of what is no number.
bool IsSame(char letter, std::uint64_t found, std::uint64_t expected)
{
    bool const areNone =
        (letter == 'd' && std::isnan(std::bit_cast<double>(found)) &&
         std::isnan(std::bit_cast<double>(expected))) ||
        (letter == 'f' && std::isnan(std::bit_cast<float>(static_cast<std::uint32_t>(found))) &&
         std::isnan(std::bit_cast<float>(static_cast<std::uint32_t>(expected))));
    return found == expected || areNone;
}

// What Unpack takes, Readf takes, too; what it refuses changes nothing.
void CheckUnpack(string const& record)
{
    Quarn::PropertyValue const value("v", record, nullptr);
    int number = 1;
    string text = "old";
    unsigned int positive = 2;
    bool truth = true;
    Quarn::HighFirst high{3};
    Quarn::LowFirst low{4};
    Quarn::UnpackResult result;
    fuzz::Watch(UnpackBound, record.size(),
                [&] { result = Quarn::Unpack(value, text, number, positive, truth, high, low); });
    if (!result) {
        Check(number == 1 && text == "old" && positive == 2 && truth && high.value == 3 && low.value == 4,
              "a record that is refused changes an item\n");
        Check(result.item <= 6, "no such item\n");
        return;
    }
    Items const read = ReadItems(record.c_str(), DrivePaths::Literal, "tiDbTv");
    Check(read.complete && read.texts[0] == text &&
              static_cast<std::uint32_t>(read.numbers[1]) == static_cast<std::uint32_t>(number) &&
              read.numbers[2] == positive && (read.numbers[3] & 1) == (truth ? 1U : 0U) &&
              read.numbers[4] == high.value && read.numbers[5] == low.value,
          "other items are unpacked\n");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    std::string_view const input(reinterpret_cast<char const*>(data), size);
    std::size_t const end = input.find('\n');
    if (end == input.npos || size > 4096) {
        return 0;
    }
    string format;
    std::size_t count = 0;
    for (char const letter : input.substr(0, end)) {
        count += TakesArgument(letter) ? 1 : 0;
        if (letter == '\0' || count > MaxItems) {
            break;
        }
        format.append(letter);
    }
    string const record{std::string(input.substr(end + 1))};
    for (DrivePaths const drivePaths : {DrivePaths::Escaped, DrivePaths::Literal}) {
        Items const found = ReadItems(record, drivePaths, format);
        Items const expected = Expected(record, drivePaths, format);
        Check(found.complete == expected.complete, "another result\n");
        Check(found.texts == expected.texts, "other texts\n");
        std::size_t item = 0;
        for (char const letter : format) {
            if (TakesArgument(letter)) {
                Check(IsSame(letter, found.numbers[item], expected.numbers[item]), "another number\n");
                ++item;
            }
        }
    }
    CheckUnpack(record);
    return 0;
}
