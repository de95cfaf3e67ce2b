#include "quarn/properties/property_collection.h"

#include <cstdint>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;

TEST(PropertyKey, ANewKeyIsCleanAndEmpty)
{
    PropertyKey parent("parent", nullptr);
    PropertyKey key("name", &parent);
    EXPECT_EQ(key.GetName(), "name");
    EXPECT_EQ(key.GetParentKey(), &parent);
    EXPECT_EQ(std::as_const(key).GetParentKey(), &parent);
    EXPECT_EQ(key.GetKeyCount(), 0U);
    EXPECT_EQ(key.GetValueCount(), 0U);
    EXPECT_FALSE(key.Dirty());
    EXPECT_EQ(parent.GetKeyCount(), 0U);
    EXPECT_EQ(parent.GetParentKey(), nullptr);
}

TEST(PropertyKey, SetNameDoesNotMarkDirty)
{
    PropertyKey key("old", nullptr);
    key.SetName("new");
    EXPECT_EQ(key.GetName(), "new");
    EXPECT_FALSE(key.Dirty());
    key.SetName(key.GetName());
    EXPECT_EQ(key.GetName(), "new");
}

TEST(PropertyKey, EveryDelimiterDividesAPath)
{
    PropertyCollection root;
    PropertyKey* const b = root.AddSubKey("A\\B");
    for (char const* path : {"A\\B", "A/B", "A;B", "A,B", "A\\\\/B", "a/b/", "A/;,\\b;;"}) {
        EXPECT_EQ(root.GetSubKey(path), b) << path;
        EXPECT_EQ(std::as_const(root).GetSubKey(path), b) << path;
        EXPECT_EQ(root.GetSubKey(Quarn::string(path), false), b) << path;
        EXPECT_TRUE(root.HasSubKey(path)) << path;
        EXPECT_EQ(root.AddSubKey(path), b) << path;
    }
    for (char const* path : {"B", "A:B", "A.B", "AB", "A\\B\\C", "A B"}) {
        EXPECT_EQ(root.GetSubKey(path), nullptr) << path;
        EXPECT_FALSE(root.HasSubKey(path)) << path;
    }
    EXPECT_EQ(root.GetKeyCount(), 1U);
}

TEST(PropertyKey, TheEmptyPathIsTheKeyItself)
{
    PropertyCollection root;
    char empty[] = "";
    EXPECT_EQ(root.GetSubKey(""), &root);
    EXPECT_EQ(root.GetSubKey(nullptr), &root);
    EXPECT_EQ(root.GetSubKey(empty, true), &root);
    EXPECT_EQ(root.GetSubKey(Quarn::string(), true), &root);
    EXPECT_EQ(root.AddSubKey(""), &root);
    EXPECT_TRUE(root.HasSubKey(""));
    EXPECT_FALSE(root.Dirty());
}

TEST(PropertyKey, ALeadingDelimiterAddressesAKeyOfEmptyName)
{
    PropertyCollection root;
    EXPECT_EQ(root.GetSubKey("\\A"), nullptr);
    PropertyKey* const a = root.AddSubKey("\\A");
    ASSERT_EQ(root.GetKeyCount(), 1U);
    EXPECT_EQ(root.GetSubKey(0)->GetName(), "");
    EXPECT_EQ(a->GetParentKey(), root.GetSubKey(0));
    EXPECT_EQ(root.GetSubKey("//A"), a);
    EXPECT_EQ(root.GetSubKey(","), root.GetSubKey(0));
    EXPECT_EQ(root.GetSubKey("A"), nullptr);
}

TEST(PropertyKey, AMissingKeyChangesNothing)
{
    PropertyCollection root;
    root.AddSubKey("A");
    root.ClearDirty();
    EXPECT_EQ(root.GetSubKey("A\\B\\C"), nullptr);
    EXPECT_EQ(root.GetSubKey(Quarn::string("X"), false), nullptr);
    EXPECT_EQ(root.GetKeyCount(), 1U);
    EXPECT_EQ(root.GetSubKey("A")->GetKeyCount(), 0U);
    EXPECT_FALSE(root.Dirty());
}

TEST(PropertyKey, AddSubKeyMakesAllKeysOnTheWay)
{
    PropertyCollection root;
    PropertyKey* const b = root.AddSubKey("a\\b");
    PropertyKey* const a = root.GetSubKey("a");
    EXPECT_EQ(b->GetName(), "b");
    EXPECT_EQ(b->GetParentKey(), a);
    EXPECT_EQ(a->GetParentKey(), &root);
    EXPECT_TRUE(root.Dirty());
    EXPECT_TRUE(a->Dirty());
    EXPECT_FALSE(b->Dirty());
    root.ClearDirty();
    EXPECT_EQ(root.AddSubKey("A/B"), b);
    EXPECT_FALSE(root.Dirty());
    EXPECT_EQ(a->GetName(), "a");
}

