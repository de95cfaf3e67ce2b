#include "quarn/text/string.h"

#include "quarn/platform/formatter.h"
#include "quarn/text/ascii.h"
#include "quarn/text/format_common.h"
#include "quarn/text/format_estimate.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace Quarn {

namespace {

// The standard libraries word this differently; callers show it to people, so it is one text everywhere.
[[noreturn]] void ThrowBadPosition()
{
    throw std::out_of_range("invalid string position");
}

void CheckPosition(std::size_t pos, std::size_t size)
{
    if (pos > size) {
        ThrowBadPosition();
    }
}

} // namespace

// Named once more, so that the library holds the constants for clients that take a reference to them.
constexpr std::uint64_t string::npos; // NOLINT(readability-redundant-declaration)
constexpr std::uint64_t string::NPOS; // NOLINT(readability-redundant-declaration)

string& string::operator=(std::string const& text)
{
    return assign(text);
}

string& string::operator=(char c)
{
    return assign(1, c);
}

string& string::operator=(char const* text)
{
    return assign(text);
}

string& string::assign(std::string const& text)
{
    std::string::assign(text);
    return *this;
}

string& string::assign(std::string const& text, size_type pos, size_type count)
{
    CheckPosition(pos, text.size());
    std::string::assign(text, pos, count);
    return *this;
}

string& string::assign(char const* text)
{
    std::string::assign(text);
    return *this;
}

string& string::assign(char const* text, size_type count)
{
    std::string::assign(text, count);
    return *this;
}

string& string::assign(size_type count, char c)
{
    std::string::assign(count, c);
    return *this;
}

string& string::append(std::string const& text)
{
    std::string::append(text);
    return *this;
}

string& string::append(std::string const& text, size_type pos, size_type count)
{
    CheckPosition(pos, text.size());
    std::string::append(text, pos, count);
    return *this;
}

string& string::append(char c)
{
    push_back(c);
    return *this;
}

string& string::append(char const* text)
{
    std::string::append(text);
    return *this;
}

string& string::append(char const* text, size_type count)
{
    std::string::append(text, count);
    return *this;
}

string& string::append(size_type count, char c)
{
    std::string::append(count, c);
    return *this;
}

int string::compare(size_type pos, size_type count, std::string const& text) const
{
    CheckPosition(pos, size());
    return std::string::compare(pos, count, text);
}

int string::compare(size_type pos, size_type count, std::string const& text, size_type textPos,
                    size_type textCount) const
{
    CheckPosition(pos, size());
    CheckPosition(textPos, text.size());
    return std::string::compare(pos, count, text, textPos, textCount);
}

int string::compare(size_type pos, size_type count, char const* text) const
{
    CheckPosition(pos, size());
    return std::string::compare(pos, count, text);
}

int string::compare(size_type pos, size_type count, char const* text, size_type textCount) const
{
    CheckPosition(pos, size());
    return std::string::compare(pos, count, text, textCount);
}

char& string::at(size_type pos)
{
    if (pos >= size()) {
        ThrowBadPosition();
    }
    return (*this)[pos];
}

char const& string::at(size_type pos) const
{
    if (pos >= size()) {
        ThrowBadPosition();
    }
    return (*this)[pos];
}

string& string::erase(size_type pos, size_type count)
{
    CheckPosition(pos, size());
    std::string::erase(pos, count);
    return *this;
}

string& string::insert(size_type pos, std::string const& text)
{
    CheckPosition(pos, size());
    std::string::insert(pos, text);
    return *this;
}

string& string::insert(size_type pos, std::string const& text, size_type textPos, size_type textCount)
{
    CheckPosition(pos, size());
    CheckPosition(textPos, text.size());
    std::string::insert(pos, text, textPos, textCount);
    return *this;
}

string& string::insert(size_type pos, char const* text)
{
    CheckPosition(pos, size());
    std::string::insert(pos, text);
    return *this;
}

string& string::insert(size_type pos, char const* text, size_type count)
{
    CheckPosition(pos, size());
    std::string::insert(pos, text, count);
    return *this;
}

string& string::insert(size_type pos, size_type count, char c)
{
    CheckPosition(pos, size());
    std::string::insert(pos, count, c);
    return *this;
}

string string::substr(size_type pos, size_type count) const
{
    CheckPosition(pos, size());
    return string(data() + pos, std::min(count, size() - pos));
}

string const& string::Trim()
{
    TrimLeft();
    return TrimRight();
}

string const& string::TrimLeft()
{
    std::string::erase(begin(), std::find_if_not(begin(), end(), detail::IsSpace));
    return *this;
}

string const& string::TrimRight()
{
    std::string::erase(std::find_if_not(rbegin(), rend(), detail::IsSpace).base(), end());
    return *this;
}

string const& string::MakeUpper()
{
    std::transform(begin(), end(), begin(), detail::UpperAscii);
    return *this;
}

string const& string::MakeLower()
{
    std::transform(begin(), end(), begin(), detail::LowerAscii);
    return *this;
}

string string::Upper() const
{
    string copy = *this;
    copy.MakeUpper();
    return copy;
}

string string::Lower() const
{
    string copy = *this;
    copy.MakeLower();
    return copy;
}

string string::ClipTo(char c) const
{
    size_type const found = find(c);
    if (found == npos) {
        return *this;
    }
    string token = substr(0, found);
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-const-cast): documented
    const_cast<string*>(this)->erase(0, found + 1);
    return token;
}

string string::appended(char const* text) const
{
    string copy = *this;
    copy.append(text);
    return copy;
}

int string::Format(char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    int const result = FormatVar(format, args);
    va_end(args);
    return result;
}

// The text is made in a buffer of its own, for the format or an argument may be a part of this string.
int string::FormatVar(char const* format, std::va_list args)
{
    char usual[4096];
    std::va_list attempt;
    int result = detail::FormatCommon(usual, sizeof usual, format, args);
    if (result < 0) {
        va_copy(attempt, args);
        result = detail::FormatBounded(usual, sizeof usual, format, attempt);
        va_end(attempt);
    }
    auto const length = static_cast<std::size_t>(result);
    if (result >= 0 && length < sizeof usual) {
        assign(usual);
        return result;
    }
    // Reports texts of more than 2147483647 characters. The C library has told the length better.
    static_cast<void>(EstimateVarLength(format, args));
    if (result >= 0) {
        std::string large(length, '\0');
        va_copy(attempt, args);
        result = detail::FormatBounded(large.data(), length + 1, format, attempt);
        va_end(attempt);
        if (result >= 0) {
            large.resize(std::char_traits<char>::length(large.c_str()));
            std::string::operator=(std::move(large));
        }
    }
    return result;
}

std::uint64_t string::EstimateVarLength(char const* format, std::va_list args)
{
    return detail::EstimateFormatLength(format, args);
}

} // namespace Quarn
