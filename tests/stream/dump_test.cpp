// The dump family: lines in dump mode, values in binary mode, and how far in a line begins.
#include "quarn/stream/dump_streams.h"
#include "quarn/stream/stream_exception.h"

#include "tests/stream/captured_reports.h"
#include "tests/stream/dump_record.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/run_length_compressor.h"
#include "tests/stream/throws.h"

#include <climits>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Quarn::DumpStreamIndent;

// What `action` writes to a stream in dump mode.
template<typename Action>
std::string Listing(Action action)
{
    FakeOutput stream(true);
    action(stream);
    return TextOf(stream.Taken());
}

// The line of a value at depth 0.
template<typename... Values>
std::string Line(Values const&... values)
{
    return Listing([&](Quarn::ostream& stream) { EXPECT_EQ(&stream.dump(values...), &stream); });
}

// The bytes of a value in binary mode.
template<typename... Values>
Bytes Binary(Values const&... values)
{
    FakeOutput stream;
    EXPECT_EQ(&stream.dump(values...), &stream);
    return stream.Taken();
}

template<typename T>
concept Dumps = requires(Quarn::ostream& stream, T value)
{
    stream.dump("Label", value);
};

static_assert(Dumps<int> && Dumps<bool> && Dumps<char*> && Dumps<char const*> && Dumps<std::string>);
static_assert(!Dumps<void*> && !Dumps<int*> && !Dumps<unsigned char const*> && !Dumps<Quarn::ostream*>);

TEST(Dump, GivesTheGoldenListing)
{
    FakeOutput stream(true);
    Save(stream, EveryField());
    EXPECT_EQ(TextOf(stream.Taken()), TextOf(Golden("listing.txt")));
}

TEST(Dump, InBinaryModeStoresWhatTheOperatorsStore)
{
    FakeOutput dumped;
    Save(dumped, EveryField());
    FakeOutput stored;
    Store(stored, EveryField());
    EXPECT_EQ(dumped.Taken(), stored.Taken());
    EXPECT_EQ(dumped.Calls(), stored.Calls());
}

TEST(Dump, InBinaryModeStoresTheRawValues)
{
    EXPECT_EQ(Binary("Count", 5), Hex("05 00 00 00"));
    EXPECT_EQ(Binary("On", true), Hex("01"));
    EXPECT_EQ(Binary("C", 'A'), Hex("41"));
    EXPECT_EQ(Binary("C", static_cast<unsigned char>(255)), Hex("FF"));
    EXPECT_EQ(Binary("S", static_cast<short>(-2)), Hex("FE FF"));
    EXPECT_EQ(Binary("S", static_cast<unsigned short>(2)), Hex("02 00"));
    EXPECT_EQ(Binary("U", 5U), Hex("05 00 00 00"));
    EXPECT_EQ(Binary("L", -2L), Hex("FE FF FF FF"));
    EXPECT_EQ(Binary("L", 2UL), Hex("02 00 00 00"));
    EXPECT_EQ(Binary("F", 1.0F), Hex("00 00 80 3F"));
    EXPECT_EQ(Binary("D", 1.0), Hex("00 00 00 00 00 00 F0 3F"));
    EXPECT_EQ(Binary("D", 1.0L), Hex("00 00 00 00 00 00 F0 3F"));
    EXPECT_EQ(Binary("T", "a\tb"), Hex("FF FF FF FF 03 00 00 00 FC FF FF FF 61 09 62"));
    EXPECT_EQ(Binary("T", Quarn::string("a\tb")), Hex("FF FF FF FF 03 00 00 00 FC FF FF FF 61 09 62"));
    EXPECT_EQ(Binary("H", Quarn::Stream::HeaderBlock{0x00010002, 3}), Hex("02 00 01 00 03 00 00 00"));
    EXPECT_EQ(Binary("T", Quarn::Time()), Hex("80 10 00 00 00 00 00 00"));
}

TEST(Dump, OfALabelAloneWritesItInBinaryModeToo)
{
    EXPECT_EQ(Line("Label"), "Label\n");
    EXPECT_EQ(Binary("ab"), Hex("FF FF FF FF 02 00 00 00 FD FF FF FF 61 62"));
}

TEST(Dump, DumpLabelWritesNothingInBinaryMode)
{
    FakeOutput binary;
    EXPECT_EQ(&binary.dumpLabel("Label"), &binary);
    EXPECT_TRUE(binary.Taken().empty());
    EXPECT_EQ(Listing([](Quarn::ostream& stream) { EXPECT_EQ(&stream.dumpLabel("Label"), &stream); }),
              "Label\n");
}

