// Long lists and deep trees: the same results as in small ones, without a deep stack.
#include "quarn/properties/property_collection.h"

#include <algorithm>
#include <random>
#include <vector>

#include <gtest/gtest.h>
#include <stdio.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

constexpr int many = 100000;

Quarn::string Name(char const* format, int number)
{
    char text[32];
    return {text, static_cast<std::size_t>(::snprintf(text, sizeof text, format, number))};
}

std::vector<int> Shuffled(int count)
{
    std::vector<int> numbers(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        numbers[static_cast<std::size_t>(i)] = i;
    }
    std::shuffle(numbers.begin(), numbers.end(), std::mt19937(3));
    return numbers;
}

TEST(LongList, HoldsAndFindsManyValues)
{
    PropertyCollection root;
    for (int i = 0; i < many; ++i) {
        root.SetValue(Name("Value%d", i), PropertyData(i), true);
    }
    ASSERT_EQ(root.GetValueCount(), static_cast<unsigned>(many));
    for (int i = 0; i < many; ++i) {
        ASSERT_EQ(root.GetValueInt32(Name("vALUE%d", i), -1), i);
        ASSERT_EQ(root.GetValue(i)->GetValueInt32(), i);
    }
    EXPECT_EQ(root.GetValue("Value100000"), nullptr);
    EXPECT_EQ(root.GetValue("Value"), nullptr);
}

TEST(LongList, HoldsAndFindsManySubKeys)
{
    PropertyCollection root;
    for (int i = 0; i < many; ++i) {
        root.AddSubKey(Name("Key%d", i).c_str());
    }
    ASSERT_EQ(root.GetKeyCount(), static_cast<unsigned>(many));
    for (int i = 0; i < many; ++i) {
        ASSERT_EQ(root.GetSubKey(Name("KEY%d", i).c_str()), root.GetSubKey(i));
    }
    EXPECT_EQ(root.GetSubKey("Key100000"), nullptr);
}

TEST(LongList, StaysRightWhenValuesGoInAnyOrder)
{
    PropertyCollection root;
    for (int i = 0; i < many / 4; ++i) {
        root.SetValue(Name("v%d", i), PropertyData(i), true);
    }
    std::vector<int> const order = Shuffled(many / 4);
    for (std::size_t i = 0; i < order.size(); ++i) {
        ASSERT_TRUE(root.RemoveValue(Name("V%d", order[i])));
        ASSERT_EQ(root.GetValue(Name("v%d", order[i])), nullptr);
        if (i + 1 < order.size()) {
            int const left = order[order.size() - 1 - (i % (order.size() - 1 - i))];
            ASSERT_EQ(root.GetValueInt32(Name("v%d", left), -1), left);
        }
    }
    EXPECT_EQ(root.GetValueCount(), 0U);
}

TEST(LongList, IsEmptiedFromTheFront)
{
    PropertyCollection root;
    for (int i = 0; i < many / 4; ++i) {
        root.SetValue(Name("v%d", i), PropertyData(i), true);
    }
    for (int i = 0; i < many / 4; ++i) {
        ASSERT_EQ(root.GetValue(0)->GetValueInt32(), i);
        ASSERT_TRUE(root.RemoveValue(root.GetValue(0)->GetName()));
    }
    EXPECT_EQ(root.GetValueCount(), 0U);
}

TEST(LongList, FindsTheFirstOfEqualNamesThroughEveryRename)
{
    constexpr int count = 2000;
    PropertyCollection root;
    for (int i = 0; i < count; ++i) {
        root.AddSubKey(Name("k%d", i).c_str());
    }
    int first = count;
    for (int const i : Shuffled(count)) {
        root.GetSubKey(i)->SetName(i % 2 == 0 ? "same" : "SAME");
        first = std::min(first, i);
        ASSERT_EQ(root.GetSubKey("Same"), root.GetSubKey(first));
        ASSERT_EQ(root.GetSubKey(Name("k%d", i).c_str()), nullptr);
    }
    for (int i = 0; i < count; ++i) {
        PropertyKey* const expected = root.GetSubKey(0);
        ASSERT_EQ(root.GetSubKey("same"), expected);
        if (i % 3 == 0) {
            expected->SetName(Name("n%d", i));
            ASSERT_TRUE(root.RemoveSubKey(Name("N%d", i)));
        } else {
            ASSERT_TRUE(root.RemoveSubKey("same"));
        }
    }
    EXPECT_EQ(root.GetKeyCount(), 0U);
}

