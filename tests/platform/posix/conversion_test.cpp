// UTF-8, the process code page on POSIX, to UTF-16 and back.
#include "platform/scratch_folder.h"

#include <gtest/gtest.h>

namespace {

std::u16string ToWide(std::string const& text, DWORD flags)
{
    std::u16string wide(text.size() + 1, u'#');
    int const length = ::MultiByteToWideChar(CP_ACP, flags, text.data(), static_cast<int>(text.size()),
                                             wide.data(), static_cast<int>(wide.size()));
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, flags, text.data(), static_cast<int>(text.size()), nullptr, 0),
              length);
    wide.resize(static_cast<std::size_t>(length));
    return wide;
}

std::string FromWide(std::u16string const& wide, bool& replaced)
{
    std::string text(wide.size() * 3 + 1, '#');
    BOOL flag = FALSE;
    int const length =
        ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide.data(), static_cast<int>(wide.size()),
                              text.data(), static_cast<int>(text.size()), nullptr, &flag);
    text.resize(static_cast<std::size_t>(length));
    replaced = flag != FALSE;
    return text;
}

std::string Utf8(char32_t code)
{
    if (code < 0x80) {
        return {static_cast<char>(code)};
    }
    if (code < 0x800) {
        return {static_cast<char>(0xC0 + code / 64), static_cast<char>(0x80 + code % 64)};
    }
    if (code < 0x10000) {
        return {static_cast<char>(0xE0 + code / 4096), static_cast<char>(0x80 + code / 64 % 64),
                static_cast<char>(0x80 + code % 64)};
    }
    return {static_cast<char>(0xF0 + code / 262144), static_cast<char>(0x80 + code / 4096 % 64),
            static_cast<char>(0x80 + code / 64 % 64), static_cast<char>(0x80 + code % 64)};
}

TEST(PosixConversion, EveryCharacterComesBack)
{
    std::string text;
    std::u16string expected;
    for (char32_t code = 0; code <= 0x10FFFF; ++code) {
        if (code >= 0xD800 && code <= 0xDFFF) {
            continue;
        }
        text += Utf8(code);
        if (code < 0x10000) {
            expected += static_cast<char16_t>(code);
        } else {
            expected += static_cast<char16_t>(0xD800 + (code - 0x10000) / 0x400);
            expected += static_cast<char16_t>(0xDC00 + (code - 0x10000) % 0x400);
        }
    }
    std::u16string const wide = ToWide(text, MB_ERR_INVALID_CHARS);
    EXPECT_TRUE(wide == expected);
    bool replaced = true;
    EXPECT_TRUE(FromWide(wide, replaced) == text);
    EXPECT_FALSE(replaced);
    EXPECT_EQ(ToWide("\xF0\x9F\x98\x80", MB_ERR_INVALID_CHARS), u"\xD83D\xDE00");
    EXPECT_EQ(ToWide("\xF4\x8F\xBF\xBF", MB_ERR_INVALID_CHARS), u"\xDBFF\xDFFF");
}

TEST(PosixConversion, InvalidBytesAreRefusedWhenAskedElseReplaced)
{
    struct
    {
        char const* text;
        std::u16string replaced;
    } const cases[] = {
        {"\x80", u"\xFFFD"},
        {"a\xFFz", u"a\xFFFDz"},
        {"\xC0\x80", u"\xFFFD\xFFFD"},                     // overlong
        {"\xC1\xBF", u"\xFFFD\xFFFD"},                     // overlong
        {"\xE0\x9F\xBF", u"\xFFFD\xFFFD\xFFFD"},           // overlong
        {"\xF0\x8F\xBF\xBF", u"\xFFFD\xFFFD\xFFFD\xFFFD"}, // overlong
        {"\xED\xA0\x80", u"\xFFFD\xFFFD\xFFFD"},           // surrogate
        {"\xED\xBF\xBF", u"\xFFFD\xFFFD\xFFFD"},           // surrogate
        {"\xF4\x90\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD"}, // above 10FFFF
        {"\xF8\x88\x80\x80\x80", u"\xFFFD\xFFFD\xFFFD\xFFFD\xFFFD"},
        {"\xC3", u"\xFFFD"},             // cut
        {"\xE2\x82", u"\xFFFD"},         // cut
        {"\xF0\x9F\x98", u"\xFFFD"},     // cut
        {"\xE2\x82z", u"\xFFFDz"},       // cut
        {"\xC3\xC3\xA9", u"\xFFFD\xE9"}, // cut, then a good one
    };
    for (auto const& test : cases) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(ToWide(test.text, MB_ERR_INVALID_CHARS), u""); }),
                  ERROR_NO_UNICODE_TRANSLATION)
            << testing::PrintToString(test.text);
        EXPECT_EQ(ToWide(test.text, 0), test.replaced) << testing::PrintToString(test.text);
    }
}

TEST(PosixConversion, LoneSurrogatesAreReplacedAndTold)
{
    for (std::u16string const& wide :
         {std::u16string(u"\xD800"), std::u16string(u"\xDC00"),
          std::u16string(u"\xDBFF"
                         u"a"),
          std::u16string(u"\xDC00\xD800"), std::u16string(u"\xD800\xD800\xDC00")}) {
        bool replaced = false;
        std::string const text = FromWide(wide, replaced);
        EXPECT_TRUE(replaced);
        EXPECT_NE(text.find("\xEF\xBF\xBD"), std::string::npos);
    }
}

TEST(PosixConversion, ACharacterIsNeverCutByTheBuffer)
{
    WCHAR wide[2] = {u'#', u'#'};
    EXPECT_EQ(
        ErrorOf([&] { EXPECT_EQ(::MultiByteToWideChar(CP_ACP, 0, "\xF0\x9F\x98\x80", 4, wide, 1), 0); }),
        ERROR_INSUFFICIENT_BUFFER);
    EXPECT_EQ(wide[0], u'#');
    char text[3] = "##";
    EXPECT_EQ(ErrorOf([&] {
                  EXPECT_EQ(::WideCharToMultiByte(CP_ACP, 0, u"\x20AC", 1, text, 2, nullptr, nullptr), 0);
              }),
              ERROR_INSUFFICIENT_BUFFER);
    EXPECT_STREQ(text, "##");
}

TEST(PosixConversion, AnotherDefaultCharacterIsRefused)
{
    char text[3];
    EXPECT_EQ(ErrorOf([&] { ::WideCharToMultiByte(CP_ACP, 0, u"a", 1, text, 3, "?", nullptr); }),
              ERROR_INVALID_PARAMETER);
}

} // namespace
