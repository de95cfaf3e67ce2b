// Texts of string tables: this program's, the library's, and those of modules made for it.
#include "quarn/platform/module.h"
#include "quarn/platform/resource_strings.h"

#include "tests/platform/process_text.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using QuarnUtil::GetLibraryInstance;
using Win32Quarn::LoadQuarnString;

TEST(ResourceStrings, NullIsTheExecutable)
{
    EXPECT_EQ(LoadQuarnString(500, nullptr), "the program's own text");
    EXPECT_EQ(LoadQuarnString(500, ::GetModuleHandleA(nullptr)), "the program's own text");
    EXPECT_EQ(LoadQuarnString(500, GetLibraryInstance()), "");
}

TEST(ResourceStrings, TheFirstFormTellsWhetherThereIsAText)
{
    Quarn::string text = "before";
    EXPECT_TRUE(LoadQuarnString(text, 500, nullptr));
    EXPECT_EQ(text, "the program's own text");
}

TEST(ResourceStrings, AMissingTextLeavesTheTarget)
{
    Quarn::string text = "before";
    EXPECT_FALSE(LoadQuarnString(text, 101, GetLibraryInstance()));
    EXPECT_FALSE(LoadQuarnString(text, 140, GetLibraryInstance()));
    EXPECT_FALSE(LoadQuarnString(text, 0, GetLibraryInstance()));
    EXPECT_FALSE(LoadQuarnString(text, 65535, GetLibraryInstance()));
    EXPECT_FALSE(LoadQuarnString(text, 499, nullptr));
    EXPECT_EQ(text, "before");
    EXPECT_EQ(LoadQuarnString(101, GetLibraryInstance()), "");
}

TEST(ResourceStrings, TheLibraryHoldsTheUnitsTexts)
{
    std::u16string_view const texts[] = {
        u"meter",     u"centimeter", u"millimeter",  u"micron",      u"nanometer", u"angstrom",
        u"kilometer", u"mil",        u"inch",        u"foot",        u"yard",      u"mile",
        u"unknown",   u"meters",     u"centimeters", u"millimeters", u"microns",   u"nanometers",
        u"angstroms", u"kilometers", u"mils",        u"inches",      u"feet",      u"yards",
        u"miles",     u"m",          u"cm",          u"mm",          u"\u00b5m",   u"nm",
        u"\u00c5",    u"km",         u"mil",         u"in",          u"ft",        u"yd",
        u"mi",        u"unk"};
    unsigned int id = 102;
    for (std::u16string_view const text : texts) {
        EXPECT_EQ(LoadQuarnString(id, GetLibraryInstance()), ProcessText(text)) << id;
        ++id;
    }
    EXPECT_EQ(id, 140U);
}

TEST(ResourceStrings, TheLanguageModuleHasTheSameIds)
{
    HMODULE const german = ::LoadLibraryA(QUARN_GERMAN_MODULE);
    ASSERT_NE(german, nullptr);
    for (unsigned int id = 102; id < 140; ++id) {
        EXPECT_NE(LoadQuarnString(id, german), "") << id;
    }
    EXPECT_EQ(LoadQuarnString(103, german), "Zentimeter");
    EXPECT_EQ(LoadQuarnString(124, german), ProcessText(u"Fu\u00df"));
    EXPECT_EQ(LoadQuarnString(101, german), "");
    EXPECT_EQ(LoadQuarnString(140, german), "");
}

TEST(ResourceStrings, EveryPlaceOfATableIsFound)
{
    HMODULE const module = ::LoadLibraryA(QUARN_FULL_MODULE);
    ASSERT_NE(module, nullptr);
    EXPECT_EQ(LoadQuarnString(1, module), "first");
    EXPECT_EQ(LoadQuarnString(15, module), "fifteen");
    EXPECT_EQ(LoadQuarnString(16, module), "sixteen");
    EXPECT_EQ(LoadQuarnString(65535, module), "last");
    EXPECT_EQ(LoadQuarnString(301, module),
              ProcessText(u"Gr\u00fc\u00dfe, \u03a9mega, \u6f22\u5b57 and \U0001f642"));
}

TEST(ResourceStrings, AnEmptyTextIsAMissingOne)
{
    HMODULE const module = ::LoadLibraryA(QUARN_FULL_MODULE);
    ASSERT_NE(module, nullptr);
    Quarn::string text = "before";
    EXPECT_FALSE(LoadQuarnString(text, 300, module));
    EXPECT_EQ(text, "before");
}

TEST(ResourceStrings, ATextIsCutAt2047Bytes)
{
    std::string const whole = LoadQuarnString(501, nullptr);
    EXPECT_EQ(whole.size(), 2047U);
    EXPECT_EQ(whole.substr(2036), "ghij1234567");
    std::string const cut = LoadQuarnString(502, nullptr);
    EXPECT_EQ(cut, whole);
    // A character of several bytes is left out as a whole.
    std::string const euro = ProcessText(u"\u20ac");
    EXPECT_EQ(LoadQuarnString(503, nullptr), whole.substr(0, 2045) + (euro.size() == 1 ? euro : ""));
}

TEST(ResourceStrings, TheSystemFunctionReportsSizesAsOnWindows)
{
    char buffer[8] = "before";
    EXPECT_EQ(::LoadStringA(GetLibraryInstance(), 101, buffer, sizeof buffer), 0);
    EXPECT_EQ(::LoadStringA(GetLibraryInstance(), 102, buffer, sizeof buffer), 5);
    EXPECT_STREQ(buffer, "meter");
    EXPECT_EQ(::LoadStringA(GetLibraryInstance(), 103, buffer, sizeof buffer), 7);
    EXPECT_STREQ(buffer, "centime");
    EXPECT_EQ(::LoadStringA(GetLibraryInstance(), 102, buffer, 1), 0);
    EXPECT_STREQ(buffer, "");
    EXPECT_EQ(::LoadStringA(GetLibraryInstance(), 102, buffer, 0), -1);
}

} // namespace
