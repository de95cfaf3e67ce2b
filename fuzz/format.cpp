// Formats and arguments made of the input, compared with the C library's own formatter. An even first byte:
// the other bytes choose conversions and values. An odd one: they are the format itself up to a zero byte,
// and the rest chooses values of the types that it asks for; a format that the standard leaves open is let
// go.
#include "fuzz/memory_bound.h"
#include "tests/text/generated_format.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>

namespace {

// For each byte of the format and of the text that comes out.
constexpr fuzz::MemoryBound Bound = {"format", 8 * 1024, 4};

using generated_format::Argument;
using generated_format::Format;
using generated_format::Maker;

class Bytes
{
public:
    Bytes(std::uint8_t const* data, std::size_t size) : m_data(data), m_end(data + size) {}

    unsigned operator()(unsigned bound)
    {
        std::uint32_t value = Next();
        value = bound > 256 ? value << 8 | Next() : value;
        return value % bound;
    }

    std::string TextUpToZero()
    {
        std::string text;
        while (std::uint8_t const byte = Next()) {
            text.push_back(static_cast<char>(byte));
        }
        return text;
    }

private:
    std::uint8_t Next()
    {
        if (m_data == m_end) {
            return 0;
        }
        return *m_data++;
    }

    std::uint8_t const* m_data;
    std::uint8_t const* m_end;
};

bool IsOneOf(char c, char const* set)
{
    return c != '\0' && std::strchr(set, c) != nullptr;
}

// Past a width or precision; false where it would only take time.
bool SkipNumber(std::string const& text, std::size_t& at)
{
    std::size_t const start = at;
    at = std::min(text.find_first_not_of("0123456789", at), text.size());
    return at - start <= 4;
}

// The values for a format; none where its conversions are not those of the standard.
std::optional<Format> WithArguments(std::string const& text, Maker& maker)
{
    Format format{text, {}};
    for (std::size_t at = 0; (at = text.find('%', at)) != std::string::npos;) {
        ++at;
        auto const skipStar = [&] {
            bool const isStar = text[at] == '*';
            if (isStar) {
                ++at;
                format.arguments.push_back(maker.Star());
            }
            return isStar;
        };
        if (text[at] == '%') {
            ++at;
            continue;
        }
        at = std::min(text.find_first_not_of("-+ #0", at), text.size());
        if (!skipStar() && !SkipNumber(text, at)) {
            return std::nullopt;
        }
        if (text[at] == '.') {
            ++at;
            if (!skipStar() && !SkipNumber(text, at)) {
                return std::nullopt;
            }
        }
        std::size_t const sizeAt = at;
        while (IsOneOf(text[at], "hljzt")) {
            ++at;
        }
        std::string const size = text.substr(sizeAt, at - sizeAt);
        char const letter = text[at];
        at += letter != '\0' ? 1 : 0;
        bool const isLong = size == "ll" || size == "j" || size == "z" || size == "t" ||
                            (size == "l" && sizeof(long) == sizeof(long long));
        bool const isShort = !isLong && (size.empty() || size == "h" || size == "hh" || size == "l");
        if (IsOneOf(letter, "diouxX") && (isShort || isLong)) {
            format.arguments.push_back(maker.Value(isShort ? Argument::Kind::Int : Argument::Kind::LongLong));
        } else if (IsOneOf(letter, "eEfFgGaA") && (size.empty() || size == "l")) {
            format.arguments.push_back(maker.Value(Argument::Kind::Double));
        } else if (letter == 's' && size.empty()) {
            format.arguments.push_back(maker.Value(Argument::Kind::Text));
        } else if (letter == 'c' && size.empty()) {
            format.arguments.push_back(maker.Value(Argument::Kind::Int));
        } else {
            return std::nullopt;
        }
    }
    return format.arguments.size() <= generated_format::MaxArguments ? std::optional(format) : std::nullopt;
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security" // the formats are not literals: that is the point

// string::Format itself, watched.
struct WatchedFormat
{
    template<typename... Args>
    int operator()(std::string& text, char const* format, Args... args) const
    {
        int const length = std::snprintf(nullptr, 0, format, args...);
        std::size_t const size = std::strlen(format) + static_cast<std::size_t>(std::max(length, 0));
        Quarn::string formatted = text;
        int result = 0;
        fuzz::Watch(Bound, size, [&] { result = formatted.Format(format, args...); });
        text = formatted;
        return result;
    }
};

#pragma GCC diagnostic pop

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    Bytes bytes(data, size);
    bool const isText = bytes(2) != 0;
    std::string const text = isText ? bytes.TextUpToZero() : std::string();
    Maker maker([&bytes](unsigned bound) { return bytes(bound); });
    std::optional<Format> const format = isText ? WithArguments(text, maker) : maker.Make();
    if (format) {
        std::string const difference = generated_format::Difference(WatchedFormat(), *format);
        if (!difference.empty()) {
            std::fprintf(stderr, "%s\n", difference.c_str());
            std::abort();
        }
    }
    return 0;
}
