// Conversions between the process code page and UTF-16 on POSIX.
#include "quarn/platform/posix/errors.h"

#include <climits>
#include <cstddef>
#include <cstring>
#include <string>
#include <type_traits>

namespace Quarn::detail {

namespace {

constexpr char32_t Replacement = 0xFFFD;

struct Character
{
    char32_t code;
    std::size_t length; // units taken from the text
    bool valid = true;
};

// The first character of UTF-8. Of an invalid sequence, the longest part that could have begun a character is
// taken as one.
Character DecodeUtf8(unsigned char const* text, std::size_t size)
{
    unsigned char const lead = text[0];
    std::size_t const length = lead < 0x80   ? 1
                               : lead < 0xC2 ? 0
                               : lead < 0xE0 ? 2
                               : lead < 0xF0 ? 3
                               : lead < 0xF5 ? 4
                                             : 0;
    if (length < 2) {
        return {length == 1 ? lead : Replacement, 1, length == 1};
    }
    char32_t code = lead & (0x7FU >> length);
    for (std::size_t i = 1; i < length; ++i) {
        // The second byte rules out overlong forms, surrogates and codes above 10FFFF.
        unsigned const low = i == 1 && lead == 0xE0 ? 0xA0 : i == 1 && lead == 0xF0 ? 0x90 : 0x80;
        unsigned const high = i == 1 && lead == 0xED ? 0x9F : i == 1 && lead == 0xF4 ? 0x8F : 0xBF;
        if (i == size || text[i] < low || text[i] > high) {
            return {Replacement, i, false};
        }
        code = code << 6 | (text[i] & 0x3F);
    }
    return {code, length};
}

Character DecodeUtf16(char16_t const* text, std::size_t size)
{
    char32_t const first = text[0];
    if (first < 0xD800 || first > 0xDFFF) {
        return {first, 1};
    }
    if (first > 0xDBFF || size == 1 || text[1] < 0xDC00 || text[1] > 0xDFFF) {
        return {Replacement, 1, false};
    }
    return {0x10000 + ((first - 0xD800) << 10) + (text[1] - 0xDC00U), 2};
}

std::size_t Encode(char32_t code, char16_t* units)
{
    if (code < 0x10000) {
        units[0] = static_cast<char16_t>(code);
        return 1;
    }
    units[0] = static_cast<char16_t>(0xD7C0 + (code >> 10));
    units[1] = static_cast<char16_t>(0xDC00 + (code & 0x3FF));
    return 2;
}

std::size_t Encode(char32_t code, char* bytes)
{
    if (code < 0x80) {
        bytes[0] = static_cast<char>(code);
        return 1;
    }
    std::size_t const length = code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    for (std::size_t i = length - 1; i > 0; --i) {
        bytes[i] = static_cast<char>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    bytes[0] = static_cast<char>(0xF00U >> length | code);
    return length;
}

// The part that both directions have in common: decodes character after character into `buffer` (of `size`
// units, 0: count only). Returns the units written or needed; 0 with the error set after a failure.
template<typename Out, typename In, typename Decode>
int Convert(In const* text, int length, Out* buffer, int size, bool strict, bool& replaced, Decode decode)
{
    if (text == nullptr || length == 0 || size < 0 || (buffer == nullptr && size != 0)) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    // Negative: up to and with the terminator.
    std::size_t const count =
        length >= 0 ? static_cast<std::size_t>(length) : std::char_traits<In>::length(text) + 1;
    auto const room = static_cast<std::size_t>(size);
    std::size_t done = 0;
    for (std::size_t at = 0; at < count;) {
        Out units[4];
        std::size_t produced = 1;
        if (static_cast<std::make_unsigned_t<In>>(text[at]) < 0x80) {
            units[0] = static_cast<Out>(text[at++]);
        } else {
            Character const character = decode(text + at, count - at);
            if (!character.valid) {
                replaced = true;
                if (strict) {
                    return Fail(ERROR_NO_UNICODE_TRANSLATION);
                }
            }
            at += character.length;
            produced = Encode(character.code, units);
        }
        if (size != 0) {
            if (room - done < produced) {
                return Fail(ERROR_INSUFFICIENT_BUFFER);
            }
            std::memcpy(buffer + done, units, produced * sizeof(Out));
        }
        done += produced;
    }
    if (done > INT_MAX) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    return static_cast<int>(done);
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

int MultiByteToWideChar(UINT codePage, DWORD flags, char const* text, int length, WCHAR* buffer, int size)
{
    if (codePage != CP_ACP) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if ((flags & ~MB_ERR_INVALID_CHARS) != 0) {
        return Fail(ERROR_INVALID_FLAGS);
    }
    bool replaced = false;
    return Convert(text, length, buffer, size, flags != 0, replaced, [](char const* at, std::size_t left) {
        return DecodeUtf8(reinterpret_cast<unsigned char const*>(at), left);
    });
}

int WideCharToMultiByte(UINT codePage, DWORD flags, WCHAR const* text, int length, char* buffer, int size,
                        char const* defaultCharacter, BOOL* usedDefault)
{
    if (codePage != CP_ACP || defaultCharacter != nullptr) {
        return Fail(ERROR_INVALID_PARAMETER);
    }
    if ((flags & ~WC_NO_BEST_FIT_CHARS) != 0) {
        return Fail(ERROR_INVALID_FLAGS);
    }
    bool replaced = false;
    int const result = Convert(text, length, buffer, size, false, replaced, DecodeUtf16);
    if (usedDefault != nullptr && result != 0) {
        *usedDefault = replaced ? TRUE : FALSE;
    }
    return result;
}
