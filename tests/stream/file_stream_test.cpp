#include "quarn/stream/file_stream.h"

#include "tests/platform/scratch_folder.h"
#include "tests/stream/bytes.h"
#include "tests/stream/throws.h"

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::ifstream;
using Quarn::ofstream;
using std::ios_base;

std::string ReadError(Quarn::istream& stream)
{
    return ThrownText([&] {
        char c = 0;
        stream >> c;
    });
}

TEST(FileStream, AMissingFileIsInvalidAndTheFirstReadThrows)
{
    ScratchFolder const folder;
    ifstream stream((folder / "none").c_str(), ios_base::binary);
    EXPECT_FALSE(stream.IsValidInput());
    EXPECT_EQ(ReadError(stream), "Generic Read");
    EXPECT_EQ(stream.tellg(), std::streampos(-1));
}

TEST(FileStream, AFileThatCannotBeMadeIsInvalidAndTheFirstWriteThrows)
{
    ScratchFolder const folder;
    ofstream stream((folder / "none/file").c_str(), ios_base::binary);
    EXPECT_FALSE(stream.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { stream << 1; }), "Generic Write");
}

TEST(FileStream, AFolderIsRefusedAtOpening)
{
    ScratchFolder const folder;
    std::string const path = folder.MakeFolder("folder");
    for (std::string const& name : {path, path + "/", std::string(".")}) {
        ifstream in(name.c_str(), ios_base::binary);
        EXPECT_FALSE(in.IsValidInput()) << name;
        ifstream both(name.c_str(), ios_base::binary | ios_base::out);
        EXPECT_FALSE(both.IsValidInput()) << name;
        ofstream out(name.c_str(), ios_base::binary | ios_base::app);
        EXPECT_FALSE(out.IsValidOutput()) << name;
    }
}

TEST(FileStream, EmptyAndNullPathsAreRefused)
{
    EXPECT_FALSE(ifstream("", ios_base::binary).IsValidInput());
    EXPECT_FALSE(ifstream(nullptr, ios_base::binary).IsValidInput());
    ofstream out(nullptr, ios_base::binary);
    EXPECT_FALSE(out.IsValidOutput());
    EXPECT_STREQ(out.get_path(), "");
}

TEST(FileStream, WithoutAFileItFailsUntilOneIsOpened)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    ofstream out;
    EXPECT_FALSE(out.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { out << 1; }), "Generic Write");
    out.open(path.c_str(), ios_base::binary);
    EXPECT_TRUE(out.IsValidOutput());
    out << 42;
    out.close();
    EXPECT_TRUE(out.IsValidOutput());

    ifstream in;
    EXPECT_FALSE(in.IsValidInput());
    EXPECT_EQ(ReadError(in), "Generic Read");
    in.open(path.c_str(), ios_base::binary);
    EXPECT_TRUE(in.IsValidInput());
    int value = 0;
    in >> value;
    EXPECT_EQ(value, 42);
}

TEST(FileStream, ReadsExactlyToTheEndAndThrowsOneByteLater)
{
    ScratchFolder const folder;
    ifstream stream(folder.Make("file", "abc").c_str(), ios_base::binary);
    unsigned char buffer[4] = {};
    stream.read(buffer, 3);
    EXPECT_EQ(stream.gcount(), 3U);
    EXPECT_TRUE(stream.IsValidInput());
    EXPECT_EQ(ReadError(stream), "Generic Read");
    EXPECT_FALSE(stream.IsValidInput());
}

TEST(FileStream, AShortReadBringsWhatThereIsAndStaysFailedUntilCleared)
{
    ScratchFolder const folder;
    ifstream stream(folder.Make("file", "abc").c_str(), ios_base::binary);
    unsigned char buffer[5] = {9, 9, 9, 9, 9};
    EXPECT_EQ(ThrownText([&] { stream.read(buffer, 5); }), "Generic Read");
    EXPECT_EQ(Bytes(buffer, buffer + 5), Hex("61 62 63 09 09"));
    EXPECT_EQ(stream.gcount(), 3U);
    stream.seekg(0, 0);
    EXPECT_EQ(ReadError(stream), "Generic Read");
    stream.clearstate();
    EXPECT_TRUE(stream.IsValidInput());
    stream.seekg(1, 0);
    char c = 0;
    stream >> c;
    EXPECT_EQ(c, 'b');
}

TEST(FileStream, GoesOnAtTheCurrentPositionAfterClearstate)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "ab");
    ifstream stream(path.c_str(), ios_base::binary);
    int value = 0;
    EXPECT_EQ(ThrownText([&] { stream >> value; }), "Generic Read");
    std::ofstream(path, ios_base::binary | ios_base::app) << "c";
    stream.clearstate();
    char c = 0;
    stream >> c;
    EXPECT_EQ(c, 'c');
}

