#include "quarn/properties/property_collection.h"

#include <utility>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

TEST(PropertyKeyValues, AnEmptyNameIsTheDefaultValue)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("", PropertyData("x"), true);
    EXPECT_EQ(value->GetName(), "DefaultValue");
    EXPECT_TRUE(value->IsDefaultValue());
    for (char const* name : {"", "DefaultValue", "defaultvalue", "=ignored", ":", ":=", ":DEFAULTVALUE"}) {
        EXPECT_EQ(root.GetValue(name), value) << name;
        EXPECT_EQ(std::as_const(root).GetValue(name), value) << name;
        EXPECT_TRUE(root.HasValue(name)) << name;
    }
    EXPECT_EQ(root.SetValue("DEFAULTVALUE", PropertyData("y"), false), value);
    EXPECT_TRUE(root.RemoveValue(""));
    EXPECT_FALSE(root.RemoveValue(""));
}

TEST(PropertyKeyValues, AValueNamedInOtherCaseIsFoundButNotTheDefaultValue)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("defaultvalue", PropertyData("x"), true);
    EXPECT_EQ(root.GetValue(""), value);
    EXPECT_FALSE(value->IsDefaultValue());
}

TEST(PropertyKeyValues, AnAddressIsKeyPathColonName)
{
    PropertyCollection root;
    PropertyValue* const value = root.AddSubKey("a\\b")->SetValue("Size", PropertyData(12), true);
    for (char const* name : {"a\\b:Size", "a\\b:Size=12", "A/B:size=", "a;b:SIZE=x:y", "a:b:Size",
                             "a:b:Size=1", ":a\\b:Size", "a::b:Size", "a\\b::Size"}) {
        EXPECT_EQ(root.GetValue(name), value) << name;
    }
    for (char const* name : {"Size", "a:Size", "b:Size", "a\\b\\Size", "a\\b:", "a\\b:Siz", "a=1\\b:Size",
                             "x:", "a\\b:Size:", "a:b=:Size"}) {
        EXPECT_EQ(root.GetValue(name), nullptr) << name;
        EXPECT_FALSE(root.HasValue(name)) << name;
    }
}

TEST(PropertyKeyValues, TheKeyPathOfAnAddressMayHoldAnEqualsSign)
{
    PropertyCollection root;
    PropertyValue* const value = root.AddSubKey("a=b")->SetValue("n", PropertyData(1), true);
    EXPECT_EQ(root.GetValue("a=b:n"), value);
    EXPECT_EQ(root.GetValue("a:n"), nullptr);
}

TEST(PropertyKeyValues, NamesAreTakenLiterallyWhenSet)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("a:b=c", PropertyData(1), true);
    EXPECT_EQ(value->GetName(), "a:b=c");
    EXPECT_EQ(root.GetKeyCount(), 0U);
    EXPECT_EQ(root.GetValue("a:b=c"), nullptr);
    EXPECT_EQ(root.SetValue("A:B=C", PropertyData(2), false), value);
    EXPECT_EQ(value->GetValueInt32(), 2);
    EXPECT_TRUE(root.RemoveValue("a:B=c"));
    EXPECT_EQ(root.GetValueCount(), 0U);
}

TEST(PropertyKeyValues, AMissingValueIsAddedOnlyOnDemand)
{
    PropertyCollection root;
    EXPECT_EQ(root.SetValue("n", PropertyData(1), false), nullptr);
    EXPECT_EQ(root.GetValueCount(), 0U);
    EXPECT_FALSE(root.Dirty());
    PropertyValue* const value = root.SetValue("n", PropertyData(1), true);
    EXPECT_TRUE(value->Dirty());
    EXPECT_TRUE(root.Dirty());
    EXPECT_EQ(root.SetValue("N", PropertyData("text"), true), value);
    EXPECT_EQ(value->GetName(), "n");
    EXPECT_EQ(value->GetValueString(), "text");
    EXPECT_EQ(root.GetValueCount(), 1U);
}

