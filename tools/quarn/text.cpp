#include "text.h"

#include "quarn/platform/win32_api.h"

#include "outcome.h"
#include "terminal.h"

#include <array>
#include <cstdio>
#include <cstdlib>

namespace tool {

namespace {

constexpr char const* HexDigits = "0123456789abcdef";

// The code page's conversion takes an int; nothing longer is shown or exported in one piece.
constexpr std::size_t MaxPiece = std::size_t{1} << 30;

std::basic_string<WCHAR> Wide(std::string_view bytes, DWORD flags)
{
    bytes = bytes.substr(0, MaxPiece);
    std::basic_string<WCHAR> wide(bytes.size(), WCHAR{});
    wide.resize(static_cast<std::size_t>(::MultiByteToWideChar(CP_ACP, flags, bytes.data(),
                                                               static_cast<int>(bytes.size()), wide.data(),
                                                               static_cast<int>(wide.size()))));
    return wide;
}

bool IsControl(unsigned int c)
{
    return c < 0x20 || (c >= 0x7F && c < 0xA0);
}

// A text without the control characters that stand above 127.
bool IsHarmless(std::string_view bytes)
{
    std::basic_string<WCHAR> const wide = Wide(bytes, MB_ERR_INVALID_CHARS);
    for (WCHAR const c : wide) {
        if (c >= 0x80 && IsControl(c)) {
            return false;
        }
    }
    return bytes.empty() || !wide.empty();
}

std::string Escape(std::string_view bytes, bool inQuotes)
{
    bool const keepHigh = IsHarmless(bytes);
    std::string text;
    for (char const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        if (c == '\n') {
            text += "\\n";
        } else if (c == '\t') {
            text += "\\t";
        } else if (c == '\r') {
            text += "\\r";
        } else if (byte < 0x20 || byte == 0x7F || (byte >= 0x80 && !keepHigh)) {
            text += "\\x";
            text += HexDigits[byte >> 4];
            text += HexDigits[byte & 15];
        } else {
            if (inQuotes && (c == '"' || c == '\\')) {
                text += '\\';
            }
            text += c;
        }
    }
    return text;
}

bool UseColour()
{
    static bool const use = [] {
        char const* const no = std::getenv("NO_COLOR");
        return (no == nullptr || *no == '\0') && IsTerminal(stdout);
    }();
    return use;
}

} // namespace

bool IsText(std::string_view bytes)
{
    return bytes.empty() || !Wide(bytes, MB_ERR_INVALID_CHARS).empty();
}

std::string Printable(std::string_view bytes)
{
    return Escape(bytes, false);
}

std::string Quoted(std::string_view bytes)
{
    return '"' + Escape(bytes, true) + '"';
}

std::string Hex(std::string_view bytes)
{
    std::string text;
    text.reserve(bytes.size() * 2);
    for (char const c : bytes) {
        text += HexDigits[static_cast<unsigned char>(c) >> 4];
        text += HexDigits[static_cast<unsigned char>(c) & 15];
    }
    return text;
}

std::string JsonString(std::string_view bytes)
{
    std::string text = "\"";
    for (WCHAR const c : bytes.empty() ? std::basic_string<WCHAR>() : Wide(bytes, 0)) {
        if (c == '"' || c == '\\') {
            text += '\\';
            text += static_cast<char>(c);
        } else if (c >= 0x20 && c < 0x7F) {
            text += static_cast<char>(c);
        } else {
            text += "\\u";
            for (int shift = 12; shift >= 0; shift -= 4) {
                text += HexDigits[(c >> shift) & 15];
            }
        }
    }
    return text + '"';
}

std::string Paint(Colour colour, std::string const& text)
{
    constexpr std::array<char const*, 4> Begin = {"", "\x1B[1m", "\x1B[32m", "\x1B[31m"};
    if (colour == Colour::Plain || !UseColour()) {
        return text;
    }
    return Begin.at(static_cast<std::size_t>(colour)) + text + "\x1B[0m";
}

void Print(std::string_view text)
{
    std::fwrite(text.data(), 1, text.size(), stdout);
}

void Warn(std::string const& text)
{
    std::fflush(stdout);
    std::string const line = "quarn: " + text + '\n';
    std::fwrite(line.data(), 1, line.size(), stderr);
}

void FinishOutput()
{
    bool const failed = std::fflush(stdout) != 0;
    if (failed || std::ferror(stdout) != 0) {
        throw Failure(CannotWrite, "the standard output could not be written");
    }
}

} // namespace tool