TEST(FileStream, AWriterGoesOnAfterClearstate)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "");
    ofstream stream(path.c_str(), ios_base::binary);
    stream << 'a';
    stream.seekp(0, 3); // no direction
    EXPECT_FALSE(stream.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { stream << 'b'; }), "Generic Write");
    stream.clearstate();
    EXPECT_TRUE(stream.IsValidOutput());
    stream << 'c';
    stream.close();
    EXPECT_EQ(ContentOf(path), "ac");
}

// A class of its own, so that every write goes through output().
struct PlainFile : ofstream
{
    using ofstream::ofstream;
};

template<typename Random>
void WriteSomething(ofstream& file, unsigned int what, Random& random)
{
    std::size_t const size = random() % 5 == 0 ? random() % 20000 : random() % 100;
    switch (what) {
    case 0:
        file << static_cast<int>(random());
        break;
    case 1:
        file << static_cast<double>(random()) << 'x';
        break;
    case 2:
        file << Quarn::string(std::string(size, 't'));
        break;
    case 3:
        file.write(std::string(size, 'r').data(), static_cast<unsigned long>(size));
        break;
    case 4:
        file.seekp(static_cast<unsigned long>(random() % 30000), 0);
        break;
    default:
        file.flush();
        break;
    }
}

TEST(FileStream, AWriterIsInNoWayOtherThanOneWithoutABufferAtHand)
{
    for (unsigned int seed = 1; seed <= 6; ++seed) {
        ScratchFolder const folder;
        ofstream file((folder / "file").c_str(), ios_base::binary);
        PlainFile plain((folder / "plain").c_str(), ios_base::binary);
        std::mt19937 steps(seed);
        std::mt19937 values(seed);
        std::mt19937 sameValues(seed);
        for (int step = 0; step < 200; ++step) {
            unsigned int const what = steps() % 20 < 18 ? steps() % 4 : 4 + steps() % 2;
            WriteSomething(file, what, values);
            WriteSomething(plain, what, sameValues);
            if (what >= 4 || steps() % 10 == 0) {
                ASSERT_EQ(file.tellp(), plain.tellp()) << seed << ' ' << step;
            }
            if (what == 5) {
                ASSERT_EQ(ContentOf(folder / "file"), ContentOf(folder / "plain")) << seed << ' ' << step;
            }
        }
        file.close();
        plain.close();
        ASSERT_EQ(ContentOf(folder / "file"), ContentOf(folder / "plain")) << seed;
        ofstream more((folder / "file").c_str(), ios_base::binary | ios_base::app);
        more << 1 << 2;
        EXPECT_EQ(ContentOf(folder / "file").size(), ContentOf(folder / "plain").size());
        more.open((folder / "file").c_str(), ios_base::binary);
        EXPECT_FALSE(more.IsValidOutput()); // it is open already
        more.clearstate();
        more << 3;
        more.close();
        EXPECT_EQ(ContentOf(folder / "file").size(), ContentOf(folder / "plain").size() + 12);
    }
}

TEST(FileStream, TwoReadersAndAWriterShareAFile)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "1234");
    ifstream one(path.c_str(), ios_base::binary);
    ofstream writer(path.c_str(), ios_base::binary | ios_base::in);
    ifstream two(path.c_str(), ios_base::binary);
    EXPECT_TRUE(one.IsValidInput() && two.IsValidInput() && writer.IsValidOutput());
    writer << 0x64636261;
    writer.flush();
    int first = 0;
    int second = 0;
    one >> first;
    two >> second;
    EXPECT_EQ(first, 0x64636261);
    EXPECT_EQ(second, 0x64636261);
    // A second writer, too.
    ofstream other(path.c_str(), ios_base::binary | ios_base::app);
    EXPECT_TRUE(other.IsValidOutput());
}

TEST(FileStream, AReadOnlyFileIsReadAndRefusedForWritingWhereTheSystemRefusesIt)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "abc");
    MakeReadOnly(path);
    bool const refused = !std::ofstream(path, ios_base::app).is_open(); // the superuser may write
    ofstream out(path.c_str(), ios_base::binary | ios_base::app);
    EXPECT_EQ(out.IsValidOutput(), !refused);
    ifstream in(path.c_str(), ios_base::binary);
    char c = 0;
    in >> c;
    EXPECT_EQ(c, 'a');
}

