// The reader against a walk over the XML library's document tree.
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/xml_library.h"

#include "tree_dump.h"
#include "xml_documents.h"
#include "xml_reference.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::detail::ReadResult;
using Quarn::detail::ReadSettings;

class XmlReader : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_library.Started()); }

    Quarn::detail::XmlLibraryUse const m_library;
};

ReadResult Expected(reference::Result result)
{
    switch (result) {
    case reference::Result::Whole:
        return ReadResult::Whole;
    case reference::Result::Partial:
        return ReadResult::Partial;
    case reference::Result::NoKey:
        return ReadResult::NoKey;
    case reference::Result::Refused:
        break;
    }
    return ReadResult::Refused;
}

// Collections that hold something, so that merging and being left alone show.
PropertyCollection Filled()
{
    PropertyCollection collection("Before", "Old");
    collection.SetValue("kept", Quarn::PropertyData("old"), true);
    collection.AddSubKey("A\\B")->SetValue("x", Quarn::PropertyData(7), true);
    return collection;
}

ReadResult Compare(std::string const& document)
{
    PropertyCollection expected = Filled();
    PropertyCollection read = Filled();
    reference::Result const result = reference::Read(document, expected);
    Quarn::detail::ReadProblem problem;
    ReadResult const actual = ReadSettings(document, read, &problem);
    EXPECT_EQ(actual, Expected(result)) << document;
    EXPECT_EQ(actual == ReadResult::Whole, problem.reason.empty()) << document;
    EXPECT_EQ(Dump(read), Dump(expected)) << document;
    return actual;
}

TEST_F(XmlReader, GivesTheResultOfTheWalkForEveryListedDocument)
{
    for (std::string const& document : documents::GoodDocuments) {
        EXPECT_EQ(Compare(document), ReadResult::Whole) << document;
    }
    for (std::string const& document : documents::PartialDocuments) {
        EXPECT_EQ(Compare(document), ReadResult::Partial) << document;
    }
    for (std::string const& document : documents::KeylessDocuments) {
        EXPECT_EQ(Compare(document), ReadResult::NoKey) << document;
    }
    for (std::string const& document : documents::RefusedDocuments) {
        EXPECT_EQ(Compare(document), ReadResult::Refused) << document;
    }
}

TEST_F(XmlReader, GivesTheResultOfTheWalkForGeneratedDocuments)
{
    int counts[4] = {};
    documents::Generator generator(20260101);
    for (int i = 0; i < 4000; ++i) {
        ++counts[static_cast<int>(Compare(generator.Document()))];
        ASSERT_FALSE(HasFailure()) << "document " << i;
    }
    // The generator reaches every result.
    for (int const count : counts) {
        EXPECT_GT(count, 100);
    }
}

TEST_F(XmlReader, GivesTheResultOfTheWalkForDamagedDocuments)
{
    documents::Generator generator(20260102);
    for (int i = 0; i < 2500; ++i) {
        Compare(generator.Damaged(generator.Document()));
        ASSERT_FALSE(HasFailure()) << "document " << i;
    }
}

} // namespace
