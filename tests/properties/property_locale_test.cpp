// Names outside ASCII fold as far as the locale of the moment knows them, whatever it was before.
#include "quarn/properties/property_collection.h"

#include "tests/properties/test_locale.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

class PropertyLocale : public testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_locale.Found()); }

    // Fills the key, so that its names are indexed.
    static void Fill(PropertyKey& key, char const* letter)
    {
        for (int i = 0; i < 50; ++i) {
            Quarn::string name;
            name.Format("%s%d", letter, i);
            key.SetValue(name, PropertyData(i), true);
        }
    }

    TestLocale m_locale;
};

TEST_F(PropertyLocale, DecidesAboutLettersOutsideAscii)
{
    PropertyKey const key(Quarn::string("Stra") + m_locale.UpperA(), nullptr);
    Quarn::string const other = Quarn::string("sTRA") + m_locale.LowerA();
    EXPECT_FALSE(key == other);
    EXPECT_TRUE(key == Quarn::string("sTRA") + m_locale.UpperA());
    m_locale.Use();
    EXPECT_TRUE(key == other);
    TestLocale::UseC();
    EXPECT_FALSE(key == other);
}

TEST_F(PropertyLocale, ChangesWhatALongListFinds)
{
    PropertyCollection root;
    Fill(root, m_locale.UpperA());
    Quarn::string const lower = Quarn::string(m_locale.LowerA()) + "7";
    Quarn::string const upper = Quarn::string(m_locale.UpperA()) + "7";
    for (int round = 0; round < 3; ++round) {
        TestLocale::UseC();
        EXPECT_EQ(root.GetValue(lower), nullptr);
        EXPECT_EQ(root.GetValue(upper), root.GetValue(7));
        m_locale.Use();
        EXPECT_EQ(root.GetValue(lower), root.GetValue(7));
        EXPECT_EQ(root.GetValue(upper), root.GetValue(7));
    }
}

TEST_F(PropertyLocale, MayMakeNamesEqualThatWereDifferent)
{
    PropertyCollection root;
    Fill(root, m_locale.UpperA());
    Fill(root, m_locale.LowerA());
    ASSERT_EQ(root.GetValueCount(), 100U);
    Quarn::string const lower = Quarn::string(m_locale.LowerA()) + "7";
    EXPECT_EQ(root.GetValue(lower), root.GetValue(57));
    m_locale.Use();
    EXPECT_EQ(root.GetValue(lower), root.GetValue(7)) << "the first of equal names";
    EXPECT_TRUE(root.RemoveValue(lower));
    EXPECT_EQ(root.GetValue(lower), root.GetValue(56));
    TestLocale::UseC();
    EXPECT_EQ(root.GetValue(lower), root.GetValue(56));
    EXPECT_EQ(root.GetValue(Quarn::string(m_locale.UpperA()) + "7"), nullptr);
}

TEST_F(PropertyLocale, MayChangeBetweenAnyTwoOperations)
{
    PropertyCollection root;
    Fill(root, m_locale.UpperA());
    Quarn::string const upperO = Quarn::string(m_locale.UpperO()) + "x";
    Quarn::string const lowerO = Quarn::string(m_locale.LowerO()) + "X";

    // Added and renamed under one locale, searched under the other, in both directions.
    PropertyValue* const added = root.SetValue(upperO, PropertyData(1), true);
    m_locale.Use();
    EXPECT_EQ(root.GetValue(lowerO), added);
    *root.GetValue(3) = PropertyValue(lowerO, PropertyData(3), &root);
    EXPECT_EQ(root.GetValue(upperO), root.GetValue(3));
    TestLocale::UseC();
    EXPECT_EQ(root.GetValue(upperO), added);
    EXPECT_EQ(root.GetValue(lowerO), root.GetValue(3));

    // Changed there and back with a change in between.
    m_locale.Use();
    EXPECT_TRUE(root.RemoveValue(upperO));
    TestLocale::UseC();
    EXPECT_EQ(root.GetValue(lowerO), nullptr);
    EXPECT_EQ(root.GetValue(upperO), added);
    root.SetValue("ascii", PropertyData(2), true);
    m_locale.Use();
    EXPECT_EQ(root.GetValue(lowerO), added);
    EXPECT_EQ(root.GetValueInt32("ASCII", 0), 2);
}

TEST_F(PropertyLocale, LeavesBytesAloneThatItDoesNotDecode)
{
    m_locale.Use();
    PropertyCollection root;
    Fill(root, "x");
    // A lone continuation byte, a cut sequence, an overlong form; each equals itself alone.
    char const* const names[] = {"\x80", "a\xc3", "\xc0\x84", "\xff\xfe", "\xc3\xc3\x84"};
    for (char const* name : names) {
        root.SetValue(name, PropertyData(name), true);
    }
    for (char const* name : names) {
        EXPECT_EQ(root.GetValueString(name, "missing"), name);
    }
    EXPECT_EQ(root.GetValueCount(), 55U);
    EXPECT_EQ(root.GetValueString("A\xc3", "missing"), "a\xc3");
}

} // namespace
