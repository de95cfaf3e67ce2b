// The streams that are made for listings, and what each makes of strings, numbers and lines.
#include "quarn/stream/dump_streams.h"
#include "quarn/stream/string_stream.h"

#include "tests/platform/scratch_folder.h"
#include "tests/stream/bytes.h"
#include "tests/stream/dump_record.h"
#include "tests/stream/makes.h"
#include "tests/stream/throws.h"

#include <ios>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

using Quarn::memorydumpstream;
using Quarn::sofdumpstream;
using Quarn::softextstream;
using Quarn::statdumpstream;
using Quarn::stringodumpstream;
using Quarn::stringostream;

static_assert(std::is_base_of_v<Quarn::ofstream, sofdumpstream> &&
              std::is_base_of_v<Quarn::ofstream, softextstream> &&
              std::is_base_of_v<Quarn::memorystream, memorydumpstream> &&
              std::is_base_of_v<Quarn::statstream, statdumpstream> &&
              std::is_base_of_v<stringostream, stringodumpstream> &&
              std::is_base_of_v<Quarn::ostream, stringostream>);
// No number and no address passes for a bool.
static_assert(Makes<sofdumpstream> && Makes<sofdumpstream, char const*, int>);
static_assert(!Makes<sofdumpstream, char const*> && !Makes<sofdumpstream, bool>);
static_assert(Makes<softextstream, bool> && Makes<softextstream, char const*, int, bool>);
static_assert(!Makes<softextstream> && !Makes<softextstream, char const*> && !Makes<softextstream, int>);
static_assert(!Makes<softextstream, char const*, int> && !Makes<softextstream, char const*, int, int>);
static_assert(Makes<memorydumpstream> && Makes<memorydumpstream, int> &&
              Makes<memorydumpstream, unsigned char*, int>);
static_assert(!Makes<memorydumpstream, char const*>);
static_assert(Makes<statdumpstream, bool> && !Makes<statdumpstream> && !Makes<statdumpstream, int> &&
              !Makes<statdumpstream, char const*>);
static_assert(Makes<stringostream, bool> && !Makes<stringostream> && !Makes<stringostream, int> &&
              !Makes<stringostream, char const*>);
static_assert(Makes<stringodumpstream> && !Makes<stringodumpstream, bool>);

std::string FileText(std::string const& path)
{
    return TextOf(FileBytes(path));
}

int const create = static_cast<int>(std::ios_base::binary | std::ios_base::trunc);

TEST(FileDumpStream, WritesTheGoldenListing)
{
    ScratchFolder const folder;
    std::string const path = folder / "listing.txt";
    {
        sofdumpstream stream(path.c_str(), create);
        ASSERT_TRUE(stream.IsValidOutput());
        Save(stream, EveryField());
    }
    EXPECT_EQ(FileText(path), TextOf(Golden("listing.txt")));
}

TEST(FileDumpStream, WithoutAFileIsOpenedLater)
{
    ScratchFolder const folder;
    std::string const path = folder / "listing.txt";
    sofdumpstream stream;
    EXPECT_FALSE(stream.IsValidOutput());
    stream.open(path.c_str(), create);
    stream.dump("Count", 5) << "text";
    stream.close();
    EXPECT_EQ(FileText(path), "Count=5\ntext");
}

TEST(FileDumpStream, FailsAsItsBaseDoes)
{
    sofdumpstream stream("no such folder/listing.txt", create);
    EXPECT_FALSE(stream.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { stream.dump("Count", 5); }), "Generic Write");
}

TEST(TextStream, WritesStringsWithoutTheirPrefixInBinaryMode)
{
    ScratchFolder const folder;
    std::string const path = folder / "text.txt";
    softextstream stream(path.c_str(), create, true);
    Quarn::ostream& base = stream;
    base << "a" << std::string("b\0c", 3) << Quarn::string("d\0e", 3) << "";
    stream << "f" << std::string("g") << Quarn::string("h");
    stream.close();
    EXPECT_EQ(FileText(path), std::string("ab\0cd\0efgh", 10));
}

TEST(TextStream, DeliberatelyIgnoresItsThirdArgumentAndIsInBinaryMode)
{
    for (bool const ignored : {false, true}) {
        ScratchFolder const folder;
        std::string const path = folder / "text.txt";
        softextstream stream(path.c_str(), create, ignored);
        stream.dump("Count", 5).dump("Name", "x\ty").dump("label").dumpLabel("not there");
        stream << 5;
        stream.close();
        EXPECT_EQ(FileBytes(path), Hex("05 00 00 00 78 09 79 6C 61 62 65 6C 05 00 00 00"));
    }
}

TEST(TextStream, TakesTheDumpModeAlone)
{
    ScratchFolder const folder;
    std::string const path = folder / "text.txt";
    softextstream stream(true);
    EXPECT_FALSE(stream.IsValidOutput());
    stream.open(path.c_str(), create);
    Save(stream, EveryField());
    stream << "more";
    stream.close();
    EXPECT_EQ(FileText(path), TextOf(Golden("listing.txt")) + "more");
    softextstream binary(false);
    binary.open(path.c_str(), create);
    binary.dump("Count", 5);
    binary.close();
    EXPECT_EQ(FileBytes(path), Hex("05 00 00 00"));
}

