#include "quarn/stream/memory_stream.h"
#include "quarn/stream/null_stream.h"
#include "quarn/text/string_list.h"

#include "tests/stream/bytes.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/throws.h"

#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::memorystream;

template<typename Text>
Bytes EncodedAs(Text const& text)
{
    FakeOutput stream;
    stream << text;
    return stream.Taken();
}

Quarn::string ReadText(Bytes const& bytes)
{
    Source streamSource(bytes);
    Quarn::memorystream& stream = streamSource;
    Quarn::string text = "old";
    stream >> text;
    EXPECT_EQ(stream.tellg(), stream.GetSize());
    return text;
}

std::string Digits()
{
    std::string text;
    for (int i = 0; i < 200; ++i) {
        text += "0123456789";
    }
    return text;
}

TEST(StringEncoding, HasItsDocumentedBytes)
{
    EXPECT_EQ(EncodedAs(Quarn::string()), Hex("FF FF FF FF 00 00 00 00 FF FF FF FF"));
    EXPECT_EQ(EncodedAs(Quarn::string("ab")), Hex("FF FF FF FF 02 00 00 00 FD FF FF FF 61 62"));
}

TEST(StringEncoding, IsTheSameForEveryTextType)
{
    Bytes const expected = EncodedAs(Quarn::string("ab"));
    EXPECT_EQ(EncodedAs(std::string("ab")), expected);
    EXPECT_EQ(EncodedAs("ab"), expected);
    char array[] = "ab";
    EXPECT_EQ(EncodedAs(static_cast<char*>(array)), expected);
}

TEST(StringEncoding, ANullTextIsEmpty)
{
    char const* const none = nullptr;
    EXPECT_EQ(EncodedAs(none), EncodedAs(""));
}

TEST(StringEncoding, WritesAndReadsTheGoldenFile)
{
    memorystream stream(4096);
    stream << "" << std::string("ab") << Quarn::string("caf\xE9") << Digits();
    EXPECT_EQ(Written(stream), Golden("strings.bin"));

    Source bytes(Golden("strings.bin"));
    Quarn::memorystream& source = bytes;
    std::string empty = "old";
    Quarn::string two;
    char latin[16];
    std::string digits;
    source >> empty >> two >> latin >> digits;
    EXPECT_EQ(empty, "");
    EXPECT_EQ(two, "ab");
    EXPECT_STREQ(latin, "caf\xE9");
    EXPECT_EQ(digits, Digits());
    EXPECT_EQ(source.tellg(), source.GetSize());
}

TEST(StringEncoding, ReadsTheOlderFormat)
{
    EXPECT_EQ(ReadText(Hex("02 00 00 00 FD FF FF FF 61 62")), "ab");
    Source bytes(Golden("strings_old.bin"));
    Quarn::memorystream& source = bytes;
    std::string empty = "old";
    Quarn::string two;
    Quarn::string latin;
    std::string digits;
    source >> empty >> two >> latin >> digits;
    EXPECT_EQ(empty, "");
    EXPECT_EQ(two, "ab");
    EXPECT_EQ(latin, "caf\xE9");
    EXPECT_EQ(digits, Digits());
    EXPECT_EQ(source.tellg(), source.GetSize());
}

TEST(StringEncoding, ReadsBackTextsAroundEveryBufferSize)
{
    for (std::size_t const size :
         {1U, 15U, 16U, 1022U, 1023U, 1024U, 1025U, 2000U, 65535U, 65536U, 65537U, 98304U, 98305U, 200000U}) {
        Quarn::string text(size, 'x');
        text[size / 2] = 'y';
        EXPECT_EQ(ReadText(EncodedAs(text)), text) << size;
    }
}

TEST(StringEncoding, StoresAnEmbeddedZeroAndDeliberatelyReadsOnlyTheTextBeforeIt)
{
    std::string const text("a\0b", 3);
    EXPECT_EQ(EncodedAs(text), Hex("FF FF FF FF 03 00 00 00 FC FF FF FF 61 00 62"));
    EXPECT_EQ(ReadText(EncodedAs(text)), "a");
    for (std::size_t const size : {5000U, 100000U}) {
        std::string wide(size, 'x');
        wide[4000] = '\0';
        EXPECT_EQ(ReadText(EncodedAs(wide)).size(), 4000U) << size;
    }
    EXPECT_EQ(ReadText(Hex("01 00 00 00 FE FF FF FF 00")), "");
}

TEST(StringEncoding, ALengthWithoutItsComplementIsRefusedBeforeAnyBodyByte)
{
    for (char const* const hex : {"FF FF FF FF 02 00 00 00 FC FF FF FF 61 62",
                                  "02 00 00 00 FC FF FF FF 61 62", "00 00 00 00 00 00 00 00 61 62"}) {
        FakeInput stream(Hex(hex));
        Quarn::string text = "old";
        EXPECT_EQ(ThrownText([&] { stream >> text; }), "Invalid String Length") << hex;
        EXPECT_EQ(stream.Left(), 2U) << hex;
        EXPECT_EQ(text, "old") << hex;
    }
}

