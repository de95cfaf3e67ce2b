#include "quarn/properties/property_collection.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

// A root with key "parent" with key "node", which has a sub-key "child" and the values "number" and "text".
// The action gets the node of the clean tree; the row says what is dirty afterwards.
struct DirtyRule
{
    char const* name;
    void (*action)(PropertyKey& node);
    bool node;
    bool parent;
    bool root;
};

PropertyValue& Number(PropertyKey& node)
{
    return *node.GetValue("number");
}

DirtyRule const rules[] = {
    // Changes of the lists.
    {"AddSubKeyOfANewKey", [](PropertyKey& k) { k.AddSubKey("new"); }, true, true, true},
    {"AddSubKeyOfAnOldKey", [](PropertyKey& k) { k.AddSubKey("CHILD"); }, false, false, false},
    {"AddSubKeyBelowAChild", [](PropertyKey& k) { k.AddSubKey("child/x/y"); }, true, true, true},
    {"RemoveSubKey", [](PropertyKey& k) { k.RemoveSubKey("child"); }, true, true, true},
    {"RemoveChild", [](PropertyKey& k) { k.GetSubKey(0)->Remove(); }, true, true, true},
    {"RemoveSubKeyOfNone", [](PropertyKey& k) { k.RemoveSubKey("none"); }, false, false, false},
    {"SetNewValue", [](PropertyKey& k) { k.SetValue("new", 1, true); }, true, true, true},
    {"SetNewValueWithoutCreate", [](PropertyKey& k) { k.SetValue("new", 1, false); }, false, false, false},
    {"AddNewValue", [](PropertyKey& k) { k.AddValue("new"); }, true, true, true},
    {"AddOldValue", [](PropertyKey& k) { k.AddValue("text"); }, false, false, false},
    {"RemoveValue", [](PropertyKey& k) { k.RemoveValue("text"); }, true, true, true},
    {"RemoveValueOfNone", [](PropertyKey& k) { k.RemoveValue("none"); }, false, false, false},
    {"Clear", [](PropertyKey& k) { k.Clear(); }, true, true, true},
    // Changes of values.
    {"SetEqualNumber", [](PropertyKey& k) { k.SetValue("number", 5, true); }, false, false, false},
    {"SetOtherNumber", [](PropertyKey& k) { k.SetValue("number", 6, false); }, true, true, true},
    {"SetEqualText", [](PropertyKey& k) { k.SetValue("text", "abc", true); }, true, true, true},
    {"SetNumberToText", [](PropertyKey& k) { k.SetValue("number", "5", true); }, true, true, true},
    {"ValueSetEqualNumber", [](PropertyKey& k) { Number(k).SetValue(5); }, true, true, true},
    {"ValueSetText", [](PropertyKey& k) { Number(k).SetValue("5"); }, true, true, true},
    {"ValueSetEqualData", [](PropertyKey& k) { Number(k).SetData(5); }, false, false, false},
    {"ValueSetDirty", [](PropertyKey& k) { Number(k).SetDirty(); }, true, true, true},
    {"SpecOfEqualNumber", [](PropertyKey& k) { k.SetValueInt32(":number=5", true); }, false, false, false},
    {"SpecOfOtherNumber", [](PropertyKey& k) { k.SetValueInt32(":number=6", true); }, true, true, true},
    {"SpecOfEqualText", [](PropertyKey& k) { k.SetValueString(":text=abc", true); }, true, true, true},
    {"MalformedSpec", [](PropertyKey& k) { k.SetValueString("text=abc", true); }, false, false, false},
    // The flags themselves.
    {"SetDirty", [](PropertyKey& k) { k.SetDirty(); }, true, true, true},
    {"SetDirtyOfAChild", [](PropertyKey& k) { k.GetSubKey(0)->SetDirty(); }, true, true, true},
    {"SetDirtyOfTheParent", [](PropertyKey& k) { k.GetParentKey()->SetDirty(); }, false, true, true},
    {"ClearDirty",
     [](PropertyKey& k) {
         k.SetDirty();
         k.ClearDirty();
     },
     false, true, true},
    {"ClearDirtyOfTheParent",
     [](PropertyKey& k) {
         k.SetDirty();
         k.GetParentKey()->ClearDirty();
     },
     false, false, true},
    {"ClearDirtyOfACleanParent", [](PropertyKey& k) { k.GetParentKey()->ClearDirty(); }, false, false, false},
    // What is no change.
    {"SetName", [](PropertyKey& k) { k.SetName("other"); }, false, false, false},
    {"LookUps",
     [](PropertyKey& k) {
         k.GetSubKey("none");
         k.GetValue("child:none");
     },
     false, false, false},
    {"ValueAssignment", [](PropertyKey& k) { Number(k) = *k.GetValue("text"); }, false, false, false},
};

