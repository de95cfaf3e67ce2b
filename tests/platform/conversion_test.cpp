// Conversions between the process code page and UTF-16 through the seam. The code page is the system's own,
// so the cases shared by both systems are ASCII; test lengths, sizes and errors.
#include "platform/scratch_folder.h"

#include <gtest/gtest.h>

namespace {

constexpr DWORD Strict = MB_ERR_INVALID_CHARS;

TEST(SeamConversion, ToWideCountsAndFills)
{
    WCHAR wide[4] = {'#', '#', '#', '#'};
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, Strict, "abc", -1, nullptr, 0), 4);
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, Strict, "abc", 3, nullptr, 0), 3);
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, Strict, "abc", 3, wide, 3), 3);
    EXPECT_EQ(wide[0], 'a');
    EXPECT_EQ(wide[2], 'c');
    EXPECT_EQ(wide[3], '#');
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, Strict, "abc", -1, wide, 4), 4);
    EXPECT_EQ(wide[3], 0);
    EXPECT_EQ(::MultiByteToWideChar(CP_ACP, Strict, "a\0c", 3, wide, 4), 3);
    EXPECT_EQ(wide[1], 0);
    EXPECT_EQ(wide[2], 'c');
}

TEST(SeamConversion, ToWideRefusesBadArguments)
{
    WCHAR wide[10];
    struct
    {
        UINT codePage;
        DWORD flags;
        char const* text;
        int length;
        WCHAR* buffer;
        int size;
        DWORD error;
    } const cases[] = {
        {CP_ACP, 0, "abc", 0, wide, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, nullptr, 1, wide, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, "abc", -1, wide, -1, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, "abc", -1, nullptr, 10, ERROR_INVALID_PARAMETER},
        {12345, 0, "abc", -1, wide, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0x4000, "abc", -1, wide, 10, ERROR_INVALID_FLAGS},
        {CP_ACP, 0, "abc", -1, wide, 3, ERROR_INSUFFICIENT_BUFFER},
        {CP_ACP, 0, "abc", 3, wide, 2, ERROR_INSUFFICIENT_BUFFER},
    };
    for (auto const& test : cases) {
        EXPECT_EQ(ErrorOf([&] {
                      EXPECT_EQ(::MultiByteToWideChar(test.codePage, test.flags, test.text, test.length,
                                                      test.buffer, test.size),
                                0);
                  }),
                  test.error)
            << &test - cases;
    }
}

TEST(SeamConversion, FromWideCountsAndFills)
{
    WCHAR const wide[] = {'a', 'b', 'c', 0};
    char text[5] = "####";
    BOOL replaced = 5;
    EXPECT_EQ(::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, -1, nullptr, 0, nullptr, &replaced),
              4);
    EXPECT_EQ(replaced, FALSE);
    EXPECT_EQ(::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, 3, text, 3, nullptr, nullptr), 3);
    EXPECT_STREQ(text, "abc#");
    replaced = 5;
    EXPECT_EQ(::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, -1, text, 4, nullptr, &replaced), 4);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(replaced, FALSE);
}

TEST(SeamConversion, FromWideRefusesBadArguments)
{
    WCHAR const wide[] = {'a', 'b', 'c', 0};
    char text[10];
    struct
    {
        UINT codePage;
        DWORD flags;
        WCHAR const* wide;
        int length;
        char* buffer;
        int size;
        DWORD error;
    } const cases[] = {
        {CP_ACP, 0, wide, 0, text, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, nullptr, 1, text, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, wide, -1, text, -1, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0, wide, -1, nullptr, 10, ERROR_INVALID_PARAMETER},
        {12345, 0, wide, -1, text, 10, ERROR_INVALID_PARAMETER},
        {CP_ACP, 0x4000000, wide, -1, text, 10, ERROR_INVALID_FLAGS},
        {CP_ACP, 0, wide, -1, text, 3, ERROR_INSUFFICIENT_BUFFER},
    };
    for (auto const& test : cases) {
        EXPECT_EQ(ErrorOf([&] {
                      EXPECT_EQ(::WideCharToMultiByte(test.codePage, test.flags, test.wide, test.length,
                                                      test.buffer, test.size, nullptr, nullptr),
                                0);
                  }),
                  test.error)
            << &test - cases;
    }
}

// A character outside the Basic Multilingual Plane is in no code page of one byte a character; what stands
// alone of such a pair is in none at all.
TEST(SeamConversion, FromWideTellsWhatHasNoPlaceInTheCodePage)
{
    WCHAR const wide[] = {'a', 0xD83D, 'b'};
    char text[10];
    BOOL replaced = FALSE;
    EXPECT_GE(
        ::WideCharToMultiByte(CP_ACP, WC_NO_BEST_FIT_CHARS, wide, 3, text, sizeof text, nullptr, &replaced),
        3);
    EXPECT_EQ(replaced, TRUE);
    EXPECT_EQ(text[0], 'a');
}

} // namespace