TEST(PropertyKeyValues, TheDataMayBelongToTheSameKey)
{
    PropertyCollection root;
    root.SetValue("0", PropertyData("text"), true);
    for (int i = 1; i < 100; ++i) {
        PropertyValue const* const last = root.GetValue(i - 1);
        Quarn::string name;
        name.Format("%d", i);
        EXPECT_EQ(root.SetValue(name, last->GetData(), true)->GetValueString(), "text");
    }
    EXPECT_TRUE(root.RemoveValue(root.GetValue(50)->GetName()));
    EXPECT_EQ(root.GetValueCount(), 99U);
}

TEST(PropertyKeyValues, AddValueReturnsTheValueThatIsThere)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValueInt32("a:n=5", false);
    root.ClearDirty();
    EXPECT_EQ(root.AddValue("a:n"), value);
    EXPECT_EQ(value->GetValueInt32(), 5);
    EXPECT_FALSE(root.Dirty());
}

TEST(PropertyKeyValues, AddValueAddsAnEmptyText)
{
    PropertyCollection root;
    PropertyValue const* const value = root.AddValue("n");
    EXPECT_EQ(value->GetDataType(), PropertyData::TypeString);
    EXPECT_EQ(value->GetData().GetDataSize(), 1);
    EXPECT_EQ(value->GetValueString(), "");
    EXPECT_TRUE(root.AddValue("")->IsDefaultValue());
}

TEST(PropertyKeyValues, AddValueDeliberatelyAddsAnUnknownAddressAsANameHere)
{
    PropertyCollection root;
    PropertyValue* const value = root.AddValue("a:n");
    EXPECT_EQ(value->GetName(), "a:n");
    EXPECT_EQ(root.GetKeyCount(), 0U);
    EXPECT_EQ(root.GetValueCount(), 1U);
    value->SetValue(5);
    EXPECT_EQ(root.AddValue("a:n"), value);
    EXPECT_EQ(value->GetValueString(), "") << "what stands under the name is overwritten";
    EXPECT_EQ(root.GetValueCount(), 1U);
}

TEST(PropertyKeyValues, ASpecificationMakesKeysAndValue)
{
    PropertyCollection root;
    PropertyValue const* const left = root.SetValueInt32("Win:Left=-20", false);
    ASSERT_NE(left, nullptr);
    EXPECT_EQ(left, root.GetSubKey("Win")->GetValue("Left"));
    EXPECT_EQ(left->GetDataType(), PropertyData::TypeInt32);
    EXPECT_EQ(left->GetValueInt32(), -20);
    PropertyValue const* const title = root.SetValueString("Win\\Main:Title= a=b:c ", false);
    ASSERT_NE(title, nullptr);
    EXPECT_EQ(title, root.GetValue("Win\\Main:Title"));
    EXPECT_EQ(title->GetDataType(), PropertyData::TypeString);
    EXPECT_EQ(title->GetValueString(), " a=b:c ");
}

TEST(PropertyKeyValues, TheFlagOfASpecificationDeliberatelyHasNoEffect)
{
    PropertyCollection root;
    EXPECT_NE(root.SetValueInt32("a:n=1", false), nullptr);
    EXPECT_EQ(root.SetValueInt32("a:n=2", true), root.GetValue("a:n"));
    EXPECT_NE(root.SetValueString("b:n=1", false), nullptr);
    EXPECT_NE(root.SetValueString("c:n=1", true), nullptr);
}

TEST(PropertyKeyValues, ASpecificationTakesTheFirstColonAndTheFirstEqualsSignBehindIt)
{
    PropertyCollection root;
    PropertyValue const* value = root.SetValueString("a=b:c:d=e=f", false);
    EXPECT_EQ(value->GetName(), "c:d");
    EXPECT_EQ(value->GetValueString(), "e=f");
    EXPECT_NE(root.GetSubKey("a=b"), nullptr);
    value = root.SetValueString(":=", false);
    EXPECT_EQ(value, root.GetValue(""));
    EXPECT_TRUE(value->IsDefaultValue());
    EXPECT_EQ(value->GetValueString(), "");
}

