// The process's log: each function, each code, each option.
#include "quarn/platform/log.h"

#include "tests/platform/log_file.h"

#include <cerrno>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

static_assert(std::is_same_v<decltype(Log::GetErrorInformation()), unsigned long>);
static_assert(std::is_same_v<decltype(Log::GetOutputOptions()), unsigned int>);
static_assert(std::is_same_v<decltype(Log::GetPath()), char const*>);

// "<pattern>" with a digit for each '#'.
testing::AssertionResult Matches(std::string const& text, std::string const& pattern)
{
    bool matches = text.size() == pattern.size();
    for (std::size_t i = 0; matches && i < text.size(); ++i) {
        matches = pattern[i] == '#' ? text[i] >= '0' && text[i] <= '9' : text[i] == pattern[i];
    }
    return matches ? testing::AssertionSuccess()
                   : testing::AssertionFailure() << text << " is no " << pattern;
}

TEST_F(LogFile, HoldsTheLatestMessageAloneDeliberatelyWithTheFirstOptions)
{
    EXPECT_EQ(Log::GetOutputOptions(), 17U);
    unsigned long const lastFailure = Log::GetErrorInformation();
    WriteContent(m_path, "what was there before\n");
    EXPECT_EQ(Log::Output(0, "one message"), 0);
    EXPECT_EQ(Content(), "one message\n");
    EXPECT_EQ(Log::Output(0, "two"), 0);
    EXPECT_EQ(Content(), "two\n");
    EXPECT_EQ(Log::Close(), -2);
    EXPECT_EQ(Log::GetErrorInformation(), lastFailure);
}

TEST_F(LogFile, GetsNoMessageAboveTheOutputLevel)
{
    EXPECT_EQ(Log::Output(1, "dropped"), 0);
    EXPECT_EQ(Log::Output(INT_MAX, "dropped"), 0);
    EXPECT_EQ(m_folder.Names().size(), 0U);
    EXPECT_EQ(Log::Output(0, LineFeed, "zero"), 0);
    EXPECT_EQ(Log::Output(1, LineFeed, "dropped"), 0);
    EXPECT_EQ(Log::Output(-1, LineFeed, "below"), 0);
    EXPECT_EQ(Log::Output(INT_MIN, LineFeed, "far below"), 0);
    Log::SetOutputLevel(3);
    EXPECT_EQ(Log::GetOutputLevel(), 3);
    EXPECT_EQ(Log::Output(3, LineFeed, "three"), 0);
    EXPECT_EQ(Log::Output(4, LineFeed, "dropped"), 0);
    Log::SetOutputLevel(-5);
    EXPECT_EQ(Log::GetOutputLevel(), -5);
    EXPECT_EQ(Log::Output(-4, LineFeed, "dropped"), 0);
    EXPECT_EQ(Log::Output(-5, LineFeed, "minus five"), 0);
    EXPECT_EQ(Log::Close(), 0);
    EXPECT_EQ(Content(), "zero\nbelow\nfar below\nthree\nminus five\n");
}

TEST_F(LogFile, GetsWhatEachCombinationOfOptionsAsksFor)
{
    for (int options = 0; options < 32; ++options) {
        SCOPED_TRACE(options);
        bool const fails = (options & TimeStamp) != 0;
        std::string expected = (options & (Closing | Truncating)) != 0 ? "" : "old\n";
        expected += (options & DateStamp) != 0 ? "##-##-## " : "";
        expected += fails ? "##:##:## " : "";
        expected += (options & (DateStamp | TimeStamp)) != 0 ? "| " : "";
        expected += fails ? "" : "text";
        expected += !fails && (options & LineFeed) != 0 ? "\n" : "";
        for (bool const areSet : {false, true}) {
            WriteContent(m_path, "old\n");
            Log::ClearError();
            Log::SetOutputOptions(areSet ? static_cast<unsigned int>(options) : 0);
            int const result = areSet ? Log::Output(0, "text") : Log::Output(0, options, "text");
            EXPECT_EQ(result, fails ? -3 : 0);
            bool const isOpen = !fails && (options & Closing) == 0;
            EXPECT_EQ(Log::Close(), isOpen ? 0 : -2);
            EXPECT_TRUE(Matches(Content(), expected));
        }
    }
}

