// The reader judged by another XML library: nothing that is malformed is read, and everything well-formed in
// the layout of settings is, with the same settings.
//
// Deliberately refused although well-formed: a document type; a comment or an instruction outside the root
// element; another version than 1.0 (1.1 is read, by rules of its own); what is beyond the bounds of depth
// and size, which other tests reach.
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/xml_library.h"

#include "tests/scale.h"
#include "tree_dump.h"
#include "xml_documents.h"
#include "xml_second_opinion.h"
#include "xml_wild_documents.h"

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <iconv.h>

namespace {

using documents::Judge;
using documents::SecondOpinion;
using Quarn::PropertyCollection;
using Quarn::detail::ReadResult;
using Quarn::detail::ReadSettings;

class XmlSecondOpinion : public ::testing::Test
{
protected:
    void SetUp() override { ASSERT_TRUE(m_library.Started()); }

    Quarn::detail::XmlLibraryUse const m_library;
    // Of each kind of opinion and of each result.
    std::map<std::string, int> m_counts;

    void Compare(std::string const& document)
    {
        SecondOpinion const opinion = Judge(document);
        PropertyCollection settings;
        ReadResult const result = ReadSettings(document, settings);
        if (opinion.error == "unknown encoding") {
            ++m_counts["no opinion"]; // it knows fewer
        } else if (!opinion.isWellFormed) {
            ++m_counts["malformed"];
            ++m_counts[opinion.error];
            ASSERT_EQ(result, ReadResult::Refused) << opinion.error << '\n' << document;
        } else if (opinion.deliberate != nullptr) {
            ++m_counts[opinion.deliberate];
            ASSERT_EQ(result, ReadResult::Refused) << opinion.deliberate << '\n' << document;
        } else {
            ++m_counts["well-formed"];
            ASSERT_NE(result, ReadResult::Refused) << document;
            if (result == ReadResult::Whole) {
                ++m_counts["whole"];
                ASSERT_EQ(Dump(settings), Dump(opinion.settings)) << document;
            }
        }
    }
};

TEST_F(XmlSecondOpinion, IsSharedOnGeneratedDocuments)
{
    documents::WildGenerator generator(20261121);
    int const count = Times("QUARN_DOCUMENTS", 5000 * Slowness); // with fewer the rare kinds are missing
    for (int i = 0; i < count; ++i) {
        Compare(generator.Next());
        ASSERT_FALSE(HasFatalFailure()) << "document " << i;
    }
    // The generator reaches all of them.
    for (char const* const kind :
         {"malformed", "well-formed", "whole", "a document type",
          "a comment or an instruction outside the root element", "not well-formed (invalid token)",
          "reference to invalid character number", "undefined entity", "mismatched tag",
          "duplicate attribute", "unclosed token", "no element found", "unclosed CDATA section",
          "junk after document element", "XML or text declaration not at start of entity",
          "XML declaration not well-formed", "encoding specified in XML declaration is incorrect",
          "partial character"}) {
        EXPECT_GT(m_counts[kind], 0) << kind;
    }
    EXPECT_GT(m_counts["malformed"], count / 4);
    EXPECT_GT(m_counts["whole"], count / 4);
    for (auto const& [kind, number] : m_counts) {
        std::printf("%6d %s\n", number, kind.c_str());
    }
    ShowFigure(count, " documents, ", m_counts["well-formed"],
               " of them well-formed settings, 0 judged otherwise");
}

TEST_F(XmlSecondOpinion, IsSharedOnAFileCutAnywhere)
{
    documents::WildGenerator generator(7);
    for (int i = 0; i < 10; ++i) {
        std::string const document = generator.Next();
        for (std::size_t size = 0; size <= document.size(); ++size) {
            Compare(document.substr(0, size));
            ASSERT_FALSE(HasFatalFailure()) << "document " << i << " of " << size << " bytes";
        }
    }
    EXPECT_GT(m_counts["well-formed"], 0);
}

// The productions of names in XML 1.0, fifth edition; the other library keeps to the fourth, which has fewer.
bool IsNameStart(char32_t c)
{
    static constexpr char32_t Ranges[][2] = {
        {':', ':'},       {'A', 'Z'},       {'_', '_'},       {'a', 'z'},
        {0xC0, 0xD6},     {0xD8, 0xF6},     {0xF8, 0x2FF},    {0x370, 0x37D},
        {0x37F, 0x1FFF},  {0x200C, 0x200D}, {0x2070, 0x218F}, {0x2C00, 0x2FEF},
        {0x3001, 0xD7FF}, {0xF900, 0xFDCF}, {0xFDF0, 0xFFFD}, {0x10000, 0xEFFFF}};
    return std::any_of(std::begin(Ranges), std::end(Ranges),
                       [c](char32_t const(&range)[2]) { return c >= range[0] && c <= range[1]; });
}

bool IsNameCharacter(char32_t c)
{
    return IsNameStart(c) || c == '-' || c == '.' || (c >= '0' && c <= '9') || c == 0xB7 ||
           (c >= 0x300 && c <= 0x36F) || (c >= 0x203F && c <= 0x2040);
}

// A document in UTF-16 with an empty element of this name.
std::string WithElement(std::u16string const& name)
{
    std::u16string const text = u"\uFEFF<d><Key Name='n'><" + name + u" Name=''/></Key></d>";
    std::string bytes;
    for (char16_t const unit : text) {
        bytes += static_cast<char>(unit);
        bytes += static_cast<char>(unit >> 8);
    }
    return bytes;
}

ReadResult ResultOf(std::string const& document)
{
    PropertyCollection settings;
    return ReadSettings(document, settings);
}

TEST_F(XmlSecondOpinion, OnNamesIsThatOfAnEarlierEditionWithFewerCharacters)
{
    std::u16string all = u"a";
    int wrong = 0;
    for (char16_t c = 0xFFFF; c > 0x7F; --c) {
        if (c >= 0xD800 && c < 0xE000) {
            continue;
        }
        if (IsNameCharacter(c)) {
            all += c;
        }
        // At the ends of the ranges, and some within.
        for (bool const isStart : {true, false}) {
            auto const isRight = [isStart](char32_t x) {
                return isStart ? IsNameStart(x) : IsNameCharacter(x);
            };
            if (c % 128 == 0 || isRight(c) != isRight(c - 1U) || isRight(c) != isRight(c + 1U)) {
                std::string const document =
                    WithElement(isStart ? std::u16string(1, c) : u"a" + std::u16string(1, c));
                ASSERT_EQ(ResultOf(document), isRight(c) ? ReadResult::Whole : ReadResult::Refused)
                    << std::hex << int{c};
                ASSERT_TRUE(isRight(c) || !Judge(document).isWellFormed) << std::hex << int{c};
                wrong += isRight(c) ? 0 : 1;
            }
        }
    }
    EXPECT_EQ(ResultOf(WithElement(all)), ReadResult::Whole);
    EXPECT_GT(wrong, 100);
}

// A declaration of wide characters before narrow ones, and the other way around.
TEST_F(XmlSecondOpinion, RefusesADeclarationOfAnotherWidthThanThatOfTheBytes)
{
    auto const declared = [](std::string const& encoding) {
        return "<?xml version='1.0' encoding='" + encoding + "'?><d><Key Name='n'/></d>";
    };
    auto const wide = [](std::string const& ascii, std::size_t width, bool isBigEndian) {
        std::string bytes;
        for (char const c : ascii) {
            std::string const zeros(width - 1, '\0');
            bytes += isBigEndian ? zeros + c : c + zeros;
        }
        return bytes;
    };
    std::string const marks[] = {"\xFE\xFF", "\xFF\xFE"};
    for (std::string const encoding : {"UTF-16", "utf-16", "UTF16", "UCS-2", "UCS2", "ISO-10646-UCS-2",
                                       "IBM1200", "UTF-16LE", "UTF-16BE"}) {
        EXPECT_EQ(ResultOf(declared(encoding)), ReadResult::Refused) << encoding;
        EXPECT_EQ(ResultOf("\xEF\xBB\xBF" + declared(encoding)), ReadResult::Refused) << encoding;
        int read = 0;
        for (bool const isBigEndian : {false, true}) {
            std::string const bytes = wide(declared(encoding), 2, isBigEndian);
            read += ResultOf(marks[isBigEndian ? 0 : 1] + bytes) == ReadResult::Whole ? 1 : 0;
        }
        EXPECT_GT(read, 0) << encoding;
    }
    for (std::string const encoding : {"UTF-32", "UCS-4", "UCS4", "ISO-10646-UCS-4"}) {
        EXPECT_EQ(ResultOf(declared(encoding)), ReadResult::Refused) << encoding;
        EXPECT_EQ(ResultOf(marks[1] + wide(declared(encoding), 2, false)), ReadResult::Refused) << encoding;
        EXPECT_EQ(ResultOf(wide(declared(encoding), 4, false)), ReadResult::Whole) << encoding;
    }
    for (std::string const encoding : {"UTF-8", "US-ASCII", "ISO-8859-1"}) {
        EXPECT_EQ(ResultOf(declared(encoding)), ReadResult::Whole) << encoding;
        EXPECT_EQ(ResultOf(marks[1] + wide(declared(encoding), 2, false)), ReadResult::Refused) << encoding;
        EXPECT_EQ(ResultOf(wide(declared(encoding), 2, true)), ReadResult::Refused) << encoding;
    }
}

// What these bytes are in UTF-8, as the C library has it; none where they are no characters.
std::optional<std::string> Converted(std::string const& encoding, std::string bytes)
{
    ::iconv_t const converter = ::iconv_open("UTF-8", encoding.c_str());
    char text[64];
    char* from = bytes.data();
    char* to = text;
    std::size_t left = bytes.size();
    std::size_t room = sizeof text;
    bool const isConverted = ::iconv(converter, &from, &left, &to, &room) != static_cast<std::size_t>(-1);
    ::iconv_close(converter);
    return isConverted ? std::optional(std::string(text, to)) : std::nullopt;
}

// The bytes as a value's text; none where the document is refused.
std::optional<std::string> Read(std::string const& encoding, std::string const& bytes)
{
    PropertyCollection settings;
    ReadResult const result =
        ReadSettings("<?xml version='1.0' encoding='" + encoding +
                         "'?><d><Key Name='n'><Value Name='v' Type='string'>" + bytes + "</Value></Key></d>",
                     settings);
    EXPECT_TRUE(result == ReadResult::Whole || result == ReadResult::Refused);
    return result == ReadResult::Whole ? std::optional<std::string>(settings.GetValueString("v", ""))
                                       : std::nullopt;
}

TEST_F(XmlSecondOpinion, OnEachByteOfOtherEncodingsIsTheSame)
{
    int wrong = 0;
    for (std::string const encoding : {"ISO-8859-1", "ISO-8859-2", "ISO-8859-3", "ISO-8859-4", "ISO-8859-5",
                                       "ISO-8859-6", "ISO-8859-7", "ISO-8859-8", "ISO-8859-9", "ISO-8859-13",
                                       "ISO-8859-15", "KOI8-R", "KOI8-U", "Shift_JIS", "GB18030"}) {
        for (int byte = 0x80; byte < 0x100; ++byte) {
            std::string const bytes(1, static_cast<char>(byte));
            std::optional<std::string> const expected = Converted(encoding, bytes);
            ASSERT_EQ(Read(encoding, bytes), expected) << encoding << std::hex << byte;
            wrong += expected ? 0 : 1;
        }
    }
    EXPECT_GT(wrong, 100);
}

TEST_F(XmlSecondOpinion, OnCharactersOfSeveralBytesIsTheSame)
{
    std::mt19937 random(20); // NOLINT(cert-msc51-cpp): the same each time
    int wrong = 0;
    for (int i = 0; i < 2000; ++i) {
        std::string bytes;
        for (unsigned const length = 2 + random() % 3; bytes.size() < length;) {
            bytes += static_cast<char>(random() % 2 != 0 ? '0' + random() % 10 : 0x7F + random() % 0x81);
        }
        std::optional<std::string> const expected = Converted("GB18030", bytes);
        ASSERT_EQ(Read("GB18030", bytes).has_value(), expected.has_value())
            << ::testing::PrintToString(bytes);
        wrong += expected ? 0 : 1;
    }
    EXPECT_GT(wrong, 100);
    EXPECT_LT(wrong, 1900);
}

// The converter says nothing of what it puts a replacement for. Asked for by its number it is none.
TEST_F(XmlSecondOpinion, NoByteIsReplaced)
{
    for (std::string const encoding :
         {"GBK", "GB2312", "Big5", "EUC-JP", "EUC-KR", "windows-1253", "windows-1255", "windows-1257",
          "IBM852", "ISO-2022-JP", "ISO-2022-KR", "UTF-7", "HZ-GB-2312", "CESU-8"}) {
        int read = 0;
        for (int byte = 0x80; byte < 0x100; ++byte) {
            std::string const bytes = {static_cast<char>(byte), 'a', static_cast<char>(byte ^ 1)};
            std::optional<std::string> const text = Read(encoding, bytes);
            ASSERT_TRUE(!text || text->find("\xEF\xBF\xBD") == text->npos) << encoding << std::hex << byte;
            read += text ? 1 : 0;
        }
        EXPECT_LT(read, 0x80) << encoding;
        EXPECT_EQ(Read(encoding, "a&#xFFFD;"), "a\xEF\xBF\xBD") << encoding;
    }
    // A character that is cut at the end, its first byte being a ">" and the one before it the shift.
    EXPECT_EQ(ResultOf("<?xml version='1.0' encoding='ISO-2022-JP'?><d><Key Name='n'/></d>"),
              ReadResult::Whole);
    EXPECT_EQ(ResultOf("<?xml version='1.0' encoding='ISO-2022-JP'?><d><Key Name='n'/></d>\x1B$B>"),
              ReadResult::Refused);
}

} // namespace