TEST(PropertyKey, TheWalkOnACharBufferDeliberatelyWritesZeroBytesBehindTheNames)
{
    PropertyCollection root;
    PropertyKey* const c = root.AddSubKey("a\\b\\c");
    char found[] = "a\\\\b/c";
    EXPECT_EQ(root.GetSubKey(found, false), c);
    EXPECT_EQ(std::string(found, sizeof found), std::string("a\0\\b\0c\0", 7));

    char missing[] = "a\\x/c";
    EXPECT_EQ(root.GetSubKey(missing, false), nullptr);
    EXPECT_EQ(std::string(missing, sizeof missing), std::string("a\0x\0c\0", 6));

    char created[] = "n,m";
    PropertyKey const* const m = root.GetSubKey(created, true);
    EXPECT_EQ(m, root.GetSubKey("n/m"));
    EXPECT_NE(m, nullptr);
}

TEST(PropertyKey, OtherWalksLeaveThePathAlone)
{
    PropertyCollection root;
    Quarn::string const path = "a\\b";
    root.GetSubKey(path, true);
    root.AddSubKey(path.c_str());
    EXPECT_EQ(path, "a\\b");
}

TEST(PropertyKey, PathsEndAtTheirFirstZeroByte)
{
    PropertyCollection root;
    PropertyKey const* const key = root.GetSubKey(Quarn::string("a\0b", 3), true);
    EXPECT_EQ(key->GetName(), "a");
    EXPECT_EQ(root.GetKeyCount(), 1U);
}

TEST(PropertyKey, APathMayBeLongerThanAnyBuffer)
{
    PropertyCollection root;
    for (std::size_t const length : {510U, 511U, 512U, 513U, 100000U}) {
        Quarn::string const name(length, 'x');
        PropertyKey* const key = root.AddSubKey((name + "\\" + name).c_str());
        EXPECT_EQ(key->GetName(), name);
        EXPECT_EQ(root.GetSubKey(name + "/" + name, false), key);
    }
}

TEST(PropertyKey, SubKeysKeepInsertionOrder)
{
    PropertyCollection root;
    for (char const* name : {"z", "a", "M"}) {
        root.AddSubKey(name);
    }
    ASSERT_EQ(root.GetKeyCount(), 3U);
    EXPECT_EQ(root.GetSubKey(0)->GetName(), "z");
    EXPECT_EQ(root.GetSubKey(1)->GetName(), "a");
    EXPECT_EQ(std::as_const(root).GetSubKey(2)->GetName(), "M");
}

TEST(PropertyKey, IndexesMayHaveAnyIntegerType)
{
    PropertyCollection root;
    root.SetValueInt32("a:n=1", false);
    PropertyCollection const& constant = root;
    PropertyKey* const key = root.GetSubKey("a");
    EXPECT_EQ(root.GetSubKey(0), key);
    EXPECT_EQ(root.GetSubKey(0U), key);
    EXPECT_EQ(root.GetSubKey(0L), key);
    EXPECT_EQ(root.GetSubKey(0UL), key);
    EXPECT_EQ(root.GetSubKey(std::uint64_t{0}), key);
    EXPECT_EQ(root.GetSubKey(std::int64_t{0}), key);
    EXPECT_EQ(constant.GetSubKey(0), key);
    EXPECT_EQ(constant.GetSubKey(std::size_t{0}), key);
    EXPECT_EQ(key->GetValue(0), key->GetValue("n"));
    EXPECT_EQ(key->GetValue(0U), key->GetValue("n"));
    EXPECT_EQ(key->GetValue(0UL), key->GetValue("n"));
    EXPECT_EQ(key->GetValue(std::uint64_t{0}), key->GetValue("n"));
    EXPECT_EQ(std::as_const(*key).GetValue(0), key->GetValue("n"));
}

TEST(PropertyKey, AnIndexBeyondTheEndGivesNull)
{
    PropertyCollection root;
    EXPECT_EQ(root.GetSubKey(0), nullptr);
    EXPECT_EQ(root.GetValue(0), nullptr);
    root.SetValueInt32("a:n=1", false);
    EXPECT_EQ(root.GetSubKey(1), nullptr);
    EXPECT_EQ(root.GetSubKey(-1), nullptr);
    EXPECT_EQ(root.GetSubKey(0)->GetValue(UINT64_MAX), nullptr);
}

