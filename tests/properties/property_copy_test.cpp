#include "quarn/properties/property_collection.h"

#include <memory>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

// Names, flags and contents of a tree, in order.
std::string Describe(PropertyKey const& key)
{
    std::string text = key.GetName() + (key.Dirty() ? "*" : "") + "{";
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        PropertyValue const& value = *key.GetValue(i);
        text += value.GetName() + (value.Dirty() ? "*" : "") + ":" + value.GetDatatypeName() + "=" +
                value.GetValueString() + ";";
    }
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        EXPECT_EQ(key.GetSubKey(i)->GetParentKey(), &key);
        text += Describe(*key.GetSubKey(i));
    }
    return text + "}";
}

// Every value tells this tree alone of its changes.
void ExpectValuesBelongTo(PropertyCollection& root, PropertyCollection const& other, char const* address)
{
    root.ClearDirty();
    bool const otherWasDirty = other.Dirty();
    root.GetValue(address)->SetDirty();
    EXPECT_TRUE(root.Dirty());
    EXPECT_EQ(other.Dirty(), otherWasDirty);
}

class PropertyCopy : public testing::Test
{
protected:
    PropertyCopy() : m_root("root", "document")
    {
        unsigned char const bytes[] = {1, 2, 3};
        m_root.SetValue("top", PropertyData("text"), true);
        m_root.SetValueInt32("a:n=1", false);
        m_root.SetValueString("a\\b:t=x", false);
        m_root.ClearDirty();
        m_root.GetSubKey("a\\b")->SetValue("bin", PropertyData(bytes, 3), true);
        m_root.AddSubKey("c\\d");
    }

    PropertyCollection m_root;
};

TEST_F(PropertyCopy, ACopyIsDeep)
{
    std::string const before = Describe(m_root);
    {
        PropertyCollection copy(m_root);
        EXPECT_EQ(Describe(copy), before);
        EXPECT_EQ(copy.GetDocumentDescription(), "document");
        EXPECT_EQ(copy.GetParentKey(), nullptr);
        EXPECT_NE(copy.GetSubKey("a\\b"), m_root.GetSubKey("a\\b"));
        EXPECT_NE(copy.GetValue("a:n"), m_root.GetValue("a:n"));
        copy.GetValue("a:n")->SetValue(99);
        copy.RemoveSubKey("a\\b");
        copy.SetValue("new", PropertyData(1), true);
        EXPECT_EQ(Describe(m_root), before);
    }
    EXPECT_EQ(Describe(m_root), before);
}

TEST_F(PropertyCopy, TheCopyOutlivesItsSource)
{
    auto source = std::make_unique<PropertyCollection>(m_root);
    PropertyCollection copy(*source);
    source.reset();
    EXPECT_EQ(Describe(copy), Describe(m_root));
    copy.Clear();
}

TEST_F(PropertyCopy, ValuesAndKeysBelongToTheCopy)
{
    PropertyCollection copy(m_root);
    m_root.ClearDirty();
    for (char const* address : {"top", "a:n", "a\\b:t"}) {
        ExpectValuesBelongTo(copy, m_root, address);
    }
    copy.ClearDirty();
    copy.AddSubKey("a\\b\\new");
    EXPECT_TRUE(copy.Dirty());
    EXPECT_FALSE(m_root.Dirty());
}

TEST_F(PropertyCopy, ACopyOfAKeyKeepsTheSourcesParentWhichDoesNotListIt)
{
    m_root.ClearDirty();
    {
        PropertyKey copy(*m_root.GetSubKey("a"));
        EXPECT_EQ(copy.GetParentKey(), &m_root);
        EXPECT_EQ(Describe(copy), Describe(*m_root.GetSubKey("a")));
        EXPECT_FALSE(copy.Remove());
        EXPECT_EQ(m_root.GetKeyCount(), 2U);
        EXPECT_FALSE(m_root.Dirty());
        copy.SetDirty();
        EXPECT_TRUE(m_root.Dirty());
        m_root.ClearDirty();
    }
    EXPECT_EQ(m_root.GetKeyCount(), 2U);
    EXPECT_FALSE(m_root.Dirty()) << "destroying a copy touches no parent";
}