TEST(FileStream, ModesAreTheStandardOnes)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "old");
    ofstream(path.c_str(), ios_base::binary | ios_base::app) << 'x';
    EXPECT_EQ(ContentOf(path), "oldx");
    ofstream(path.c_str(), ios_base::binary | ios_base::in) << 'n';
    EXPECT_EQ(ContentOf(path), "nldx");
    ofstream(path.c_str(), ios_base::binary | ios_base::in | ios_base::ate) << 'y';
    EXPECT_EQ(ContentOf(path), "nldxy");
    ofstream(path.c_str(), ios_base::binary | ios_base::trunc) << 't';
    EXPECT_EQ(ContentOf(path), "t");
    ofstream(path.c_str(), ios_base::binary).close();
    EXPECT_EQ(ContentOf(path), "");
    // Appending and truncating exclude each other, in the standard's rules.
    EXPECT_FALSE(ofstream(path.c_str(), ios_base::app | ios_base::trunc).IsValidOutput());
    // Reading is added to any mode, and `out` beside it does not truncate.
    std::ofstream(path, ios_base::binary) << "ab";
    ifstream in(path.c_str(), ios_base::binary | ios_base::out);
    EXPECT_EQ(in.peek(), static_cast<unsigned int>('a'));
}

TEST(FileStream, BinaryKeepsLineEndsAndTextModeIsTheSystemsOwn)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    ofstream(path.c_str(), ios_base::binary).write("a\nb\r\n\x1A", 6);
    EXPECT_EQ(ContentOf(path), "a\nb\r\n\x1A");
    ifstream in(path.c_str(), ios_base::binary);
    char text[6];
    in.read(text, 6);
    EXPECT_EQ(std::string(text, 6), "a\nb\r\n\x1A");

    ofstream(path.c_str(), ios_base::out).write("a\n", 2);
    std::string const standard = folder / "standard";
    std::ofstream(standard) << "a\n";
    EXPECT_EQ(ContentOf(path), ContentOf(standard));
}

TEST(FileStream, PathsAreNarrowText)
{
    ScratchFolder const folder;
    std::string const path = folder / "caf\xC3\xA9 1";
    ofstream out(path.c_str(), ios_base::binary);
    out << 42;
    out.close();
    EXPECT_TRUE(out.IsValidOutput());
    ifstream in(path.c_str(), ios_base::binary);
    int value = 0;
    in >> value;
    EXPECT_EQ(value, 42);
    in.close();
    EXPECT_EQ(std::remove(path.c_str()), 0);
}

TEST(FileStream, KnowsItsPath)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    ofstream out(path.c_str(), ios_base::binary);
    EXPECT_EQ(out.get_path(), path);
    out.close();
    std::string const other = folder / "other";
    out.open(other.c_str(), ios_base::binary);
    EXPECT_EQ(out.get_path(), other);
    EXPECT_STREQ(ofstream().get_path(), "");
}

TEST(FileStream, ForInputDeliberatelyTellsNoPath)
{
    ScratchFolder const folder;
    ifstream in(folder.Make("file").c_str(), ios_base::binary);
    EXPECT_EQ(in.get_path(), nullptr);
}

TEST(FileStream, OpensNoSecondFileBesideTheFirst)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "abc");
    ifstream in(path.c_str(), ios_base::binary);
    in.open(path.c_str(), ios_base::binary);
    EXPECT_FALSE(in.IsValidInput());
    in.close();
    in.open(path.c_str(), ios_base::binary);
    EXPECT_TRUE(in.IsValidInput());
    in.close();
    EXPECT_TRUE(in.IsValidInput());
    in.close();
    EXPECT_FALSE(in.IsValidInput());
    ofstream out;
    out.close();
    EXPECT_FALSE(out.IsValidOutput());
}

TEST(FileStream, SeeksInEveryDirection)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file", "0123456789");
    ifstream in(path.c_str(), ios_base::binary);
    in.seekg(3, 0);
    EXPECT_EQ(in.tellg(), std::streampos(3));
    in.seekg(2, 1);
    EXPECT_EQ(in.peek(), static_cast<unsigned int>('5'));
    in.seekg(0, 2);
    EXPECT_EQ(in.tellg(), std::streampos(10));
    in.seekg(std::streampos(7));
    EXPECT_EQ(in.peek(), static_cast<unsigned int>('7'));
    in.seekg(0, 3);
    EXPECT_FALSE(in.IsValidInput());

    ofstream out(path.c_str(), ios_base::binary | ios_base::in);
    out.seekp(3, 0) << 'x';
    out.seekp(1, 1) << 'y';
    EXPECT_EQ(out.tellp(), std::streampos(6));
    out.seekp(0, 2) << 'z';
    out.seekp(std::streampos(0)) << 'w';
    out.seekp(0, 9);
    EXPECT_FALSE(out.IsValidOutput());
    out.close();
    EXPECT_EQ(ContentOf(path), "w12x4y6789z");
}