TEST(LongList, FollowsAssignmentThroughHandedOutPointers)
{
    constexpr int count = 1000;
    PropertyCollection root;
    for (int i = 0; i < count; ++i) {
        root.SetValue(Name("v%d", i), PropertyData(i), true);
    }
    *root.GetValue(700) = PropertyValue("v300", PropertyData(-700), &root);
    EXPECT_EQ(root.GetValueInt32("v300", 0), 300);
    EXPECT_EQ(root.GetValue("v700"), nullptr);
    *root.GetValue(300) = *root.GetValue(999);
    EXPECT_EQ(root.GetValue("v300"), root.GetValue(700));
    EXPECT_EQ(root.GetValue("v999"), root.GetValue(300));
    EXPECT_TRUE(root.RemoveValue("v999"));
    EXPECT_EQ(root.GetValue("v999"), root.GetValue(998));
    EXPECT_EQ(root.GetValueInt32("v999", 0), 999);
}

TEST(LongList, IsCopiedAndAssigned)
{
    PropertyCollection root;
    for (int i = 0; i < 5000; ++i) {
        root.SetValue(Name("v%d", i), PropertyData(Name("text %d", i)), true);
        root.AddSubKey(Name("k%d", i).c_str());
    }
    PropertyCollection copy(root);
    PropertyCollection assigned;
    assigned = root;
    root.Clear();
    for (int i = 0; i < 5000; ++i) {
        ASSERT_EQ(copy.GetValueString(Name("V%d", i), ""), Name("text %d", i));
        ASSERT_EQ(assigned.GetValue(Name("V%d", i)), assigned.GetValue(i));
        ASSERT_EQ(assigned.GetSubKey(Name("K%d", i).c_str()), assigned.GetSubKey(i));
    }
}

Quarn::string DeepPath(int levels)
{
    Quarn::string path;
    for (int i = 0; i < levels; ++i) {
        path.append("a\\");
    }
    return path;
}

#if defined(__SANITIZE_ADDRESS__) // whose frames are larger, and whose runs are slower
constexpr int DeepLevel = 250000;
#else
constexpr int DeepLevel = 1000000;
#endif

TEST(DeepTree, IsMadeAndFreedWithoutADeepStack)
{
    Quarn::string const path = DeepPath(DeepLevel);
    PropertyCollection root;
    PropertyKey* const end = root.AddSubKey(path.c_str());
    EXPECT_EQ(root.GetSubKey(path.c_str()), end);
    EXPECT_EQ(root.GetSubKey((path + "a").c_str()), nullptr);
    EXPECT_TRUE(root.RemoveSubKey("a\\a"));
    EXPECT_TRUE(root.HasSubKey("a"));
    EXPECT_FALSE(root.HasSubKey("a\\a"));
}

TEST(DeepTree, IsCopiedAssignedCleanedAndClearedWithoutADeepStack)
{
    Quarn::string const path = DeepPath(DeepLevel / 5);
    PropertyCollection root;
    PropertyKey const* const end = root.AddSubKey(path.c_str());
    PropertyCollection copy(root);
    PropertyKey* const copiedEnd = copy.GetSubKey(path.c_str());
    ASSERT_NE(copiedEnd, nullptr);
    EXPECT_NE(copiedEnd, end);
    copy.ClearDirty();
    EXPECT_FALSE(copiedEnd->GetParentKey()->Dirty());
    copiedEnd->SetDirty();
    EXPECT_TRUE(copy.Dirty());

    *root.GetSubKey("a\\a") = *end->GetParentKey();
    EXPECT_EQ(root.GetSubKey("a\\a")->GetKeyCount(), 1U);
    EXPECT_FALSE(root.HasSubKey("a\\a\\a\\a"));
    copy.Clear();
    EXPECT_EQ(copy.GetKeyCount(), 0U);
}

TEST(DeepTree, ManyBranchesAreFreedWithoutADeepStack)
{
    PropertyCollection root;
    for (int i = 0; i < 200; ++i) {
        Quarn::string path = Name("branch%d", i);
        for (int level = 0; level < 500; ++level) {
            path.append("\\x");
        }
        root.AddSubKey(path.c_str())->SetValue("v", PropertyData("text"), true);
    }
    PropertyCollection const copy(root);
    EXPECT_EQ(copy.GetKeyCount(), 200U);
    root.Clear();
    EXPECT_TRUE(copy.HasSubKey("BRANCH199\\x\\x"));
}

} // namespace