TEST(Dump, NumbersAreWrittenAsPrintfDoes)
{
    EXPECT_EQ(Line("Count", 5), "Count=5\n");
    EXPECT_EQ(Line("Zero", 0), "Zero=0\n");
    EXPECT_EQ(Line("C", static_cast<char>(-128)), "C=-128\n");
    EXPECT_EQ(Line("C", 'x'), "C=120\n");
    EXPECT_EQ(Line("S", static_cast<short>(-7)), "S=-7\n");
    EXPECT_EQ(Line("U", 4000000000U), "U=4000000000\n");
    EXPECT_EQ(Line("L", -7L), "L=-7\n");
    EXPECT_EQ(Line("UL", 4000000000UL), "UL=4000000000\n");
    EXPECT_EQ(Line("F", 0.1F), "F=0.100000\n");
    EXPECT_EQ(Line("D", -1e20), "D=-100000000000000000000.000000\n");
    EXPECT_EQ(Line("LD", 2.5L), "LD=2.500000\n");
    EXPECT_EQ(Line("D", 1.7e308).size(), 2 + 309 + 7 + 1U);
    EXPECT_EQ(Line("On", true), "On=true\n");
    EXPECT_EQ(Line("On", false), "On=false\n");
}

TEST(Dump, OfALongBeyond32BitsIsReportedAndShowsWhatIsCut)
{
    if constexpr (sizeof(long) > 4) {
        CapturedReports const reports;
        EXPECT_EQ(Line("L", static_cast<long>(0x500000007)), "L=7\n");
        EXPECT_EQ(reports.Number(), 1);
        EXPECT_EQ(Line("UL", static_cast<unsigned long>(0x500000007)), "UL=7\n");
        EXPECT_EQ(reports.Number(), 2);
        EXPECT_EQ(Binary("L", static_cast<long>(0x500000007)), Hex("07 00 00 00"));
        EXPECT_EQ(reports.Number(), 3);
    } else {
        EXPECT_EQ(Line("L", LONG_MAX), "L=2147483647\n");
    }
}

TEST(Dump, TextsShowWhatCannotBePrintedAsByte98)
{
    EXPECT_EQ(Line("Name", "a\tb"), "Name=\"a\x98"
                                    "b\"\n");
    for (int c = 0; c < 256; ++c) {
        Quarn::string const text(1, static_cast<char>(c));
        std::string const shown(1, c >= 32 && c <= 127 ? static_cast<char>(c) : '\x98');
        EXPECT_EQ(Line("N", text), "N=\"" + shown + "\"\n") << c;
        if (c != 0) {
            EXPECT_EQ(Line("N", text.c_str()), "N=\"" + shown + "\"\n") << c;
        }
    }
    EXPECT_EQ(Line("N", "%s\"%d"), "N=\"%s\"%d\"\n");
}

TEST(Dump, LeavesTheTextItselfAsItIs)
{
    Quarn::string const text = "a\tb";
    Line("Name", text);
    EXPECT_EQ(text, "a\tb");
}

TEST(Dump, OfNoTextIsThatOfTheEmptyOne)
{
    EXPECT_EQ(Line("Name", static_cast<char const*>(nullptr)), "Name=\"\"\n");
    EXPECT_EQ(Line("Name", ""), "Name=\"\"\n");
    EXPECT_EQ(Binary("Name", static_cast<char const*>(nullptr)), Hex("FF FF FF FF 00 00 00 00 FF FF FF FF"));
}

TEST(Dump, OfAHeaderBlock)
{
    EXPECT_EQ(Line("Header", Quarn::Stream::HeaderBlock{0xABCDEF01, 4294967295}),
              "Header(ID=0xabcdef01), Version=4294967295\n");
}

TEST(Dump, OfATimeDeliberatelyEndsInALoneParenthesis)
{
    EXPECT_EQ(Line("Start", Quarn::Time(2024, 3, 5, 7, 8, 9, 123, 456)), "Start=03/05/24 07:08:09)\n");
    EXPECT_EQ(Line("Start", Quarn::Time(1970, 1, 1, 0, 0, 0, 0, 0)), "Start=01/01/70 00:00:00)\n");
    EXPECT_EQ(Line("Start", Quarn::Time(3000, 12, 31, 23, 59, 59, 0, 0)), "Start=12/31/00 23:59:59)\n");
}

TEST(Dump, LabelsAreShownAsTheyAre)
{
    EXPECT_EQ(Line("", 5), "=5\n");
    EXPECT_EQ(Line("%d%s%n", 5), "%d%s%n=5\n");
    EXPECT_EQ(Line("a\tb", 5), "a\tb=5\n");
}