TEST_F(PropertyCopy, ACopyMayOutliveItsParent)
{
    auto parent = std::make_unique<PropertyCollection>(m_root);
    PropertyKey const copy(*parent->GetSubKey("a"));
    parent.reset();
    EXPECT_EQ(copy.GetValueInt32("n", 0), 1);
}

TEST_F(PropertyCopy, AssignmentReplacesEverything)
{
    PropertyCollection target("target", "other");
    target.SetValueInt32("old\\key:n=1", false);
    target = m_root;
    EXPECT_EQ(Describe(target), Describe(m_root));
    EXPECT_EQ(target.GetDocumentDescription(), "document");
    EXPECT_FALSE(target.HasSubKey("old"));
    for (char const* address : {"top", "a:n", "a\\b:t"}) {
        ExpectValuesBelongTo(target, m_root, address);
    }
    PropertyCollection const& same = target;
    target = same;
    EXPECT_EQ(target.GetKeyCount(), m_root.GetKeyCount());
}

TEST_F(PropertyCopy, ACollectionAssignedAsAKeyKeepsItsDescription)
{
    PropertyCollection target("target", "other");
    static_cast<PropertyKey&>(target) = m_root;
    EXPECT_EQ(target.GetName(), "root");
    EXPECT_EQ(target.GetDocumentDescription(), "other");
}

TEST_F(PropertyCopy, AnAssignedSubKeyKeepsItsPlaceUnderItsNewName)
{
    m_root.AddSubKey("last");
    PropertyKey* const a = m_root.GetSubKey("a");
    *a = *m_root.GetSubKey("c");
    EXPECT_EQ(m_root.GetSubKey(0), a);
    EXPECT_EQ(a->GetName(), "c");
    EXPECT_EQ(m_root.GetSubKey("c"), a) << "the first of equal names";
    EXPECT_EQ(m_root.GetSubKey("a"), nullptr);
    EXPECT_EQ(a->GetSubKey("d")->GetParentKey(), a);
    EXPECT_EQ(a->GetParentKey(), &m_root);
    EXPECT_TRUE(a->Remove());
    EXPECT_EQ(m_root.GetKeyCount(), 2U);
}

TEST_F(PropertyCopy, AKeyMayBeAssignedOneOfItsOwnDescendants)
{
    std::string const below = Describe(*m_root.GetSubKey("a\\b"));
    m_root.GetSubKey("a\\b")->ClearDirty();
    static_cast<PropertyKey&>(m_root) = *m_root.GetSubKey("a\\b");
    EXPECT_EQ(m_root.GetName(), "b");
    EXPECT_EQ(m_root.GetKeyCount(), 0U);
    EXPECT_EQ(m_root.GetValueString("t", ""), "x");
    EXPECT_EQ(m_root.GetParentKey(), nullptr) << "the source's parent is gone";
    m_root.GetValue("t")->SetValue("y");
    EXPECT_TRUE(m_root.Dirty());
}

TEST_F(PropertyCopy, AKeyMayBeAssignedItsOwnChildOrACopyOfADescendant)
{
    PropertyKey* const a = m_root.GetSubKey("a");
    *a = *a->GetSubKey("b");
    EXPECT_EQ(a->GetName(), "b");
    EXPECT_EQ(a->GetParentKey(), &m_root);
    EXPECT_EQ(m_root.GetSubKey("b"), a);

    a->AddSubKey("x\\y");
    PropertyKey const copy(*a->GetSubKey("x\\y")); // its parent is x
    *a = copy;
    EXPECT_EQ(a->GetParentKey(), &m_root);
    EXPECT_EQ(a->GetName(), "y");
    a->SetDirty();
}

TEST_F(PropertyCopy, AKeyMayBeAssignedOneOfItsAncestors)
{
    PropertyKey* const b = m_root.GetSubKey("a\\b");
    std::string const whole = Describe(m_root);
    *b = m_root;
    EXPECT_EQ(Describe(*b), whole);
    EXPECT_EQ(b->GetParentKey(), nullptr) << "the parent link is the source's";
    EXPECT_EQ(m_root.GetSubKey("a\\root"), b);
    EXPECT_TRUE(m_root.HasSubKey("a\\root\\a\\b"));
    EXPECT_FALSE(b->Remove());
    EXPECT_TRUE(m_root.RemoveSubKey("a"));
}

} // namespace