TEST(TextStream, WritesEveryOtherTypeAsItsBaseDoes)
{
    ScratchFolder const folder;
    std::string const path = folder / "text.txt";
    softextstream stream(path.c_str(), create, false);
    stream << Quarn::Stream::HeaderBlock{1, 2} << Quarn::Time() << true;
    stream.close();
    EXPECT_EQ(FileBytes(path), Hex("01 00 00 00 02 00 00 00 80 10 00 00 00 00 00 00 01"));
}

TEST(MemoryDumpStream, StoresTheGoldenListing)
{
    memorydumpstream stream(4096);
    Save(stream, EveryField());
    EXPECT_EQ(TextOf(Written(stream)), TextOf(Golden("listing.txt")));
}

TEST(MemoryDumpStream, StoresIntoTheCallersBlock)
{
    unsigned char block[8];
    memorydumpstream stream(block, sizeof block);
    stream.dump("Count", 5);
    EXPECT_EQ(std::string(block, block + sizeof block), "Count=5\n");
    EXPECT_EQ(ThrownText([&] { stream.dump("More", 6); }), "Generic Read");
}

TEST(MemoryDumpStream, WithoutABlockIsDeliberatelyInBinaryMode)
{
    memorydumpstream stream;
    stream.Allocate(16);
    stream.dump("Count", 5);
    EXPECT_EQ(Written(stream), Hex("05 00 00 00"));
}

TEST(StatDumpStream, CountsTheListing)
{
    Bytes const listing = Golden("listing.txt");
    Quarn::CRC32 crc;
    crc.Add(listing.data(), static_cast<unsigned long>(listing.size()));
    statdumpstream stream(true);
    Save(stream, EveryField());
    EXPECT_EQ(stream.GetSize(), listing.size());
    EXPECT_EQ(stream.GetCRCValue(), crc.GetValue());
    statdumpstream uncounted(false);
    Save(uncounted, EveryField());
    EXPECT_EQ(uncounted.GetSize(), listing.size());
    EXPECT_EQ(uncounted.GetCRCValue(), Quarn::CRC32().GetValue());
}

std::string Collected(stringostream const& stream)
{
    Quarn::string const& text = stream;
    char const* const address = stream;
    EXPECT_EQ(text, Quarn::string(address));
    return text;
}

TEST(StringStream, CollectsTexts)
{
    stringostream stream(false);
    EXPECT_EQ(Collected(stream), "");
    stream << "a" << std::string("b") << Quarn::string("c") << static_cast<char const*>(nullptr);
    EXPECT_EQ(Collected(stream), "abc");
    EXPECT_EQ(stream.tellp(), std::streampos(3));
}

TEST(StringStream, CutsStandardStringsAtAZeroByteAndItsOwnNot)
{
    stringostream stream(false);
    stream << std::string("a\0b", 3);
    Quarn::string const& text = stream;
    EXPECT_EQ(text, "a");
    stream << Quarn::string("c\0d", 3);
    EXPECT_EQ(text, std::string("ac\0d", 4));
}

TEST(StringStream, DeliberatelyShowsBinaryDataAsAMark)
{
    stringostream stream(false);
    stream << 5;
    EXPECT_EQ(Collected(stream), "<<binary data>>");
    stream.write("bytes", 5);
    stream << true;
    EXPECT_EQ(Collected(stream), "<<binary data>><<binary data>><<binary data>>");
}

TEST(StringStream, DumpsValuesAsItsModeSays)
{
    stringostream binary(false);
    binary.dump("A", 1).dump("B", "text").dump("label").dumpLabel("not there");
    EXPECT_EQ(Collected(binary), "<<binary data>>textlabel");
    stringostream dump(true);
    dump.dump("A", 1).dump("label");
    EXPECT_EQ(Collected(dump), "<<binary data>>label\n");
}

TEST(StringStream, AppendsItsOwnText)
{
    stringostream stream(false);
    stream << "ab";
    Quarn::string const& text = stream;
    stream << text;
    stream << static_cast<char const*>(stream);
    EXPECT_EQ(Collected(stream), "abababab");
}

TEST(StringStream, HasNoPlaces)
{
    stringostream stream(false);
    stream << "abc";
    EXPECT_EQ(&stream.flush(), &stream);
    EXPECT_EQ(&stream.seekp(0, 0), &stream);
    EXPECT_EQ(&stream.seekp(std::streampos(1)), &stream);
    stream.clearstate();
    stream.close();
    EXPECT_TRUE(stream.IsValidOutput());
    EXPECT_EQ(stream.get_path(), nullptr);
    stream << "d";
    EXPECT_EQ(Collected(stream), "abcd");
}

TEST(StringStream, CopiesHaveTextsOfTheirOwn)
{
    stringostream stream(false);
    stream << "a";
    stringostream copy = stream;
    copy << "b";
    EXPECT_EQ(Collected(stream), "a");
    EXPECT_EQ(Collected(copy), "ab");
    stream = copy;
    EXPECT_EQ(Collected(stream), "ab");
}

TEST(StringDumpStream, DeliberatelyShowsEveryLineAsBinaryData)
{
    stringodumpstream stream;
    stream.dump("A", 1);
    EXPECT_EQ(Collected(stream), "<<binary data>>");
}

TEST(StringDumpStream, CollectsIndentationAndLabels)
{
    stringodumpstream stream;
    Quarn::dump(stream, "L", List({"x", "y"}));
    EXPECT_EQ(Collected(stream), "L\n    <<binary data>>x\ny\n");
}

} // namespace
