#include "quarn/properties/property_collection.h"

#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

TEST(PropertyValue, ANewValueIsDirtyAndLeavesItsKeyAlone)
{
    PropertyCollection root;
    PropertyValue const value("Size", PropertyData(5), &root);
    EXPECT_TRUE(value.Dirty());
    EXPECT_FALSE(root.Dirty());
    EXPECT_EQ(root.GetValueCount(), 0U);
    EXPECT_EQ(value.GetName(), "Size");
    EXPECT_EQ(value.GetDataType(), PropertyData::TypeInt32);
    EXPECT_EQ(value.GetDatatypeName(), "int32");
    EXPECT_EQ(value.GetValueInt32(), 5);
    EXPECT_EQ(value.GetValueString(), "5");
    EXPECT_EQ(value.GetData(), PropertyData(5));
}

TEST(PropertyValue, AnEmptyNameReadsAsTheDefaultName)
{
    PropertyValue const value("", PropertyData("x"), nullptr);
    EXPECT_EQ(value.GetName(), "DefaultValue");
    EXPECT_TRUE(value.IsDefaultValue());
    EXPECT_TRUE(value == "");
    EXPECT_FALSE(value == "DefaultValue") << "the stored name is compared";
    EXPECT_EQ(PropertyValue::DefaultValueName, "DefaultValue");
}

TEST(PropertyValue, OnlyIsDefaultValueDeliberatelySeesCase)
{
    PropertyValue const value("defaultvalue", PropertyData("x"), nullptr);
    EXPECT_FALSE(value.IsDefaultValue());
    EXPECT_TRUE(value == "DefaultValue");
    EXPECT_TRUE(PropertyValue("DefaultValue", PropertyData(), nullptr).IsDefaultValue());
}

TEST(PropertyValue, ReadsNumbersFromTextAndNumbersAlone)
{
    unsigned char const byte = '7';
    EXPECT_EQ(PropertyValue("n", PropertyData(" 42x"), nullptr).GetValueInt32(), 42);
    EXPECT_EQ(PropertyValue("n", PropertyData(&byte, 1), nullptr).GetValueInt32(), 0);
    EXPECT_EQ(PropertyValue("n", PropertyData(), nullptr).GetValueInt32(), 0);
}

TEST(PropertyValue, SetDataIgnoresEqualData)
{
    PropertyCollection root;
    PropertyValue* const number = root.SetValue("n", PropertyData(5), true);
    root.ClearDirty();
    number->SetData(PropertyData(5));
    EXPECT_FALSE(number->Dirty());
    EXPECT_FALSE(root.Dirty());
    number->SetData(PropertyData(6));
    EXPECT_TRUE(number->Dirty());
    EXPECT_TRUE(root.Dirty());
    EXPECT_EQ(number->GetValueInt32(), 6);

    PropertyValue* const text = root.SetValue("t", PropertyData("abc"), true);
    root.ClearDirty();
    text->SetData(text->GetData());
    EXPECT_FALSE(text->Dirty()) << "data is equal to itself";
}

TEST(PropertyValue, ATextDeliberatelyCountsAsChangedWhenItIsTheSame)
{
    PropertyCollection root;
    PropertyValue* const text = root.SetValue("t", PropertyData("abc"), true);
    root.ClearDirty();
    text->SetData(PropertyData("abc"));
    EXPECT_TRUE(text->Dirty());
    EXPECT_TRUE(root.Dirty());
}

TEST(PropertyValue, SetValueMarksDirtyAlways)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("v", PropertyData(5), true);
    root.ClearDirty();
    value->SetValue(5);
    EXPECT_TRUE(value->Dirty());
    EXPECT_TRUE(root.Dirty());
    root.ClearDirty();
    value->SetValue("text");
    EXPECT_TRUE(value->Dirty());
    EXPECT_TRUE(root.Dirty());
    EXPECT_EQ(value->GetValueString(), "text");
    root.ClearDirty();
    value->SetValue(0);
    EXPECT_EQ(value->GetDataType(), PropertyData::TypeInt32);
    EXPECT_TRUE(value->Dirty());
}

TEST(PropertyValue, ADirtyValueDoesNotMarkItsKeyAgain)
{
    PropertyCollection root;
    PropertyValue value("v", PropertyData(5), &root);
    value.SetDirty();
    EXPECT_FALSE(root.Dirty());
    value.ClearDirty();
    EXPECT_FALSE(value.Dirty());
    value.SetDirty();
    EXPECT_TRUE(root.Dirty());
}

TEST(PropertyValue, AValueWithoutAKeyCanChange)
{
    PropertyValue value("v", PropertyData(5), nullptr);
    value.ClearDirty();
    value.SetValue(6);
    EXPECT_TRUE(value.Dirty());
    EXPECT_EQ(value.GetValueInt32(), 6);
}

TEST(PropertyValue, ACopyDeliberatelyKeepsTheSourcesKey)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValue("v", PropertyData("abc"), true);
    root.ClearDirty();
    PropertyValue copy(*value);
    EXPECT_EQ(copy.GetName(), "v");
    EXPECT_EQ(copy.GetValueString(), "abc");
    EXPECT_FALSE(copy.Dirty());
    EXPECT_NE(copy.GetData().GetDataBinary(), value->GetData().GetDataBinary());
    copy.SetValue("changed");
    EXPECT_TRUE(root.Dirty());
    EXPECT_FALSE(value->Dirty());
    EXPECT_EQ(value->GetValueString(), "abc");
}

TEST(PropertyValue, AssignmentTakesNameDataFlagAndKey)
{
    PropertyCollection first;
    PropertyCollection second;
    PropertyValue* const target = first.SetValue("a", PropertyData(1), true);
    PropertyValue* const source = second.SetValue("b", PropertyData(2), true);
    first.ClearDirty();
    second.ClearDirty();
    *target = *source;
    EXPECT_EQ(first.GetValue("a"), nullptr);
    EXPECT_EQ(first.GetValue("b"), target);
    EXPECT_EQ(target->GetValueInt32(), 2);
    EXPECT_FALSE(target->Dirty());
    target->SetValue(3);
    EXPECT_FALSE(first.Dirty());
    EXPECT_TRUE(second.Dirty());
    EXPECT_EQ(source->GetValueInt32(), 2);

    PropertyValue const& same = *target;
    *target = same;
    EXPECT_EQ(target->GetName(), "b");
    EXPECT_EQ(target->GetValueInt32(), 3);
}

TEST(PropertyValue, TheDestructorIsVirtual)
{
    EXPECT_TRUE(std::has_virtual_destructor_v<PropertyValue>);
    EXPECT_TRUE(std::has_virtual_destructor_v<PropertyKey>);
    EXPECT_TRUE(std::has_virtual_destructor_v<PropertyCollection>);
    EXPECT_TRUE(std::has_virtual_destructor_v<PropertyData>);
}

} // namespace
