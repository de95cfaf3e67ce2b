// The writer against the XML library's pretty-printing document writer.
#include "quarn/properties/win32/settings_writer.h"
#include "quarn/properties/win32/xml_library.h"

#include "xml_reference.h"

#include <random>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;

class XmlWriter : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_library.Started()); }

    Quarn::detail::XmlLibraryUse const m_library;
};

// True when the tree can be written; the bytes are the document writer's then.
bool Compare(PropertyCollection const& collection)
{
    std::string written;
    bool const result = Quarn::detail::WriteSettings(collection, written);
    std::optional<std::string> const expected = reference::Write(collection);
    EXPECT_EQ(result, expected.has_value());
    if (result && expected) {
        EXPECT_EQ(written, *expected);
    }
    return result;
}

bool CompareText(std::string const& text)
{
    PropertyCollection collection(text, "Quarn_Properties");
    collection.SetValue(text, PropertyData(text), true);
    collection.SetValue("after", PropertyData(1), true);
    collection.AddSubKey("below")->SetValue(text, PropertyData(text), true);
    collection.AddSubKey("last");
    return Compare(collection);
}

TEST_F(XmlWriter, WritesTheDocumentWritersBytesForEveryCharacterBelow128)
{
    for (char c = 1; c > 0; ++c) {
        bool const control = c < ' ' && c != '\t' && c != '\n' && c != '\r';
        EXPECT_EQ(CompareText(std::string(1, c)), !control) << int{c};
        EXPECT_EQ(CompareText("a" + std::string(3, c) + "b"), !control) << int{c};
        if (c == 127) {
            break;
        }
    }
}

TEST_F(XmlWriter, WritesTheDocumentWritersBytesForBlankTexts)
{
    std::vector<std::string> const blanks = {
        "",     " ",      "  ",       "\t",        "\n",           "\r",           "\r\n",    "\n\r",
        "\n\n", "\n    ", "\r      ", " \n \n   ", "\n          ", "\r        \n", "\r\n   ", "    \n"};
    for (std::string const& first : blanks) {
        EXPECT_TRUE(CompareText(first));
        for (std::string const& second : blanks) {
            PropertyCollection collection("n", "d");
            collection.SetValue("1", PropertyData(first), true);
            collection.SetValue("2", PropertyData(second), true);
            PropertyKey& key = *collection.AddSubKey("a\\b");
            key.SetValue("3", PropertyData(second), true);
            collection.AddSubKey("c")->SetValue("4", PropertyData(first), true);
            EXPECT_TRUE(Compare(collection));
        }
    }
}

TEST_F(XmlWriter, WritesTheDocumentWritersBytesForListedTexts)
{
    for (std::string const text :
         {"]]>", "<![CDATA[x]]>", "<!-- x -->", "&amp;&#10;", "'\"'", "a\r\nb\rc\nd\te"}) {
        EXPECT_TRUE(CompareText(text)) << text;
    }
    EXPECT_TRUE(CompareText(std::string(1 << 20, 'x')));
    EXPECT_TRUE(CompareText(std::string(1 << 18, '<') + std::string(1 << 18, '\r')));
}

TEST_F(XmlWriter, RefusesTheDescriptionsThatTheDocumentWriterRefuses)
{
    for (char const* name : {"a", "A-b.c_1", "_", "Quarn_Properties"}) {
        EXPECT_TRUE(Compare(PropertyCollection("n", name))) << name;
    }
    for (char const* name : {"", "1a", "-a", "a b", "a<", "a&b", "a:b", ":a", "a:", " a", "a\n"}) {
        EXPECT_FALSE(Compare(PropertyCollection("n", name))) << name;
    }
}

TEST_F(XmlWriter, WritesTheDocumentWritersBytesForGeneratedTrees)
{
    std::mt19937 random(20260103);
    auto const below = [&random](std::size_t bound) { return random() % bound; };
    std::vector<std::string> const pieces = {
        "",  " ",  "\n",  "\r", "\t",  "a",      "text", "<",        ">",           "&",
        "'", "\"", "]]>", "0a", "   ", "\n    ", "\r\n", "\xC3\xA9", "\xE2\x82\xAC"};
    auto const text = [&] {
        std::string result;
        for (std::size_t i = below(4); i > 0; --i) {
            result += pieces[below(pieces.size())];
        }
        return result;
    };
    for (int i = 0; i < 1500; ++i) {
        PropertyCollection collection(text(), "d");
        std::vector<PropertyKey*> keys = {&collection};
        for (std::size_t steps = below(30); steps > 0; --steps) {
            PropertyKey& key = *keys[below(keys.size())];
            switch (below(5)) {
            case 0:
                keys.push_back(key.AddSubKey(("k" + std::to_string(steps)).c_str()));
                keys.back()->SetName(text());
                break;
            case 1:
                key.SetValue(text(), PropertyData(static_cast<long>(below(1000)) - 500), true);
                break;
            case 2:
                key.SetValue(text(), PropertyData::Create("binary", "00ff10"), true);
                break;
            case 3:
                key.SetValue(text(), PropertyData(), true);
                break;
            default:
                key.SetValue(text(), PropertyData(text()), true);
                break;
            }
        }
        EXPECT_TRUE(Compare(collection));
        ASSERT_FALSE(HasFailure()) << "tree " << i;
    }
}

} // namespace
