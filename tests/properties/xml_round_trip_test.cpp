// What XML can carry comes back as it was; what it cannot is refused, and the old file stays.
#include "quarn/properties/win32/xml_persist.h"

#include "tests/platform/process_text.h"
#include "tests/platform/scratch_folder.h"
#include "tree_dump.h"

#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

std::vector<std::string> const& Texts()
{
    static std::vector<std::string> const texts = {
        "",
        " ",
        "   ",
        "\t",
        "\n",
        "\r",
        "\r\n",
        "\n\r",
        "\r\r\n\n",
        " \t\r\n ",
        " leading",
        "trailing ",
        "\nleading and trailing\n",
        "a\rb\nc\r\nd\te",
        "&",
        "<",
        ">",
        "\"",
        "'",
        "&amp;",
        "&#13;",
        "&unknown;",
        "]]>",
        "<![CDATA[x]]>",
        "<!-- x -->",
        "<?x?>",
        "</Value>",
        "\x7F",
        "a:b=c\\d/e;f,g",
        ProcessText(u"\u00E4\u00F6\u00FC\u00DF"),
        ProcessText(u"\u20AC\u00A0x"),
        ProcessText(u"mixed \u00E9 and <ascii>"),
        std::string(1 << 20, 'x'),
        std::string(1 << 17, ' '),
        std::string(1 << 16, '\n') + std::string(1 << 16, '\r'),
        ProcessText(std::u16string(1 << 17, u'\u00E9')),
    };
    return texts;
}

// Saves, loads, compares, and saves again into the same bytes.
void ExpectRoundTrip(PropertyCollection const& collection)
{
    ScratchFolder const scratch;
    XMLPropPersist const file(scratch / "settings.xml");
    ASSERT_TRUE(file.Persist(&collection));
    std::string const bytes = ContentOf(scratch / "settings.xml");
    PropertyCollection loaded;
    ASSERT_TRUE(file.Populate(&loaded));
    ASSERT_TRUE(Dump(loaded) == Dump(collection));
    ASSERT_TRUE(file.Persist(&loaded));
    EXPECT_TRUE(ContentOf(scratch / "settings.xml") == bytes);
}

TEST(XmlRoundTrip, TextsComeBackExactly)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    int number = 0;
    for (std::string const& text : Texts()) {
        Quarn::string name;
        name.Format("%d", ++number);
        collection.SetValue(name, PropertyData(text), true);
    }
    ExpectRoundTrip(collection);
}

TEST(XmlRoundTrip, ValueNamesComeBackExactly)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    for (std::string const& text : Texts()) {
        collection.SetValue(text, PropertyData(1), true);
    }
    ExpectRoundTrip(collection);
}

TEST(XmlRoundTrip, TheCollectionsNameComesBackExactly)
{
    for (std::string const& text : Texts()) {
        ExpectRoundTrip(PropertyCollection(text, "Quarn_Properties"));
    }
}

TEST(XmlRoundTrip, KeyNamesWithoutDelimitersComeBackExactly)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    for (std::string const& text : Texts()) {
        if (!text.empty() && text.find_first_of("\\/;,") == text.npos) {
            collection.AddSubKey(text.c_str());
        }
    }
    ASSERT_GT(collection.GetKeyCount(), 20U);
    ExpectRoundTrip(collection);
}

TEST(XmlRoundTrip, BinaryDataOfAllBytesComesBack)
{
    std::vector<unsigned char> bytes;
    for (int i = 0; i < 256; ++i) {
        bytes.push_back(static_cast<unsigned char>(i));
    }
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue("all", PropertyData(bytes.data(), static_cast<long>(bytes.size())), true);
    collection.SetValue("none", PropertyData(bytes.data(), 0L), true);
    ExpectRoundTrip(collection);
}

TEST(XmlRoundTrip, AThousandLevelsOfKeysComeBack)
{
    PropertyCollection collection("1", "Quarn_Properties");
    Quarn::PropertyKey* key = &collection;
    for (int level = 2; level <= 1000; ++level) {
        key = key->AddSubKey("k");
    }
    key->SetValue("deep", PropertyData(1), true);
    ExpectRoundTrip(collection);
}

