// Files that nobody's settings are: false, in bounded time and memory, and no other file is read.
#include "quarn/properties/win32/xml_persist.h"

#include "tests/platform/scratch_folder.h"
#include "tree_dump.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

std::string const Body = "<d><Key Name='n'><Value Name='a' Type='string'>text</Value></Key></d>";

PropertyCollection Before()
{
    PropertyCollection collection("before", "before");
    collection.SetValue("a", PropertyData("kept"), true);
    return collection;
}

// False, and the collection is as it was.
void ExpectRefused(Quarn::string const& path)
{
    PropertyCollection collection = Before();
    EXPECT_FALSE(XMLPropPersist(path).Populate(&collection));
    EXPECT_EQ(Dump(collection), Dump(Before()));
}

void ExpectDocumentRefused(std::string const& document)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", document);
    SCOPED_TRACE(document.substr(0, 200));
    ExpectRefused(scratch / "settings.xml");
}

std::string Nested(std::size_t levels, std::string const& start, std::string const& end)
{
    std::string document = "<d><Key Name='1'>";
    for (std::size_t i = 0; i < levels; ++i) {
        document += start;
    }
    for (std::size_t i = 0; i < levels; ++i) {
        document += end;
    }
    return document + "</Key></d>";
}

TEST(XmlHostile, EveryDocumentTypeIsRefused)
{
    for (std::string const type : {"d", "d []", "d SYSTEM 'x.dtd'", "d PUBLIC 'p' 'x.dtd'",
                                   "d [<!ENTITY e 'x'>]", "d [<!ELEMENT d ANY>]", "other"}) {
        ExpectDocumentRefused("<!DOCTYPE " + type + ">" + Body);
        ExpectDocumentRefused("<?xml version='1.0'?>\n<!DOCTYPE " + type + ">\n" + Body);
    }
}

TEST(XmlHostile, NoOtherFileIsRead)
{
    ScratchFolder const scratch;
    std::string const secret = "<Value Name='secret' Type='string'>secret</Value>";
    WriteContent(scratch / "secret.xml", secret);
    WriteContent(scratch / "secret.dtd", "<!ENTITY e 'secret'>");
    std::string const absolute = std::filesystem::absolute(scratch.Path()).generic_string();
    for (std::string const& base :
         {std::string(), scratch.Path() + "/", absolute + "/", "file://" + absolute + "/"}) {
        for (std::string const& document : {
                 "<!DOCTYPE d [<!ENTITY e SYSTEM '" + base + "secret.xml'>]><d><Key Name='n'>&e;</Key></d>",
                 "<!DOCTYPE d [<!ENTITY % e SYSTEM '" + base +
                     "secret.dtd'>%e;]><d><Key Name='n'>&e;</Key></d>",
                 "<!DOCTYPE d SYSTEM '" + base + "secret.dtd'><d><Key Name='&e;'/></d>",
             }) {
            WriteContent(scratch / "settings.xml", document);
            PropertyCollection collection;
            EXPECT_FALSE(XMLPropPersist(scratch / "settings.xml").Populate(&collection)) << document;
            EXPECT_EQ(Dump(collection).find("secret"), std::string::npos) << document;
            EXPECT_EQ(Dump(collection), Dump(PropertyCollection()));
        }
    }
    // References of other kinds are plain data.
    WriteContent(scratch / "settings.xml", "<d xmlns:xi='http://www.w3.org/2001/XInclude' xmlns:xsi="
                                           "'http://www.w3.org/2001/XMLSchema-instance' "
                                           "xsi:noNamespaceSchemaLocation='secret.xml'><Key Name='n'>"
                                           "<xi:include Name='i' href='secret.xml'/></Key></d>");
    PropertyCollection collection;
    EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
    EXPECT_EQ(Dump(collection).find("secret"), std::string::npos);
}