TEST(PropertyKeyValues, AMalformedSpecificationChangesNothing)
{
    PropertyCollection root;
    for (char const* spec : {"", "Left=5", "Win:Left", "Win=5:Left", "=", ":", "=:"}) {
        EXPECT_EQ(root.SetValueInt32(spec, true), nullptr) << spec;
        EXPECT_EQ(root.SetValueString(spec, true), nullptr) << spec;
    }
    EXPECT_EQ(root.GetKeyCount(), 0U);
    EXPECT_EQ(root.GetValueCount(), 0U);
    EXPECT_FALSE(root.Dirty());
}

TEST(PropertyKeyValues, NumbersOfSpecificationsStopAtTheLimits)
{
    PropertyCollection root;
    EXPECT_EQ(root.SetValueInt32("a:n=99999999999", false)->GetValueInt32(), 2147483647);
    EXPECT_EQ(root.SetValueInt32("a:n= -7x", false)->GetValueInt32(), -7);
    EXPECT_EQ(root.SetValueInt32("a:n=x", false)->GetValueInt32(), 0);
}

TEST(PropertyKeyValues, DefaultsStandForMissingValuesAlone)
{
    unsigned char const bytes[] = {1, 0xab};
    PropertyCollection root;
    root.SetValue("number", PropertyData(7), true);
    root.SetValue("text", PropertyData(" 42x"), true);
    root.SetValue("binary", PropertyData(bytes, 2), true);
    root.SetValue("unknown", PropertyData(), true);
    EXPECT_EQ(root.GetValueInt32("number", 1), 7);
    EXPECT_EQ(root.GetValueInt32("text", 1), 42);
    EXPECT_EQ(root.GetValueInt32("binary", 1), 0);
    EXPECT_EQ(root.GetValueInt32("unknown", 1), 0);
    EXPECT_EQ(root.GetValueInt32("missing", 1), 1);
    EXPECT_EQ(root.GetValueInt32("missing:number", 1), 1);
    EXPECT_EQ(root.GetValueString("number", "d"), "7");
    EXPECT_EQ(root.GetValueString("text", "d"), " 42x");
    EXPECT_EQ(root.GetValueString("binary", "d"), "01ab");
    EXPECT_EQ(root.GetValueString("unknown", "d"), "");
    EXPECT_EQ(root.GetValueString("missing", "d"), "d");
}

TEST(PropertyKeyValues, RemovalKeepsTheOthersInOrder)
{
    PropertyCollection root;
    PropertyKey* const key = root.AddSubKey("k");
    for (char const* name : {"a", "b", "c"}) {
        key->SetValue(name, PropertyData(1), true);
    }
    root.ClearDirty();
    EXPECT_FALSE(key->RemoveValue("x"));
    EXPECT_FALSE(key->RemoveValue("k:a"));
    EXPECT_FALSE(root.Dirty());
    EXPECT_TRUE(key->RemoveValue("A"));
    EXPECT_TRUE(key->Dirty());
    EXPECT_TRUE(root.Dirty());
    ASSERT_EQ(key->GetValueCount(), 2U);
    EXPECT_EQ(key->GetValue(0)->GetName(), "b");
    EXPECT_EQ(key->GetValue(1)->GetName(), "c");
    EXPECT_FALSE(key->GetValue("c")->Dirty());
}

TEST(PropertyKeyValues, AddressesEndAtTheirFirstZeroByteButSetNamesDoNot)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("n", PropertyData(1), true);
    EXPECT_EQ(root.GetValue(Quarn::string("n\0x", 3)), value);
    PropertyValue* const other = root.SetValue(Quarn::string("n\0x", 3), PropertyData(2), true);
    EXPECT_NE(other, value);
    EXPECT_EQ(other->GetName().size(), 3U);
    EXPECT_EQ(root.SetValueString(Quarn::string("k:n=a\0b", 7), false)->GetValueString(), "a");
}

TEST(PropertyKeyValues, ManyColonsAreWalkedInLinearTime)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("n", PropertyData(1), true);
    EXPECT_EQ(root.GetValue(Quarn::string(1000000, ':') + "n"), value);
}

} // namespace
