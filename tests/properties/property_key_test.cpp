#include "quarn/properties/property_collection.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

TEST(PropertyKey, EveryDelimiterDividesAPath)
{
    PropertyCollection root("root", "");
    PropertyKey* const b = root.AddSubKey("A\\B");
    for (char const* path : {"A\\B", "A/B", "A;B", "A,B", "A\\\\/B", "a/b/", "A/;,\\b;;"}) {
        EXPECT_EQ(root.GetSubKey(path), b) << path;
    }
    EXPECT_EQ(root.GetKeyCount(), 1U);
}

TEST(PropertyKey, ASpecificationMakesKeysAndValue)
{
    PropertyCollection root("root", "");
    PropertyValue* const value = root.SetValueInt32("Win:Left=-20", false);
    ASSERT_NE(value, nullptr);
    EXPECT_EQ(value->GetName(), "Left");
    EXPECT_EQ(root.GetValueInt32("win:left", 0), -20);
    EXPECT_EQ(root.SetValueInt32("Left=5", true), nullptr);
}

} // namespace