TEST_F(LogFile, TakesLiteralsForEveryArgument)
{
    EXPECT_EQ(Log::Output(0, 0, "a"), 0);
    EXPECT_EQ(Log::Output(0, 0U, "b"), 0);
    EXPECT_EQ(Log::Output('\0', 17L, "c"), 0);
    EXPECT_EQ(Content(), "abc\n");
    EXPECT_EQ(Log::Output(1, 0), 0);
    EXPECT_EQ(Log::Output(1, 0, 0), 0);
    EXPECT_EQ(Log::Output(1, nullptr), 0);
}

TEST_F(LogFile, TakesOptionsAsTheyAre)
{
    Log::SetOutputOptions(0xFFFFFFFF);
    EXPECT_EQ(Log::GetOutputOptions(), 0xFFFFFFFFU);
    Log::SetOutputOptions(0x80000000 | 16);
    EXPECT_EQ(Log::Output(0, "a"), 0);
    EXPECT_EQ(Log::Output(0, INT_MIN, "b"), 0);
    EXPECT_EQ(Log::GetOutputOptions(), 0x80000010U);
    EXPECT_EQ(Log::Close(), 0);
    EXPECT_EQ(Content(), "a\nb");
}

TEST_F(LogFile, StaysOpenUntilAMessageClosesIt)
{
    WriteContent(m_path, "old");
    EXPECT_EQ(Log::Output(0, Truncating | LineFeed, "first"), 0);
    // Already open: neither of these truncates again.
    EXPECT_EQ(Log::Output(0, Truncating | LineFeed, "second"), 0);
    EXPECT_EQ(Log::Output(0, Closing | LineFeed, "third"), 0);
    EXPECT_EQ(Log::Close(), -2);
    EXPECT_EQ(Content(), "first\nsecond\nthird\n");
    EXPECT_EQ(Log::Output(0, LineFeed, "fourth"), 0);
    EXPECT_EQ(Log::Close(), 0);
    EXPECT_EQ(Content(), "first\nsecond\nthird\nfourth\n");
}

TEST_F(LogFile, HasADateOfTheDayInLocalTime)
{
    SYSTEMTIME before;
    SYSTEMTIME after;
    do {
        ::GetLocalTime(&before);
        EXPECT_EQ(Log::Output(0, Closing | DateStamp, "x"), 0);
        ::GetLocalTime(&after);
    } while (before.wDay != after.wDay);
    char expected[32];
    std::snprintf(expected, sizeof expected, "%02d-%02d-%02d | x", after.wYear - 2000, after.wMonth,
                  after.wDay);
    EXPECT_EQ(Content(), expected);
}

TEST_F(LogFile, TakesAWrittenTimeStampDeliberatelyForAFailure)
{
    SYSTEMTIME before;
    SYSTEMTIME after;
    do {
        Log::ClearError();
        ::GetLocalTime(&before);
        EXPECT_EQ(Log::Output(0, TimeStamp | Truncating | LineFeed, "no text"), -3);
        ::GetLocalTime(&after);
    } while (before.wSecond != after.wSecond);
    char expected[32];
    std::snprintf(expected, sizeof expected, "%02d:%02d:%02d | ", after.wHour, after.wMinute, after.wSecond);
    EXPECT_EQ(Content(), expected);
    EXPECT_EQ(Log::Close(), -2);
    EXPECT_EQ(Log::Output(0, LineFeed, "refused"), -5);
    EXPECT_EQ(Log::Output(0, "refused"), -5);
    EXPECT_EQ(Content(), expected);
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, Closing, "works again"), 0);
    EXPECT_EQ(Content(), "works again");
}

TEST_F(LogFile, TimeStampAsAFailureHasTheErrorNumberOfThatMoment)
{
    EXPECT_EQ(Log::Output(0, 0, "open"), 0);
    errno = ERANGE;
    EXPECT_EQ(Log::Output(0, TimeStamp, "x"), -3);
    EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(ERANGE));
}

