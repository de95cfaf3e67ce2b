#include "quarn/properties/win32/xml_persist.h"

#include "tests/platform/process_text.h"
#include "tests/platform/scratch_folder.h"
#include "tree_dump.h"

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::Win32::XMLPropPersist;

std::string Golden(std::string const& name)
{
    return ContentOf(QUARN_TEST_DATA "/xml/" + name);
}

PropertyCollection Holvek()
{
    PropertyCollection collection("Holvek", "Quarn_Properties");
    collection.SetValue("LastUser", PropertyData("anna"), true);
    collection.SetValue("", PropertyData("default"), true);
    PropertyKey& common = *collection.AddSubKey("Common");
    common.SetValue("Port", PropertyData(4001), true);
    common.SetValue("Offset", PropertyData(-12), true);
    common.SetValue("Key", PropertyData::Create("binary", "0aff"), true);
    common.SetValue("Nothing", PropertyData(), true);
    common.AddSubKey("Empty");
    collection.AddSubKey("Window");
    return collection;
}

// The files in tests/data are written by hand and the same for all systems.
void ExpectGolden(PropertyCollection const& collection, std::string const& name)
{
    ScratchFolder const scratch;
    XMLPropPersist const file(scratch / name);
    ASSERT_TRUE(file.Persist(&collection));
    EXPECT_EQ(ContentOf(scratch / name), Golden(name));

    PropertyCollection loaded;
    ASSERT_TRUE(XMLPropPersist(Quarn::string(QUARN_TEST_DATA "/xml/" + name)).Populate(&loaded));
    EXPECT_EQ(Dump(loaded), Dump(collection));
    ASSERT_TRUE(file.Persist(&loaded));
    EXPECT_EQ(ContentOf(scratch / name), Golden(name));
}

// Populates a collection from the text of a document.
bool Load(std::string const& document, PropertyCollection& collection)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", document);
    return XMLPropPersist(scratch / "settings.xml").Populate(&collection);
}

TEST(XmlPersist, AnEmptyCollectionIsOneEmptyKeyInTheRoot)
{
    ExpectGolden(PropertyCollection("Holvek", "Quarn_Properties"), "empty.xml");
}

TEST(XmlPersist, KeysValuesAndTypesHaveTheDocumentedLayout)
{
    ExpectGolden(Holvek(), "holvek.xml");
}

TEST(XmlPersist, MarkupAndLineBreaksAreEscaped)
{
    PropertyCollection collection("a&b<c>d\"e'f", "Quarn_Properties");
    collection.SetValue("a&b<c>d\"e'f\tg\nh\ri", PropertyData("a&b<c>d\"e'f\tg\nh\ri]]>j"), true);
    collection.SetValue("Empty", PropertyData(""), true);
    collection.SetValue("Blanks", PropertyData("  "), true);
    collection.SetValue("Break", PropertyData("\n"), true);
    collection.SetValue("Indent", PropertyData("\n    "), true);
    collection.AddSubKey("After");
    ExpectGolden(collection, "escapes.xml");
}

TEST(XmlPersist, LettersOfTheCodePageAreUtf8InTheFile)
{
    PropertyCollection collection(ProcessText(u"Stra\u00DFe"), "Quarn_Properties");
    collection.SetValue(ProcessText(u"Gr\u00F6\u00DFe"), PropertyData(ProcessText(u"10 \u20AC, 20 \u00B0C")),
                        true);
    ExpectGolden(collection, "letters.xml");
}

TEST(XmlPersist, TheEmptyNameIsWrittenAsDefaultValueAndReadBackAsTheDefault)
{
    PropertyCollection loaded;
    ASSERT_TRUE(Load(Golden("holvek.xml"), loaded));
    ASSERT_NE(loaded.GetValue(""), nullptr);
    EXPECT_TRUE(loaded.GetValue("")->IsDefaultValue());
    EXPECT_EQ(loaded.GetValueString("", "missing"), "default");
}

TEST(XmlPersist, TypesComeBack)
{
    PropertyCollection loaded;
    ASSERT_TRUE(Load(Golden("holvek.xml"), loaded));
    EXPECT_EQ(loaded.GetValueInt32("Common:Port", 0), 4001);
    EXPECT_EQ(loaded.GetValueInt32("Common:Offset", 0), -12);
    EXPECT_EQ(loaded.GetValueString("Common:Key", ""), "0aff");
    EXPECT_EQ(loaded.GetValue("Common:Key")->GetDataType(), PropertyData::TypeBinary);
    EXPECT_EQ(loaded.GetValue("Common:Nothing")->GetDataType(), PropertyData::TypeUnknown);
}