TEST(PropertyKey, RemovalKeepsTheOthersInOrderAndMarksTheParent)
{
    PropertyCollection root;
    for (char const* name : {"a", "b", "c", "d"}) {
        root.AddSubKey(name)->AddSubKey("below");
    }
    root.ClearDirty();
    EXPECT_TRUE(root.RemoveSubKey("B"));
    EXPECT_TRUE(root.Dirty());
    ASSERT_EQ(root.GetKeyCount(), 3U);
    EXPECT_EQ(root.GetSubKey(1)->GetName(), "c");
    EXPECT_FALSE(root.GetSubKey("c")->Dirty());
    EXPECT_TRUE(root.GetSubKey("d")->Remove());
    EXPECT_EQ(root.GetKeyCount(), 2U);
    EXPECT_EQ(root.GetSubKey("d"), nullptr);
    EXPECT_TRUE(root.RemoveSubKey("c\\below"));
    EXPECT_TRUE(root.GetSubKey("c")->Dirty());
}

TEST(PropertyKey, ARootOrMissingKeyIsNotRemoved)
{
    PropertyCollection root;
    root.AddSubKey("a");
    root.ClearDirty();
    EXPECT_FALSE(root.RemoveSubKey("x"));
    EXPECT_FALSE(root.RemoveSubKey("a\\x"));
    EXPECT_FALSE(root.RemoveSubKey(""));
    EXPECT_FALSE(root.Remove());
    EXPECT_FALSE(root.Dirty());
    EXPECT_EQ(root.GetKeyCount(), 1U);
}

TEST(PropertyKey, AKeyRemovesItselfByTheEmptyPath)
{
    PropertyCollection root;
    EXPECT_TRUE(root.AddSubKey("a")->RemoveSubKey(""));
    EXPECT_EQ(root.GetKeyCount(), 0U);
}

TEST(PropertyKey, AKeyThatItsParentDoesNotListIsNotRemoved)
{
    PropertyCollection root;
    root.AddSubKey("a");
    root.ClearDirty();
    PropertyKey key("a", &root);
    EXPECT_FALSE(key.Remove());
    EXPECT_EQ(root.GetKeyCount(), 1U);
    EXPECT_FALSE(root.Dirty());
}

TEST(PropertyKey, ClearRemovesEverything)
{
    PropertyCollection root("root", "document");
    root.SetValueString("a\\b:v=1", false);
    root.SetValue("w", PropertyData(2), true);
    root.ClearDirty();
    root.Clear();
    EXPECT_EQ(root.GetKeyCount(), 0U);
    EXPECT_EQ(root.GetValueCount(), 0U);
    EXPECT_TRUE(root.Dirty());
    EXPECT_EQ(root.GetName(), "root");
    EXPECT_NE(root.AddSubKey("a"), nullptr);
    EXPECT_NE(root.SetValue("w", PropertyData(2), true), nullptr);
}

TEST(PropertyKey, EqualityIsByNameOrByIdentity)
{
    PropertyKey const key("Name", nullptr);
    PropertyKey const twin("Name", nullptr);
    EXPECT_TRUE(key == "nAME");
    EXPECT_TRUE(key == Quarn::string("NAME"));
    EXPECT_FALSE(key == "Names");
    EXPECT_FALSE(key == Quarn::string("Nam"));
    EXPECT_FALSE(key == static_cast<char const*>(nullptr));
    EXPECT_TRUE(key == &key);
    EXPECT_FALSE(key == &twin);
    EXPECT_FALSE(key == static_cast<PropertyKey const*>(nullptr));
}

TEST(PropertyKey, TheFirstOfEqualNamesIsMeant)
{
    PropertyCollection root;
    PropertyKey* const first = root.AddSubKey("a");
    PropertyKey* const second = root.AddSubKey("b");
    second->SetName("A");
    EXPECT_EQ(root.GetSubKey("A"), first);
    first->SetName("c");
    EXPECT_EQ(root.GetSubKey("a"), second);
    first->SetName("a");
    EXPECT_EQ(root.GetSubKey("A"), first);
    EXPECT_TRUE(root.RemoveSubKey("a"));
    EXPECT_EQ(root.GetSubKey("a"), second);
}

TEST(PropertyKey, ANameMayHoldDelimitersButNoPathFindsIt)
{
    PropertyCollection root;
    root.AddSubKey("a")->SetName("x\\y");
    EXPECT_EQ(root.GetSubKey("x\\y"), nullptr);
    EXPECT_TRUE(*root.GetSubKey(0) == "X\\Y");
}

TEST(PropertyCollection, HoldsNameAndDescription)
{
    PropertyCollection const empty;
    EXPECT_EQ(empty.GetName(), "");
    EXPECT_EQ(empty.GetDocumentDescription(), "");
    EXPECT_EQ(empty.GetParentKey(), nullptr);

    PropertyCollection named("name", "description");
    EXPECT_EQ(named.GetName(), "name");
    EXPECT_EQ(named.GetDocumentDescription(), "description");
    named.SetDocumentDescription("other");
    EXPECT_EQ(named.GetDocumentDescription(), "other");
    EXPECT_FALSE(named.Dirty());
}

} // namespace
