// Quarn::string: the narrow string of the whole library, the standard string with trimming, ASCII case, a
// tokeniser step and printf-style formatting. Text is bytes; no encoding is assumed. A plain value: copying
// copies the characters, one object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"

#include <concepts>
#include <cstdarg>
#include <cstdint>
#include <iterator>
#include <string>
#include <type_traits>
#include <utility>

namespace Quarn {

namespace detail {

// What would silently become a character: every number and enumeration but `char` itself.
template<typename T>
concept NoCharacter = !std::same_as<T, char> && (std::is_arithmetic_v<T> || std::is_enum_v<T>);

} // namespace detail

class QUARN_API string : public std::string
{
public:
    // "Not found" of the find operations and "to the end" of counts: all 64 bits set.
    static constexpr std::uint64_t npos = UINT64_MAX;
    static constexpr std::uint64_t NPOS = npos; // the same

    string() noexcept = default;
    string(string const& other) = default;
    string(string&& other) noexcept = default;
    ~string() = default;

    // All characters of the text, zero bytes too.
    string(std::string const& text) : std::string(text) {}
    string(std::string&& text) noexcept : std::string(std::move(text)) {}
    // A string of length 1.
    string(char c) : std::string(1, c) {}
    // The text up to its terminator; `text` is not null.
    string(char const* text) : std::string(text) {}
    // `count` characters at `text`, zero bytes too.
    string(char const* text, size_type count) : std::string(text, count) {}
    // `count` times the character.
    string(size_type count, char c) : std::string(count, c) {}
    // A number is not a text: none becomes a string through `char`.
    template<detail::NoCharacter T>
    string(T) = delete;

    string& operator=(string const& other) = default;
    string& operator=(string&& other) noexcept = default;
    // As the constructors.
    string& operator=(std::string const& text);
    string& operator=(char c);
    string& operator=(char const* text);
    template<detail::NoCharacter T>
    string& operator=(T) = delete;

    // Replaces the contents. Positions beyond the source's end throw std::out_of_range with the text
    // "invalid string position", as all operations below that take a position do.
    string& assign(std::string const& text);
    string& assign(std::string const& text, size_type pos, size_type count = npos);
    string& assign(char const* text);
    string& assign(char const* text, size_type count);
    string& assign(size_type count, char c);
    template<std::input_iterator It>
    string& assign(It first, It last)
    {
        std::string::assign(first, last);
        return *this;
    }

    // Adds behind the last character what assign would take.
    string& append(std::string const& text);
    string& append(std::string const& text, size_type pos, size_type count = npos);
    string& append(char c);
    string& append(char const* text);
    string& append(char const* text, size_type count);
    string& append(size_type count, char c);
    template<std::input_iterator It>
    string& append(It first, It last)
    {
        std::string::append(first, last);
        return *this;
    }
    // As append.
    string& operator+=(std::string const& text) { return append(text); }
    string& operator+=(char const* text) { return append(text); }
    string& operator+=(char c) { return append(c); }

    using std::string::compare;
    // Compares up to `count` characters from `pos` on with the text: below 0, 0 or above 0.
    int compare(size_type pos, size_type count, std::string const& text) const;
    int compare(size_type pos, size_type count, std::string const& text, size_type textPos,
                size_type textCount = npos) const;
    int compare(size_type pos, size_type count, char const* text) const;
    int compare(size_type pos, size_type count, char const* text, size_type textCount) const;

    // The character at `pos`, which must be below size().
    char& at(size_type pos);
    char const& at(size_type pos) const;

    using std::string::erase;
    // Removes up to `count` characters from `pos` on.
    string& erase(size_type pos = 0, size_type count = npos);

    using std::string::insert;
    // Inserts before the character at `pos` what assign would take.
    string& insert(size_type pos, std::string const& text);
    string& insert(size_type pos, std::string const& text, size_type textPos, size_type textCount = npos);
    string& insert(size_type pos, char const* text);
    string& insert(size_type pos, char const* text, size_type count);
    string& insert(size_type pos, size_type count, char c);

    // Up to `count` characters from `pos` on.
    string substr(size_type pos = 0, size_type count = npos) const;

    // Each removes leading or trailing white space, or both (space, tab, line feed, vertical tab, form feed,
    // carriage return), in place; the result is this string.
    string const& Trim();
    string const& TrimLeft();
    string const& TrimRight();

    // Both change the ASCII letters in place and leave every other byte; no locale is consulted.
    string const& MakeUpper();
    string const& MakeLower();
    // Both do the same on a copy.
    string Upper() const;
    string Lower() const;

    // Whether the character occurs.
    bool Contains(char c) const { return find(c) != npos; }

    // A tokeniser step. Where `c` occurs: the text before its first occurrence is the result, and that text
    // with the `c` behind it is removed from this string, a constant one too. Where it does not occur: the
    // result is a copy of the whole string, which stays as it is; a loop asks Contains first. An object that
    // was defined constant must not be clipped.
    string ClipTo(char c) const;

    // A copy with the text behind it.
    string appended(char const* text) const;

    // Replaces the contents by the text of a printf-style format in the current locale, up to its first zero
    // byte. The arguments, this string among them, may be read while the text is made. Returns the number of
    // characters of the text, or a negative number where the C library refuses the format (a width above
    // 2147483647, say); the contents then stay as they are. The C library's rules hold for arguments that do
    // not match the format: there are none.
    int Format(char const* format, ...) QUARN_PRINTF(2, 3);

private:
    int FormatVar(char const* format, std::va_list args) QUARN_PRINTF(2, 0);
    // An upper bound for the characters that the common conversions produce; see text/format_estimate.h.
    static std::uint64_t EstimateVarLength(char const* format, std::va_list args);
};

} // namespace Quarn