TEST(XmlPersist, AValueWithoutTypeEndsTheReadingOfItsKeyButPopulateIsTrue)
{
    PropertyCollection loaded;
    EXPECT_TRUE(Load("<d><Key Name='n'><Value Name='a' Type='string'>1</Value><Value Name='b'>2</Value>"
                     "<Value Name='c' Type='string'>3</Value></Key></d>",
                     loaded));
    EXPECT_EQ(loaded.GetValueCount(), 1U);
    EXPECT_EQ(loaded.GetValueString("a", ""), "1");
}

TEST(XmlPersist, TheEndOfAnInnerKeysReadingEndsThatOfAllOuterKeys)
{
    PropertyCollection loaded;
    EXPECT_TRUE(Load("<d><Key Name='n'><Key Name='k'><Value Name='a' Type='int32'>1</Value><x/></Key>"
                     "<Value Name='b' Type='int32'>2</Value></Key></d>",
                     loaded));
    EXPECT_TRUE(loaded.HasValue("k:a"));
    EXPECT_FALSE(loaded.HasValue("b"));
}

TEST(XmlPersist, AnUnknownElementIsSkippedOnlyWhenItHasAName)
{
    PropertyCollection named;
    EXPECT_TRUE(
        Load("<d><Key Name='n'><Comment Name='c'>x</Comment><Value Name='a' Type='int32'>1</Value></Key></d>",
             named));
    EXPECT_TRUE(named.HasValue("a"));
    PropertyCollection unnamed;
    EXPECT_TRUE(Load("<d><Key Name='n'><Comment>x</Comment><Value Name='a' Type='int32'>1</Value></Key></d>",
                     unnamed));
    EXPECT_FALSE(unnamed.HasValue("a"));
}

TEST(XmlPersist, ACommentBesideTheRootRejectsTheFile)
{
    for (char const* const document :
         {"<!-- c --><d><Key Name='n'/></d>", "<d><Key Name='n'/></d><!-- c -->"}) {
        PropertyCollection collection("kept", "kept");
        EXPECT_FALSE(Load(document, collection)) << document;
        EXPECT_EQ(Dump(collection), Dump(PropertyCollection("kept", "kept")));
    }
}

TEST(XmlPersist, TheRootElementsNameBecomesTheDescription)
{
    PropertyCollection collection("n", "Quarn_Properties");
    EXPECT_TRUE(Load("<Settings><Key Name='Root'/></Settings>", collection));
    EXPECT_EQ(collection.GetDocumentDescription(), "Settings");
    EXPECT_EQ(collection.GetName(), "Root");
}

TEST(XmlPersist, TheRootsFirstElementIsTheKeyWhateverItsNameAndTheRestIsIgnored)
{
    PropertyCollection collection;
    EXPECT_TRUE(Load("<d>text<Any Name='n'><Value Name='a' Type='int32'>1</Value></Any>"
                     "<Key Name='m'><Value Name='b' Type='int32'>2</Value></Key></d>",
                     collection));
    EXPECT_EQ(collection.GetName(), "n");
    EXPECT_TRUE(collection.HasValue("a"));
    EXPECT_FALSE(collection.HasValue("b"));
}

TEST(XmlPersist, ARootWithoutAKeyIsFalseAndLeavesTheDescriptionAlone)
{
    for (char const* const document :
         {"<Other/>", "<Other><Key/></Other>", "<Other><!-- c --><Key Name='n'/></Other>"}) {
        PropertyCollection collection("kept", "Quarn_Properties");
        EXPECT_FALSE(Load(document, collection)) << document;
        // What the walk has read up to there, deliberately.
        EXPECT_EQ(Dump(collection), Dump(PropertyCollection("kept", "Other")));
    }
}