// A save of what no file can carry: false, and the old file is as it was.
void ExpectRefused(PropertyCollection const& collection)
{
    ScratchFolder const scratch;
    WriteContent(scratch / "settings.xml", "old");
    EXPECT_FALSE(XMLPropPersist(scratch / "settings.xml").Persist(&collection));
    EXPECT_EQ(ContentOf(scratch / "settings.xml"), "old");
    EXPECT_EQ(scratch.Names().size(), 1U);
    EXPECT_FALSE(XMLPropPersist(scratch / "new.xml").Persist(&collection));
    EXPECT_EQ(scratch.Names().size(), 1U);
}

TEST(XmlRoundTrip, ControlCharactersAreRefusedWhereverTheyStand)
{
    for (char c = 0x01; c < 0x20; ++c) {
        if (c == '\t' || c == '\n' || c == '\r') {
            continue;
        }
        std::string const text = "a" + std::string(1, c) + "b";
        PropertyCollection inText("Root", "Quarn_Properties");
        inText.SetValue("v", PropertyData(text), true);
        ExpectRefused(inText);
        PropertyCollection inName("Root", "Quarn_Properties");
        inName.AddSubKey("k")->SetValue(text, PropertyData("x"), true);
        ExpectRefused(inName);
        PropertyCollection inKey("Root", "Quarn_Properties");
        inKey.AddSubKey(text.c_str());
        ExpectRefused(inKey);
        ExpectRefused(PropertyCollection(text, "Quarn_Properties"));
        ExpectRefused(PropertyCollection("Root", text));
    }
}

TEST(XmlRoundTrip, AZeroByteInANameIsRefused)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue(std::string("a\0b", 3), PropertyData("x"), true);
    ExpectRefused(collection);
}

TEST(XmlRoundTrip, DescriptionsThatAreNoElementNameAreRefused)
{
    for (char const* const name : {"", " ", "1a", "-a", "a b", "<a", "a&b", "a:b", "a/b"}) {
        ExpectRefused(PropertyCollection("Root", name));
    }
}

TEST(XmlRoundTrip, MoreThanAThousandLevelsAreRefused)
{
    PropertyCollection collection("1", "Quarn_Properties");
    Quarn::PropertyKey* key = &collection;
    for (int level = 2; level <= 1001; ++level) {
        key = key->AddSubKey("k");
    }
    ExpectRefused(collection);
    collection.AddSubKey(("x" + Quarn::string(200000, '\\') + "y").c_str());
    for (int level = 1001; level < 100000; ++level) {
        key = key->AddSubKey("k");
    }
    ExpectRefused(collection);
}

TEST(XmlRoundTrip, NamesAndDocumentsBeyondTheBoundsAreRefused)
{
    PropertyCollection longName("Root", "Quarn_Properties");
    longName.SetValue(Quarn::string((std::size_t{16} << 20) + 1, 'x'), PropertyData(1), true);
    ExpectRefused(longName);
    PropertyCollection longText("Root", "Quarn_Properties");
    longText.SetValue("v", PropertyData(Quarn::string(std::size_t{256} << 20, 'x')), true);
    ExpectRefused(longText);
}

#if !defined(_WIN32)
// On Windows it depends on the code page which bytes are no text; a single-byte one takes all of them.
TEST(XmlRoundTrip, BytesThatAreNoTextAreRefused)
{
    for (char const* const text :
         {"\xFF", "a\x80", "\xC3", "\xC3(", "\xC0\xAF", "\xED\xA0\x80", "\xED\xB0\x80", "\xF4\x90\x80\x80",
          "\xE2\x82", "\xEF\xBF\xBE", "\xEF\xBF\xBF"}) {
        PropertyCollection inText("Root", "Quarn_Properties");
        inText.SetValue("v", PropertyData(text), true);
        ExpectRefused(inText);
        ExpectRefused(PropertyCollection(text, "Quarn_Properties"));
        ExpectRefused(PropertyCollection("Root", text));
    }
}

TEST(XmlRoundTrip, CharactersBeyondTheBasicPlaneComeBack)
{
    PropertyCollection collection("\xF0\x9F\x98\x80", "Quarn_Properties");
    collection.SetValue("\xF0\x9F\x98\x80", PropertyData("x\xF4\x8F\xBF\xBDy\xEF\xBF\xBD"), true);
    ExpectRoundTrip(collection);
}
#endif

} // namespace