TEST_F(LogFile, DroppedMessagesPassAnError)
{
    EXPECT_EQ(Log::Output(0, TimeStamp, "x"), -3);
    EXPECT_EQ(Log::Output(1, "dropped"), 0);
    EXPECT_EQ(Log::Output(0, "refused"), -5);
}

TEST_F(LogFile, TextIsReadByTheFormattingRules)
{
    EXPECT_EQ(Log::Output(0, "%d of 100%%, %s, %5.1f%n"), 0);
    EXPECT_EQ(Content(), "0 of 100%, ,   0.0\n");
    EXPECT_EQ(Log::Output(0, Closing, "%%"), 0);
    EXPECT_EQ(Content(), "%");
    EXPECT_EQ(Log::Output(0, Closing, "a%cb"), 0);
    EXPECT_EQ(Content(), std::string("a\0b", 3));
}

TEST_F(LogFile, HostileTextsAreHarmless)
{
    std::string texts[] = {"%n%n%n%n%n%n%n%n",
                           "%s%s%s%s%s%s%s%s%s%s%s%s",
                           "%hhn%lln%5n",
                           "%*d%*s%.*f",
                           "%ls%S%lc",
                           "%999999999d%.999999999f%2147483648s",
                           "%1$s%99$n",
                           "%m%y%",
                           "%",
                           "100%",
                           "%5",
                           "%ll"};
    for (std::string const& text : texts) {
        EXPECT_EQ(Log::Output(0, text.c_str()), 0) << text;
        EXPECT_LT(std::filesystem::file_size(m_path), 3U * 4200) << text;
    }
    EXPECT_EQ(Content(), "%ll\n");
    EXPECT_EQ(Log::Output(0, "%999999999d"), 0);
    EXPECT_EQ(Content(), std::string(4094, ' ') + "0\n");
}

TEST_F(LogFile, LongAndEmptyTextsAreWrittenWhole)
{
    std::string const text(300'000, 'x');
    EXPECT_EQ(Log::Output(0, LineFeed, text.c_str()), 0);
    EXPECT_EQ(Log::Output(0, LineFeed, ""), 0);
    EXPECT_EQ(Log::Output(0, 0, ""), 0);
    EXPECT_EQ(Log::Output(0, 0, "\r\n\t\xe4\x1a\xff"), 0);
    EXPECT_EQ(Log::Close(), 0);
    EXPECT_EQ(Content(), text + "\n\n\r\n\t\xe4\x1a\xff");
}

TEST_F(LogFile, ANullTextIsAFailedWrite)
{
    EXPECT_EQ(Log::Output(0, LineFeed, "kept"), 0);
    EXPECT_EQ(Log::Output(0, LineFeed | DateStamp, nullptr), -3);
    EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EINVAL));
    EXPECT_EQ(Log::Close(), -2);
    EXPECT_EQ(Log::Output(0, "refused"), -5);
    EXPECT_TRUE(Matches(Content(), "kept\n##-##-## | "));
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, nullptr), -3);
    EXPECT_EQ(Content(), "");
}

TEST_F(LogFile, PathIsRefusedWhileTheFileIsOpen)
{
    EXPECT_EQ(Log::Output(0, 0, "a"), 0);
    EXPECT_EQ(Log::SetPath((m_folder / "b.log").c_str()), -1);
    EXPECT_STREQ(Log::GetPath(), m_path.c_str());
    EXPECT_EQ(Log::SetPath(nullptr), -1);
    EXPECT_EQ(Log::Close(), 0);
    EXPECT_EQ(Log::SetPath((m_folder / "b.log").c_str()), 0);
    EXPECT_EQ(Log::Output(0, "b"), 0);
    EXPECT_EQ(Content(), "a");
    EXPECT_EQ(ContentOf(m_folder / "b.log"), "b\n");
}