TEST(Dump, LabelsOfLinesEndAtAZeroByteAndThoseOfTheirOwnDoNot)
{
    Quarn::string const label("a\0b", 3);
    EXPECT_EQ(Line(label, 5), "a=5\n");
    EXPECT_EQ(Line(label, "x"), "a=\"x\"\n");
    EXPECT_EQ(Line(label), std::string("a\0b\n", 4));
}

TEST(Dump, LabelsAndTextsOfAMebibyteComeWhole)
{
    Quarn::string const big(std::size_t{1} << 20U, 'x');
    EXPECT_EQ(Line(big, 5), big + "=5\n");
    EXPECT_EQ(Line(big, 0.5), big + "=0.500000\n");
    EXPECT_EQ(Line(big, true), big + "=true\n");
    EXPECT_EQ(Line(big, big), big + "=\"" + big + "\"\n");
    EXPECT_EQ(Line("N", big.c_str()), "N=\"" + big + "\"\n");
    EXPECT_EQ(Line(big, Quarn::Time(2024, 3, 5, 7, 8, 9, 0, 0)), big + "=03/05/24 07:08:09)\n");
    EXPECT_EQ(Line(big, Quarn::Stream::HeaderBlock{1, 2}), big + "(ID=0x00000001), Version=2\n");
    EXPECT_EQ(Line(big), big + "\n");
}

TEST(Dump, ALineIsOneRawWrite)
{
    FakeOutput stream(true);
    stream.dump("Count", 5);
    EXPECT_EQ(stream.Calls(), (std::vector<std::size_t>{8}));
}

TEST(Dump, IsNeverCompressed)
{
    RunLengthCompressor compressor;
    FakeOutput stream(true);
    stream.SetCompressor(&compressor);
    Save(stream, EveryField());
    EXPECT_EQ(TextOf(stream.Taken()), TextOf(Golden("listing.txt")));
    EXPECT_EQ(compressor.compressed, 0);
}

TEST(Dump, OfAListIndentsTheCountAndDeliberatelyNotTheStrings)
{
    Quarn::StringList const list = List({"x", "y"});
    EXPECT_EQ(Listing([&](Quarn::ostream& stream) {
                  EXPECT_EQ(&Quarn::dump(stream, "L", list), &stream);
                  stream.dump("After", 1);
              }),
              "L\n    String Count=2\nx\ny\nAfter=1\n");
    EXPECT_EQ(Listing([](Quarn::ostream& stream) { Quarn::dump(stream, "L", Quarn::StringList()); }),
              "L\n    String Count=0\n");
}

TEST(Dump, OfAListInBinaryModeReadsBack)
{
    Quarn::StringList const list = List({"x", "", "yz"});
    Quarn::memorystream stream(256);
    Quarn::dump(stream, "L", list);
    stream.seekg(0);
    Quarn::StringList back;
    stream >> back;
    EXPECT_EQ(back, list);
}

TEST(Dump, OfADurationHasItsTwoWords)
{
    Quarn::TimeValue const pause(1, 0, 0, 1, 0, 0);
    EXPECT_EQ(Listing([&](Quarn::ostream& stream) {
                  EXPECT_EQ(&Quarn::dump(stream, "Pause", pause), &stream);
                  stream.dump("After", 1);
              }),
              "Pause\n    Mantissa=1440\n    Fraction=35791394\nAfter=1\n");
    FakeOutput binary;
    Quarn::dump(binary, "Pause", pause);
    EXPECT_EQ(binary.Taken(), Hex("A0 05 00 00 22 22 22 02"));
}

TEST(Dump, OfADurationInBinaryModeReadsBack)
{
    Quarn::TimeValue const pause(0xFFFFFFFF, 0x80000001);
    Quarn::memorystream stream(8);
    Quarn::dump(stream, "Pause", pause);
    stream.seekg(0);
    Quarn::TimeValue back;
    stream >> back;
    EXPECT_TRUE(back == pause);
}

// ---- depth

std::string AtDepth(int depth)
{
    return Listing([&](Quarn::ostream& stream) {
        DumpStreamIndent const indent(stream, depth);
        stream.dump("Count", 5);
    });
}

TEST(DumpDepth, IsTheNumberOfSpacesBeforeTheLine)
{
    for (int const depth : {0, 1, 4, 127, 128, 129, 255, 256, 257, 300, 10000}) {
        EXPECT_EQ(AtDepth(depth), std::string(static_cast<std::size_t>(depth), ' ') + "Count=5\n");
    }
}

TEST(DumpDepth, BelowZeroIsNone)
{
    EXPECT_EQ(AtDepth(-1), "Count=5\n");
    EXPECT_EQ(AtDepth(INT_MIN), "Count=5\n");
}

