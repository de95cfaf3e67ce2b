// What the units are called, in both languages. The language is chosen once in a process, so the German texts
// are looked at in a process of their own.
#include "quarn/platform/module.h"
#include "quarn/units/unit_names.h"

#include "tests/platform/process_text.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

using Unit = Quarn::Distance<float>::Unit;
using Win32Quarn::GetUnitsAbbrev;
using Win32Quarn::GetUnitsName;
using Win32Quarn::GetUnitsNamePlural;

struct Texts
{
    std::u16string_view name;
    std::u16string_view plural;
    std::u16string_view abbreviation;
};

// One for each number from 0 to 13.
constexpr Texts English[] = {
    {u"meter", u"meters", u"m"},
    {u"centimeter", u"centimeters", u"cm"},
    {u"millimeter", u"millimeters", u"mm"},
    {u"micron", u"microns", u"\u00b5m"},
    {u"nanometer", u"nanometers", u"nm"},
    {u"angstrom", u"angstroms", u"\u00c5"},
    {u"kilometer", u"kilometers", u"km"},
    {u"mil", u"mils", u"mil"},
    {u"inch", u"inches", u"in"},
    {u"foot", u"feet", u"ft"},
    {u"yard", u"yards", u"yd"},
    {u"mile", u"miles", u"mi"},
    {u"unknown", u"unknown", u"unknown"},
    {u"unknown", u"unknown", u"unknown"},
};
constexpr Texts German[] = {
    {u"Meter", u"Meter", u"m"},
    {u"Zentimeter", u"Zentimeter", u"cm"},
    {u"Millimeter", u"Millimeter", u"mm"},
    {u"Mikrometer", u"Mikrometer", u"\u00b5m"},
    {u"Nanometer", u"Nanometer", u"nm"},
    {u"\u00c5ngstr\u00f6m", u"\u00c5ngstr\u00f6m", u"\u00c5"},
    {u"Kilometer", u"Kilometer", u"km"},
    {u"Mil", u"Mil", u"mil"},
    {u"Zoll", u"Zoll", u"in"},
    {u"Fu\u00df", u"Fu\u00df", u"ft"},
    {u"Yard", u"Yards", u"yd"},
    {u"Meile", u"Meilen", u"mi"},
    {u"unbekannt", u"unbekannt", u"unbekannt"},
    {u"unbekannt", u"unbekannt", u"unbekannt"},
};

// How many of the texts in force differ from the table; says which.
template<std::size_t Count>
int Differences(Texts const (&texts)[Count])
{
    static_assert(Count == 14);
    int differences = 0;
    for (std::size_t i = 0; i < Count; ++i) {
        auto const unit = static_cast<Unit>(i);
        auto const compare = [&](std::string const& text, std::u16string_view expected) {
            if (text != ProcessText(expected)) {
                std::fprintf(stderr, "unit %d: %s\n", static_cast<int>(i), text.c_str());
                ++differences;
            }
        };
        compare(GetUnitsName(unit), texts[i].name);
        compare(GetUnitsNamePlural(unit), texts[i].plural);
        compare(GetUnitsAbbrev(unit), texts[i].abbreviation);
    }
    return differences;
}

TEST(UnitNames, AreThoseOfTheLibrarysTable)
{
    EXPECT_EQ(Differences(English), 0);
}

TEST(UnitNames, ComeInTheProcessCodePage)
{
    bool const isUtf8 = ProcessText(u"\u00b5").size() == 2;
    EXPECT_EQ(GetUnitsAbbrev(Unit::Micron), isUtf8 ? "\xC2\xB5m" : "\xB5m");
    EXPECT_EQ(GetUnitsAbbrev(Unit::Angstrom), isUtf8 ? "\xC3\x85" : "\xC5");
}

TEST(UnitNames, OfTheUnknownUnitAreDeliberatelyTheSameThreeTimes)
{
    EXPECT_EQ(GetUnitsName(Unit::Unknown), "unknown");
    EXPECT_EQ(GetUnitsNamePlural(Unit::Unknown), "unknown");
    EXPECT_EQ(GetUnitsAbbrev(Unit::Unknown), "unknown");
}

TEST(UnitNames, OfNumbersOutsideTheTablesAreEmpty)
{
    for (int const number : {-1, -2, 14, 15, 100, INT_MIN, INT_MAX}) {
        EXPECT_EQ(GetUnitsName(static_cast<Unit>(number)), "") << number;
        EXPECT_EQ(GetUnitsNamePlural(static_cast<Unit>(number)), "") << number;
        EXPECT_EQ(GetUnitsAbbrev(static_cast<Unit>(number)), "") << number;
    }
}

TEST(UnitNamesDeathTest, AreGermanWhereGermanWasChosen)
{
    EXPECT_EXIT(
        {
            QuarnUtil::InitLanguage("DEU");
            std::exit(Differences(German));
        },
        testing::ExitedWithCode(0), "");
}

TEST(UnitNamesDeathTest, StayEnglishWhereALanguageHasNoModule)
{
    EXPECT_EXIT(
        {
            QuarnUtil::InitLanguage("XXX");
            std::exit(Differences(English));
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