TEST_F(LogFile, PathOf260CharactersIsRefused)
{
    EXPECT_EQ(Log::Output(0, TimeStamp, "sets the error"), -3);
    for (std::size_t const length : {260U, 261U, 300U, 100'000U}) {
        EXPECT_EQ(Log::SetPath(std::string(length, 'a').c_str()), -1) << length;
        EXPECT_STREQ(Log::GetPath(), m_path.c_str());
        EXPECT_EQ(Log::Output(0, "refused"), -5) << "the error is still set";
    }
    std::string const longest(259, 'a');
    EXPECT_EQ(Log::SetPath(longest.c_str()), 0);
    EXPECT_EQ(Log::GetPath(), longest);
}

TEST_F(LogFile, ANullPathIsRefused)
{
    EXPECT_EQ(Log::SetPath(nullptr), -1);
    EXPECT_STREQ(Log::GetPath(), m_path.c_str());
}

TEST_F(LogFile, PathMayBeTheLogsOwn)
{
    EXPECT_EQ(Log::SetPath(Log::GetPath()), 0);
    EXPECT_STREQ(Log::GetPath(), m_path.c_str());
    EXPECT_EQ(Log::SetPath(Log::GetPath() + m_folder.Path().size() + 1), 0);
    EXPECT_STREQ(Log::GetPath(), "a.log");
}

TEST_F(LogFile, ANewPathClearsTheErrorButNotItsInformation)
{
    EXPECT_EQ(Log::Output(0, nullptr), -3);
    EXPECT_EQ(Log::Output(0, "refused"), -5);
    EXPECT_EQ(Log::SetPath(m_path.c_str()), 0);
    EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EINVAL));
    EXPECT_EQ(Log::Output(0, "x"), 0);
    EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EINVAL));
}

TEST_F(LogFile, InAFolderThatIsGoneCannotBeOpened)
{
    std::string const path = m_folder.MakeFolder("gone") + "/a.log";
    EXPECT_EQ(Log::SetPath(path.c_str()), 0);
    EXPECT_EQ(Log::Output(0, "x"), 0);
    std::filesystem::remove_all(m_folder / "gone");
    for (int const options : {Closing, Truncating, 0, DateStamp | LineFeed, TimeStamp}) {
        EXPECT_EQ(Log::Output(0, options, "x"), -2);
        EXPECT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(ENOENT));
        EXPECT_EQ(Log::Output(0, options, "x"), -5);
        EXPECT_EQ(Log::Close(), -2);
        Log::ClearError();
    }
    m_folder.MakeFolder("gone");
    EXPECT_EQ(Log::Output(0, "x"), 0);
}

TEST_F(LogFile, ThatIsAFolderCannotBeOpened)
{
    EXPECT_EQ(Log::SetPath(m_folder.Path().c_str()), 0);
    EXPECT_EQ(Log::Output(0, "x"), -2);
    unsigned long const information = Log::GetErrorInformation();
    EXPECT_TRUE(information == EISDIR || information == EACCES) << information;
}

TEST_F(LogFile, FailuresKeepNoFileOpen)
{
    // More than the runtime library of Windows opens at once.
    for (int i = 0; i < 600; ++i) {
        Log::ClearError();
        ASSERT_EQ(Log::Output(0, nullptr), -3);
        ASSERT_EQ(Log::GetErrorInformation(), static_cast<unsigned long>(EINVAL));
    }
    Log::ClearError();
    EXPECT_EQ(Log::Output(0, "x"), 0);
}

TEST_F(LogFile, IsReadAndAppendedToByOthersWhileItIsOpen)
{
    EXPECT_EQ(Log::Output(0, LineFeed, "one"), 0);
    std::ofstream(m_path, std::ios_base::binary | std::ios_base::app) << "another's\n";
    EXPECT_EQ(Log::Output(0, LineFeed, "two"), 0);
    EXPECT_EQ(Log::Close(), 0);
    // The buffer decides which is first.
    std::set<std::string> const orders{"another's\none\ntwo\n", "one\nanother's\ntwo\n"};
    EXPECT_TRUE(orders.contains(Content())) << Content();
}

} // namespace