TEST(XmlHostile, EntityBombsAreRefusedAtOnce)
{
    std::string laughs = "<!DOCTYPE d [<!ENTITY a 'aaaaaaaaaa'>";
    for (char c = 'b'; c < 'k'; ++c) {
        std::string const inner = "&" + std::string(1, static_cast<char>(c - 1)) + ";";
        laughs += "<!ENTITY " + std::string(1, c) + " '";
        for (int i = 0; i < 10; ++i) {
            laughs += inner;
        }
        laughs += "'>";
    }
    ExpectDocumentRefused(laughs + "]><d><Key Name='n'><Value Name='a' Type='string'>&j;</Value></Key></d>");
    std::string quadratic = "<!DOCTYPE d [<!ENTITY a '" + std::string(100000, 'a') + "'>]><d><Key Name='";
    for (int i = 0; i < 1000; ++i) {
        quadratic += "&a;";
    }
    ExpectDocumentRefused(quadratic + "'/></d>");
}

TEST(XmlHostile, KeysDeeperThanAThousandLevelsAreRefused)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", Nested(999, "<Key Name='k'>", "</Key>"));
    PropertyCollection collection;
    EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
    ExpectDocumentRefused(Nested(1000, "<Key Name='k'>", "</Key>"));
    ExpectDocumentRefused(Nested(100000, "<Key Name='k'>", "</Key>"));
}

TEST(XmlHostile, LevelsInPathsCount)
{
    auto const path = [](std::size_t levels) {
        std::string document = "<d><Key Name='1'><Key Name='";
        for (std::size_t i = 0; i < levels; ++i) {
            document += i == 0 ? "a" : "\\;a";
        }
        return document + "\\'/></Key></d>";
    };
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", path(999));
    PropertyCollection collection;
    EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
    ExpectDocumentRefused(path(1000));
    ExpectDocumentRefused(path(1000000));
    ExpectDocumentRefused(Nested(501, "<Key Name='a\\b'>", "</Key>"));
    // A leading delimiter is a level of its own.
    ExpectDocumentRefused(Nested(500, "<Key Name='\\b'>", "</Key>"));
}

TEST(XmlHostile, ElementsThatLeaveNothingMayBeDeeperButNotWithoutEnd)
{
    for (std::string const start : {"<x Name='n'>", "<Key Name=''>"}) {
        std::string const end = "</" + start.substr(1, start.find(' ') - 1) + ">";
        ScratchFolder const scratch;
        WriteContent(scratch / "settings.xml", Nested(5000, start, end));
        PropertyCollection collection;
        EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
        EXPECT_EQ(collection.GetKeyCount(), 0U);
        ExpectDocumentRefused(Nested(100000, start, end));
    }
    ExpectDocumentRefused(Nested(100000, "<", ""));
    ExpectDocumentRefused(Nested(100000, "<x>", ""));
}

TEST(XmlHostile, CrowdsOfNamesAndAttributesTakeBoundedTime)
{
    std::string elements = "<d><Key Name='n'>";
    std::string attributes = "<d><Key Name='n'";
    for (int i = 0; i < 50000; ++i) {
        elements += "<e" + std::to_string(i) + " Name='x'/>";
        attributes += " a" + std::to_string(i) + "='x'";
    }
    ScratchFolder const scratch;
    for (std::string const& document : {elements + "</Key></d>", attributes + "/></d>"}) {
        WriteContent(scratch / "settings.xml", document);
        PropertyCollection collection;
        EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
        EXPECT_EQ(collection.GetName(), "n");
    }
}

TEST(XmlHostile, NamesAndFilesBeyondTheBoundsAreRefused)
{
    ExpectDocumentRefused("<d><Key Name='" + std::string((std::size_t{16} << 20) + 1, 'x') + "'/></d>");
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", Body);
    // Sparse where the file system can do it.
    std::filesystem::resize_file(std::string(scratch / "settings.xml"), (std::uintmax_t{256} << 20) + 1);
    ExpectRefused(scratch / "settings.xml");
}

TEST(XmlHostile, ADocumentCutAnywhereIsRefused)
{
    std::string const document = ContentOf(QUARN_TEST_DATA "/xml/holvek.xml");
    ScratchFolder const scratch;
    PropertyCollection collection;
    WriteContent(scratch / "settings.xml", document);
    ASSERT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection));
    for (std::size_t size = 0; size < document.size(); ++size) {
        SCOPED_TRACE(size);
        WriteContent(scratch / "settings.xml", document.substr(0, size));
        ExpectRefused(scratch / "settings.xml");
    }
}