TEST(FileStream, OffsetsAreTheLow32Bits)
{
    ScratchFolder const folder;
    ifstream in(folder.Make("file", "0123456789").c_str(), ios_base::binary);
    in.seekg(static_cast<unsigned long>(-1), 0);
    EXPECT_EQ(in.tellg(), std::streampos(0xFFFFFFFF));
    if constexpr (sizeof(long) > 4) {
        in.seekg(static_cast<unsigned long>(0x700000003), 0);
        EXPECT_EQ(in.tellg(), std::streampos(3));
    }
}

TEST(FileStream, LooksAheadAndPutsBack)
{
    ScratchFolder const folder;
    ifstream in(folder.Make("file", "a\xFE").c_str(), ios_base::binary);
    EXPECT_EQ(in.peek(), static_cast<unsigned int>('a'));
    unsigned char buffer[10] = {};
    EXPECT_EQ(in.readsome(buffer, 10), 2U);
    EXPECT_EQ(in.gcount(), 2U);
    EXPECT_EQ(buffer[1], 0xFE);
    in.unget();
    EXPECT_EQ(in.peek(), 0xFEU);
    unsigned char c = 0;
    in >> c;
    in.putback(0xFE);
    in >> c;
    EXPECT_EQ(c, 0xFE);
    EXPECT_EQ(in.sync(), 0);
    EXPECT_EQ(in.peek(), 0xFFFFFFFFU);
    EXPECT_EQ(in.gcount(), 0U);
}

TEST(FileStream, InDumpModeWritesTheTextAlone)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    ofstream(path.c_str(), ios_base::binary, true) << "ab" << Quarn::string("c");
    EXPECT_EQ(ContentOf(path), "abc");
    ofstream later(true);
    later.open(path.c_str(), ios_base::binary);
    later << "de";
    later.close();
    EXPECT_EQ(ContentOf(path), "de");
}

TEST(FileStream, FlushHandsBufferedBytesOn)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    ofstream out(path.c_str(), ios_base::binary);
    out << 'x';
    EXPECT_EQ(&out.flush(), &out);
    EXPECT_EQ(ContentOf(path), "x");
}

// A position beyond 4 GiB, in a file with a hole before it.
TEST(FileStream, ReachesPositionsBeyond4GiB)
{
    ScratchFolder const folder;
    std::string const path = folder / "file";
    std::streamoff const distant = 0x100000000 + 7;
    ofstream out(path.c_str(), ios_base::binary);
    out.seekp(std::streampos(distant));
    EXPECT_EQ(out.tellp(), std::streampos(distant));
    out << "far";
    EXPECT_EQ(out.tellp(), std::streampos(distant + 15));
    out.close();
    ASSERT_TRUE(out.IsValidOutput());

    ifstream in(path.c_str(), ios_base::binary);
    in.seekg(std::streampos(distant));
    Quarn::string text;
    in >> text;
    EXPECT_EQ(text, "far");
    EXPECT_EQ(in.tellg(), std::streampos(distant + 15));
    in.seekg(0xFFFFFFFF, 0);
    in.seekg(8 + 3, 1);
    EXPECT_EQ(in.tellg(), std::streampos(distant + 3));
    in.seekg(0, 2);
    EXPECT_EQ(in.tellg(), std::streampos(distant + 15));
    in.seekg(7, 0);
    EXPECT_EQ(in.peek(), 0U);
}

#ifndef _WIN32
TEST(FileStream, AFullDeviceShowsAtTheFlush)
{
    ofstream out("/dev/full", ios_base::binary);
    out << 1;
    EXPECT_TRUE(out.IsValidOutput());
    out.flush();
    EXPECT_FALSE(out.IsValidOutput());
    EXPECT_EQ(ThrownText([&] { out << 1; }), "Generic Write");
}

TEST(FileStream, AFullDeviceShowsAtTheClose)
{
    ofstream out("/dev/full", ios_base::binary);
    out << 1;
    out.close();
    EXPECT_FALSE(out.IsValidOutput());
}

TEST(FileStream, AFullDeviceShowsAtTheWriteThatEmptiesTheBuffer)
{
    ofstream out("/dev/full", ios_base::binary);
    EXPECT_EQ(ThrownText([&] {
                  for (int i = 0; i < 1000000; ++i) {
                      out << i;
                  }
              }),
              "Generic Write");
    EXPECT_FALSE(out.IsValidOutput());
    ofstream block("/dev/full", ios_base::binary);
    Bytes const bytes(1000000);
    EXPECT_EQ(ThrownText([&] { block.write(bytes.data(), 1000000); }), "Generic Write");
}
#endif

} // namespace