TEST(StringEncoding, AMarkerInPlaceOfTheLengthIsALengthInTheCurrentFormat)
{
    // Marker, length 0xFFFFFFFF, its complement 0: four billion bytes that are not there.
    FakeInput stream(Hex("FF FF FF FF FF FF FF FF 00 00 00 00 61 62"));
    Quarn::string text = "old";
    EXPECT_EQ(ThrownText([&] { stream >> text; }), "Generic Read");
    EXPECT_EQ(text, "old");
}

TEST(StringEncoding, ReadsBodiesUpTo64KiBAtOnceAndLongerOnesInPieces)
{
    FakeInput shorter(EncodedAs(std::string(65536, 'x')));
    std::string text;
    shorter >> text;
    EXPECT_EQ(shorter.Calls().back(), 65536U);

    FakeInput longer(EncodedAs(std::string(65537, 'x')));
    longer >> text;
    EXPECT_EQ(text, std::string(65537, 'x'));
    for (std::size_t const call : longer.Calls()) {
        EXPECT_LE(call, 65536U);
    }
}

TEST(StringEncoding, CutAnywhereIsAGenericRead)
{
    Bytes const whole = EncodedAs("abc");
    for (std::size_t size = 0; size < whole.size(); ++size) {
        FakeInput stream(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)));
        std::string text = "old";
        EXPECT_EQ(ThrownText([&] { stream >> text; }), "Generic Read") << size;
        EXPECT_EQ(text, "old") << size;
    }
}

TEST(StringEncoding, OutOfSpaceAnywhereIsAGenericWrite)
{
    Bytes const whole = EncodedAs("abc");
    for (std::size_t room = 0; room < whole.size(); ++room) {
        FakeOutput stream(false, room);
        EXPECT_EQ(ThrownText([&] { stream << "abc"; }), "Generic Write") << room;
        EXPECT_EQ(stream.Taken(), Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(room)));
    }
}

TEST(StringEncoding, InDumpModeIsTheCharactersAlone)
{
    FakeOutput stream(true);
    stream << "ab" << std::string("cd") << Quarn::string("ef") << "";
    EXPECT_EQ(stream.Taken(), Hex("61 62 63 64 65 66"));
}

TEST(StringEncoding, ATextFromANullStreamHasNoValidLength)
{
    Quarn::nullstream stream;
    Quarn::string text = "old";
    EXPECT_EQ(ThrownText([&] { stream >> text; }), "Invalid String Length");
    EXPECT_EQ(text, "old");
}

// A client's stream that writes texts its own way does so for plain C texts too.
class UpperOutput : public FakeOutput
{
public:
    using FakeOutput::operator<<;
    ostream& operator<<(Quarn::string const& text) override { return FakeOutput::operator<<(text.Upper()); }
};

TEST(StringEncoding, ACTextIsWrittenAsTheStringOfIt)
{
    UpperOutput stream;
    static_cast<Quarn::ostream&>(stream) << "ab";
    EXPECT_EQ(stream.Taken(), EncodedAs("AB"));
}

TEST(StringList, ReadsTheGoldenFile)
{
    Source streamSource(Golden("string_list.bin"));
    Quarn::memorystream& stream = streamSource;
    Quarn::StringList list(2, "old");
    EXPECT_EQ(&(stream >> list), &stream);
    EXPECT_EQ(std::vector<std::string>(list.begin(), list.end()),
              (std::vector<std::string>{"x", "", "last one"}));
    EXPECT_EQ(stream.tellg(), stream.GetSize());
}

TEST(StringList, OfCountZeroIsEmpty)
{
    Source streamSource("00 00 00 00");
    Quarn::memorystream& stream = streamSource;
    Quarn::StringList list(2, "old");
    stream >> list;
    EXPECT_TRUE(list.empty());
}

TEST(StringList, HoldsWhatWasReadBeforeTheEnd)
{
    Source streamSource("FF FF FF FF 01 00 00 00 FE FF FF FF 61 01 00 00 00");
    Quarn::memorystream& stream = streamSource;
    Quarn::StringList list(2, "old");
    EXPECT_EQ(ThrownText([&] { stream >> list; }), "Generic Read");
    ASSERT_EQ(list.size(), 1U);
    EXPECT_EQ(list.front(), "a");
}

TEST(StringList, FromANullStreamIsEmpty)
{
    Quarn::nullstream stream;
    Quarn::StringList list(2, "old");
    stream >> list;
    EXPECT_TRUE(list.empty());
}

} // namespace