TEST(XmlHostile, WrongEncodingsAreRefusedAndRightOnesRead)
{
    std::string utf16le = "\xFF\xFE";
    std::string utf16be = "\xFE\xFF";
    for (char const c : Body) {
        utf16le += std::string(1, c) + '\0';
        utf16be += '\0' + std::string(1, c);
    }
    for (std::string const& document :
         {Body, "\xEF\xBB\xBF" + Body, utf16le, utf16be, "<?xml version='1.0' encoding='UTF-8'?>" + Body,
          "<?xml version='1.0' encoding='ISO-8859-1'?>" + Body,
          "<?xml version='1.0' encoding='US-ASCII'?>" + Body,
          "<?xml version='1.0' encoding='iso-8859-6'?>" + Body,
          "<?xml version='1.0' encoding='windows-1253'?>" + Body}) {
        ScratchFolder const scratch;
        WriteContent(scratch / "settings.xml", document);
        PropertyCollection collection;
        EXPECT_TRUE(XMLPropPersist(scratch / "settings.xml").Populate(&collection)) << document;
        EXPECT_EQ(collection.GetValueString("a", ""), "text");
    }
    for (std::string const& document : {
             "<?xml version='1.0' encoding='no-such-encoding'?>" + Body,
             "<?xml version='1.0' encoding=''?>" + Body,
             "\xFF\xFE" + Body,
             "\xFE\xFF" + Body,
             utf16le.substr(0, utf16le.size() - 1),
             utf16le + std::string(4, '\0'),
             utf16be + std::string(4, '\0'),
             std::string("<d><Key Name='\xE9'/></d>"),
             std::string("<d><Key Name='\xC0\xAF'/></d>"),
             std::string("<d><Key Name='\xED\xA0\x80'/></d>"),
             std::string("<d><Key Name='\xF4\x90\x80\x80'/></d>"),
             "\xEF\xBB" + Body,
             // Bytes without a character in the encoding of their own.
             std::string("<?xml version='1.0' encoding='ISO-8859-6'?><d><Key Name='\xA1'/></d>"),
             std::string("<?xml version='1.0' encoding='windows-1253'?><d><Key Name='a'>\xD2</Key></d>"),
             std::string("<?xml version='1.0' encoding='GB18030'?><d><Key Name='\xFF'/></d>"),
             // Wide characters are declared, and there are none.
             "<?xml version='1.0' encoding='UTF-16'?>" + Body,
             "\xEF\xBB\xBF<?xml version='1.0' encoding='utf-16'?>" + Body,
             "<?xml version='1.0' encoding='ISO-10646-UCS-2'?>" + Body,
             "<?xml version='1.0' encoding='UTF-32'?>" + Body,
             // Parts of characters behind the end, and half a pair.
             Body + "\xC3",
             Body + "\xFE\n",
             "\n" + Body + "\xFE\n",
             Body + "\n\xE2\x82\n",
             utf16le + "\n",
             utf16le + "\x3D\xD8",
             std::string("\xFE\xFF\0<\0d\0>\0<\0K\0e\0y\0 \0N\0a\0m\0e\0=\0'\xD8\0\0'\0/\0>\0<\0/\0d\0>", 46),
         }) {
        ExpectDocumentRefused(document);
    }
}

TEST(XmlHostile, EmptyAndZeroFilesAndFoldersAreRefused)
{
    ExpectDocumentRefused("");
    ExpectDocumentRefused("\n");
    ExpectDocumentRefused("\xEF\xBB\xBF");
    ExpectDocumentRefused(std::string(1, '\0'));
    ExpectDocumentRefused(std::string(100000, '\0'));
    ExpectDocumentRefused(Body + std::string(10, '\0'));
    // The parser alone would stop at the zero byte and be content.
    ExpectDocumentRefused(Body + '\0' + "garbage");
    ExpectDocumentRefused(Body + Body);
    ScratchFolder const scratch;
    ExpectRefused(Quarn::string(scratch.Path()));
}

} // namespace