TEST(DumpDepth, SpacesComeInPiecesOf128)
{
    FakeOutput stream(true);
    DumpStreamIndent const indent(stream, 300);
    stream.dump("Count", 5);
    EXPECT_EQ(stream.Calls(), (std::vector<std::size_t>{128, 128, 44, 8}));
}

TEST(DumpDepth, DoesNotConcernBinaryModeAndLabels)
{
    FakeOutput binary;
    DumpStreamIndent const indent(binary, 4);
    binary.dump("Count", 5);
    EXPECT_EQ(binary.Taken(), Hex("05 00 00 00"));
    EXPECT_EQ(Listing([](Quarn::ostream& stream) {
                  DumpStreamIndent const four(stream, 4);
                  stream.dump("Label");
                  stream.dumpLabel("Label");
              }),
              "Label\nLabel\n");
}

TEST(DumpDepth, EndsWithTheGuard)
{
    EXPECT_EQ(Listing([](Quarn::ostream& stream) {
                  {
                      DumpStreamIndent const outer(stream, 4);
                      stream.dump("A", 1);
                      {
                          DumpStreamIndent const inner(stream, 2);
                          stream.dump("B", 2);
                      }
                      stream.dump("C", 3);
                  }
                  stream.dump("D", 4);
              }),
              "    A=1\n      B=2\n    C=3\nD=4\n");
}

TEST(DumpDepth, ReleaseEndsItEarlyAndOnce)
{
    EXPECT_EQ(Listing([](Quarn::ostream& stream) {
                  DumpStreamIndent const outer(stream, 1);
                  {
                      DumpStreamIndent indent(stream, 4);
                      indent.Release();
                      stream.dump("A", 1);
                      indent.Release();
                      stream.dump("B", 2);
                  }
                  stream.dump("C", 3);
              }),
              " A=1\n B=2\n C=3\n");
}

TEST(DumpDepth, AddDeliberatelyAddsTheWholeAmountOnceMore)
{
    EXPECT_EQ(Listing([](Quarn::ostream& stream) {
                  {
                      DumpStreamIndent indent(stream, 4);
                      indent.Add(2);
                      stream.dump("A", 1); // 4 + 6
                  }
                  stream.dump("B", 2); // 10 - 6
              }),
              "          A=1\n    B=2\n");
}

TEST(DumpDepth, CopyOfAGuardDeliberatelySubtractsOnceMore)
{
    EXPECT_EQ(Listing([](Quarn::ostream& stream) {
                  DumpStreamIndent const base(stream, 8);
                  {
                      DumpStreamIndent const indent(stream, 4);
                      DumpStreamIndent const copy(indent); // NOLINT: adds nothing
                      stream.dump("A", 1);
                  }
                  stream.dump("B", 2);
              }),
              "            A=1\n    B=2\n");
}

TEST(DumpDepth, OutOfRangeCountsModulo2To32)
{
    FakeOutput stream(true);
    DumpStreamIndent most(stream, INT_MAX);
    DumpStreamIndent more(stream, INT_MAX); // -2
    stream.dump("A", 1);
    more.Release();
    most.Release();
    DumpStreamIndent two(stream, 2);
    two.Add(INT_MIN + 1); // the amount becomes INT_MIN + 3, the depth INT_MIN + 5
    stream.dump("B", 2);
    two.Release();
    stream.dump("C", 3);
    EXPECT_EQ(TextOf(stream.Taken()), "A=1\nB=2\n  C=3\n");
}

TEST(DumpDepth, GuardIsCopiedAndNotAssigned)
{
    static_assert(std::is_copy_constructible_v<DumpStreamIndent> &&
                  !std::is_copy_assignable_v<DumpStreamIndent> &&
                  std::has_virtual_destructor_v<DumpStreamIndent>);
}

// Refuses everything for as long as it is told to.
class Refusing : public FakeOutput
{
public:
    Refusing() : FakeOutput(true) {}
    bool refuses = true;

protected:
    ostream& output(unsigned char const* data, unsigned long n) override
    {
        if (refuses) {
            throw Quarn::StreamException(Quarn::StreamException::GenericWrite);
        }
        return FakeOutput::output(data, n);
    }
};

TEST(DumpDepth, EndsWhereTheStreamThrows)
{
    Refusing stream;
    EXPECT_EQ(ThrownText([&] { Quarn::dump(stream, "", List({"x"})); }), "Generic Write");
    EXPECT_EQ(ThrownText([&] {
                  DumpStreamIndent const indent(stream, 4);
                  stream.dump("A", 1);
              }),
              "Generic Write");
    stream.refuses = false;
    stream.dump("A", 1);
    EXPECT_EQ(TextOf(stream.Taken()), "A=1\n");
}

} // namespace
