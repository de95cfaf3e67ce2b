#include "quarn/properties/win32/xml_text.h"

#include "quarn/platform/win32_api.h"

#include <algorithm>
#include <climits>
#include <cstdint>

#include <xercesc/util/XMLChar.hpp>

namespace Quarn::detail {

namespace {

static_assert(sizeof(XMLCh) == sizeof(WCHAR), "the XML library's characters are the platform's");

using Utf16 = std::basic_string<WCHAR>;

bool ToUtf16(std::string_view text, Utf16& wide)
{
    wide.clear();
    if (text.empty()) {
        return true;
    }
    if (text.size() > INT_MAX) {
        return false;
    }
    // No code page makes more than one unit from a byte.
    wide.resize(text.size());
    int const length = static_cast<int>(text.size());
    int const units =
        ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, text.data(), length, wide.data(), length);
    if (units <= 0) {
        return false;
    }
    wide.resize(static_cast<std::size_t>(units));
    return true;
}

bool AppendNarrow(WCHAR const* wide, std::size_t count, std::string& text)
{
    // Four bytes hold a unit of every code page.
    if (count > INT_MAX / 4) {
        return false;
    }
    std::size_t const start = text.size();
    text.resize(start + count * 4);
    int const bytes = ::WideCharToMultiByte(CP_ACP, 0, wide, static_cast<int>(count), text.data() + start,
                                            static_cast<int>(count * 4), nullptr, nullptr);
    text.resize(start + static_cast<std::size_t>(std::max(bytes, 0)));
    return bytes > 0;
}

// False for what XML 1.0 has not: a lone surrogate, U+FFFE, U+FFFF.
bool AppendUtf8(Utf16 const& wide, std::string& utf8)
{
    auto const put = [&utf8](std::uint32_t byte) { utf8 += static_cast<char>(byte); };
    for (std::size_t i = 0; i < wide.size(); ++i) {
        std::uint32_t c = wide[i];
        if (c >= 0xD800 && c < 0xE000) {
            if (c >= 0xDC00 || i + 1 == wide.size() || wide[i + 1] < 0xDC00 || wide[i + 1] >= 0xE000) {
                return false;
            }
            c = 0x10000 + ((c - 0xD800) << 10) + (wide[++i] - 0xDC00U);
        } else if (c >= 0xFFFE) {
            return false;
        }
        if (c < 0x80) {
            put(c);
        } else if (c < 0x800) {
            put(0xC0 | c >> 6);
            put(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            put(0xE0 | c >> 12);
            put(0x80 | (c >> 6 & 0x3F));
            put(0x80 | (c & 0x3F));
        } else {
            put(0xF0 | c >> 18);
            put(0x80 | (c >> 12 & 0x3F));
            put(0x80 | (c >> 6 & 0x3F));
            put(0x80 | (c & 0x3F));
        }
    }
    return true;
}

} // namespace

bool ToUtf8(std::string_view text, std::string& utf8)
{
    utf8.clear();
    Utf16 wide;
    if (!ToUtf16(text, wide)) {
        return false;
    }
    std::string back;
    if (!wide.empty() && !AppendNarrow(wide.data(), wide.size(), back)) {
        return false;
    }
    return back == text && AppendUtf8(wide, utf8);
}

bool AppendFromUtf16(XMLCh const* characters, std::size_t count, std::string& text)
{
    std::size_t const start = text.size();
    text.resize(start + count);
    char* const bytes = text.data() + start;
    std::size_t ascii = 0;
    while (ascii < count && characters[ascii] < 0x80) {
        bytes[ascii] = static_cast<char>(characters[ascii]);
        ++ascii;
    }
    text.resize(start + ascii);
    if (ascii == count) {
        return true;
    }
    WCHAR const* const rest = reinterpret_cast<WCHAR const*>(characters) + ascii;
    if (!AppendNarrow(rest, count - ascii, text)) {
        return false;
    }
    Utf16 back;
    return ToUtf16(std::string_view(text).substr(start + ascii), back) &&
           std::equal(back.begin(), back.end(), rest, rest + (count - ascii));
}

bool IsRootElementName(std::string_view text)
{
    Utf16 wide;
    return ToUtf16(text, wide) &&
           xercesc::XMLChar1_0::isValidNCName(reinterpret_cast<XMLCh const*>(wide.c_str()), wide.size());
}

} // namespace Quarn::detail