class DirtyRules : public testing::TestWithParam<DirtyRule>
{};

TEST_P(DirtyRules, MarkNodeParentAndRoot)
{
    PropertyCollection root;
    PropertyKey* const parent = root.AddSubKey("parent");
    PropertyKey* const node = parent->AddSubKey("node");
    PropertyKey* const sibling = parent->AddSubKey("sibling");
    node->AddSubKey("child");
    node->SetValue("number", PropertyData(5), true);
    node->SetValue("text", PropertyData("abc"), true);
    root.ClearDirty();

    GetParam().action(*node);
    EXPECT_EQ(node->Dirty(), GetParam().node);
    EXPECT_EQ(parent->Dirty(), GetParam().parent);
    EXPECT_EQ(root.Dirty(), GetParam().root);
    EXPECT_FALSE(sibling->Dirty());
}

INSTANTIATE_TEST_SUITE_P(Table, DirtyRules, testing::ValuesIn(rules),
                         [](auto const& row) { return row.param.name; });

TEST(Dirty, ClearMarksAnEmptyCleanKeyToo)
{
    PropertyCollection root;
    PropertyKey* const key = root.AddSubKey("a");
    root.ClearDirty();
    key->Clear();
    EXPECT_TRUE(key->Dirty());
    EXPECT_TRUE(root.Dirty());
}

TEST(Dirty, ANewValueIsDirtyAndANewKeyIsClean)
{
    PropertyCollection root;
    EXPECT_TRUE(root.SetValue("v", PropertyData(1), true)->Dirty());
    EXPECT_FALSE(root.AddSubKey("k")->Dirty());
}

TEST(Dirty, AnEqualNumberLeavesAllFlagsClean)
{
    PropertyCollection root;
    PropertyValue const* const value = root.SetValueInt32("a\\b:n=5", false);
    root.ClearDirty();
    root.SetValueInt32("a\\b:n=5", false);
    EXPECT_FALSE(value->Dirty());
    EXPECT_FALSE(root.GetSubKey("a\\b")->Dirty());
    EXPECT_FALSE(root.Dirty());
}

TEST(Dirty, MarkingStopsAtTheFirstDirtyKey)
{
    PropertyCollection root;
    PropertyKey outside("outside", &root);
    outside.SetDirty();
    EXPECT_TRUE(root.Dirty());
    root.ClearDirty(); // does not reach the key outside the tree, which stays dirty
    PropertyKey below("below", &outside);
    below.SetDirty();
    EXPECT_TRUE(below.Dirty());
    EXPECT_FALSE(root.Dirty());
}

TEST(Dirty, ClearDirtyDeliberatelyDoesNotVisitACleanKey)
{
    PropertyCollection root;
    PropertyValue* const value = root.SetValueInt32("a\\b:n=5", false);
    // A dirty value whose assignment said nothing to its key.
    root.ClearDirty();
    *value = PropertyValue("n", PropertyData(6), root.GetSubKey("a\\b"));
    EXPECT_TRUE(value->Dirty());
    root.ClearDirty();
    EXPECT_TRUE(value->Dirty());
    root.GetSubKey("a\\b")->SetDirty();
    root.ClearDirty();
    EXPECT_FALSE(value->Dirty());
}

TEST(Dirty, ClearDirtyOfTheRootLeavesEverythingClean)
{
    PropertyCollection root;
    for (char const* spec : {"a:n=1", "a\\b:n=2", "c\\d\\e:n=3", ":n=4"}) {
        root.SetValueInt32(spec, false);
    }
    root.ClearDirty();
    for (char const* path : {"", "a", "a\\b", "c", "c\\d", "c\\d\\e"}) {
        PropertyKey const* const key = root.GetSubKey(path);
        EXPECT_FALSE(key->Dirty()) << path;
        for (std::uint64_t i = 0; i < key->GetValueCount(); ++i) {
            EXPECT_FALSE(key->GetValue(i)->Dirty()) << path;
        }
    }
}

TEST(Dirty, AKeyOutsideTheTreeMarksItsParent)
{
    PropertyCollection root;
    PropertyKey key("k", &root);
    key.AddSubKey("x");
    EXPECT_TRUE(root.Dirty());
}

} // namespace