TEST(XmlPersist, ReadingAddsMergesAndOverwrites)
{
    PropertyCollection collection("n", "d");
    collection.SetValue("kept", PropertyData(1), true);
    collection.SetValue("changed", PropertyData(2), true);
    collection.AddSubKey("Keys")->SetValue("kept", PropertyData(3), true);
    collection.ClearDirty();
    EXPECT_TRUE(Load("<d><Key Name='n'><Value Name='CHANGED' Type='int32'>4</Value>"
                     "<Key Name='KEYS'><Value Name='new' Type='int32'>5</Value></Key></Key></d>",
                     collection));
    EXPECT_EQ(collection.GetValueInt32("kept", 0), 1);
    EXPECT_EQ(collection.GetValueInt32("changed", 0), 4);
    EXPECT_EQ(collection.GetValueInt32("Keys:kept", 0), 3);
    EXPECT_EQ(collection.GetValueInt32("Keys:new", 0), 5);
    EXPECT_EQ(collection.GetKeyCount(), 1U);
    EXPECT_TRUE(collection.Dirty());
}

TEST(XmlPersist, KeyNamesArePaths)
{
    PropertyCollection collection("n", "d");
    collection.AddSubKey("plain")->SetName("a\\b/c;d,e");
    collection.AddSubKey("empty")->SetName("");
    collection.GetSubKey(1)->SetValue("merged", PropertyData(1), true);
    collection.AddSubKey("K")->SetValue("1", PropertyData(1), true);
    collection.AddSubKey("other")->SetName("k");
    collection.GetSubKey(3)->SetValue("2", PropertyData(2), true);
    ScratchFolder const scratch;
    XMLPropPersist const file(scratch / "settings.xml");
    ASSERT_TRUE(file.Persist(&collection));
    PropertyCollection loaded;
    ASSERT_TRUE(file.Populate(&loaded));
    EXPECT_TRUE(loaded.HasSubKey("a\\b\\c\\d\\e"));
    EXPECT_TRUE(loaded.HasValue("merged"));
    EXPECT_EQ(loaded.GetKeyCount(), 2U);
    EXPECT_EQ(loaded.GetSubKey("K")->GetValueCount(), 2U);
}

TEST(XmlPersist, SavingLeavesTheDirtyFlags)
{
    ScratchFolder const scratch;
    PropertyCollection collection = Holvek();
    ASSERT_TRUE(collection.Dirty());
    EXPECT_TRUE(XMLPropPersist(scratch / "a.xml").Persist(&collection));
    EXPECT_TRUE(collection.Dirty());
}

TEST(XmlPersist, ExistsTellsOfFilesAndFolders)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "file", "x");
    EXPECT_TRUE(XMLPropPersist(scratch / "file").Exists());
    EXPECT_TRUE(XMLPropPersist(scratch.Path()).Exists());
    EXPECT_FALSE(XMLPropPersist(scratch / "missing").Exists());
    EXPECT_FALSE(XMLPropPersist("").Exists());
}

TEST(XmlPersist, MissingFilesFoldersAndEmptyPathsAreFalse)
{
    ScratchFolder const scratch;
    PropertyCollection collection = Holvek();
    for (std::string const& path :
         {scratch / "missing", scratch / "missing/file", scratch.Path(), std::string()}) {
        EXPECT_FALSE(XMLPropPersist(path).Populate(&collection)) << path;
    }
    for (std::string const& path : {scratch / "missing/file", scratch.Path(), std::string()}) {
        EXPECT_FALSE(XMLPropPersist(path).Persist(&collection)) << path;
    }
    EXPECT_TRUE(scratch.Names().empty());
    EXPECT_EQ(Dump(collection), Dump(Holvek()));
}

TEST(XmlPersist, NullIsFalse)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "a.xml", Golden("holvek.xml"));
    EXPECT_FALSE(XMLPropPersist(scratch / "a.xml").Populate(nullptr));
    EXPECT_FALSE(XMLPropPersist(scratch / "a.xml").Persist(nullptr));
    EXPECT_EQ(ContentOf(scratch / "a.xml"), Golden("holvek.xml"));
}

TEST(XmlPersist, RemoveDeliberatelyDoesNothing)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "a.xml", "x");
    EXPECT_FALSE(XMLPropPersist(scratch / "a.xml").Remove());
    EXPECT_EQ(ContentOf(scratch / "a.xml"), "x");
}

TEST(XmlPersist, CopiesServeTheSamePath)
{
    ScratchFolder const scratch;
    PropertyCollection const collection = Holvek();
    XMLPropPersist const first(scratch / "a.xml");
    XMLPropPersist second(first);
    XMLPropPersist third("elsewhere.xml");
    third = second;
    EXPECT_TRUE(second.Persist(&collection));
    PropertyCollection loaded;
    EXPECT_TRUE(third.Populate(&loaded));
    EXPECT_EQ(Dump(loaded), Dump(collection));
}

} // namespace
