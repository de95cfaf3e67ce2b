#include "quarn/stream/null_stream.h"
#include "quarn/stream/text_reader.h"

#include "tests/platform/scratch_folder.h"
#include "tests/stream/fake_streams.h"
#include "tests/stream/line_model.h"
#include "tests/stream/run_length_compressor.h"

#include <algorithm>
#include <climits>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::TextStreamReader;
using std::ios_base;

template<typename Stream>
Stream Over(std::string& text)
{
    return Stream(reinterpret_cast<unsigned char*>(text.data()), static_cast<std::streamoff>(text.size()));
}

// A call of ReadLine and how the stream stands after it.
struct Call
{
    std::string line;
    bool result;
    std::streamoff position;
    unsigned int count;
    bool valid;
    bool operator==(Call const& other) const = default;
};

void PrintTo(Call const& call, std::ostream* out)
{
    *out << testing::PrintToString(call.line) << (call.result ? " true" : " false") << " at " << call.position
         << " count " << call.count << (call.valid ? "" : " invalid");
}

Call ReadOne(Quarn::istream& stream, TextStreamReader& reader)
{
    Quarn::string line = "what the line held before";
    bool const result = reader.ReadLine(line);
    return {line, result, stream.tellg(), stream.gcount(), stream.IsValidInput()};
}

// Reads a text to its end and two calls more, or four with the stream's state cleared.
std::vector<Call> ReadAll(Quarn::istream& stream)
{
    TextStreamReader reader(stream);
    std::vector<Call> calls;
    for (int ends = 0; ends != 4; ends += calls.back().count == 0 ? 1 : 0) {
        if (ends == 2) {
            stream.clearstate();
        }
        calls.push_back(ReadOne(stream, reader));
    }
    return calls;
}

// The lines alone: texts, with a ! behind those of a call that returned false.
std::vector<std::string> Lines(std::string text, std::size_t count)
{
    auto stream = Over<Quarn::memorystream>(text);
    TextStreamReader reader(stream);
    std::vector<std::string> lines;
    for (std::size_t i = 0; i != count; ++i) {
        Quarn::string line = "before";
        bool const result = reader.ReadLine(line);
        lines.push_back(line + (result ? "" : "!"));
    }
    return lines;
}

using Texts = std::vector<std::string>;

TEST(TextStreamReader, TheFirstLineEndIsTheLineEnd)
{
    EXPECT_EQ(Lines("ab\r\ncd\r\n", 4), (Texts{"ab", "cd", "", "!"}));
    EXPECT_EQ(Lines("ab\ncd", 3), (Texts{"ab", "cd", "!"}));
    EXPECT_EQ(Lines("ab\ncd\n", 3), (Texts{"ab", "cd", "!"}));
    EXPECT_EQ(Lines("ab\rcd\r", 3), (Texts{"ab", "cd", "!"}));
    EXPECT_EQ(Lines("a\n\rb\n\r", 4), (Texts{"a", "b", "", "!"}));
    EXPECT_EQ(Lines("\n\n", 3), (Texts{"", "", "!"}));
    EXPECT_EQ(Lines("", 2), (Texts{"!", "!"}));
}

TEST(TextStreamReader, TheOtherLineEndIsDroppedWhereverItStands)
{
    EXPECT_EQ(Lines("a\r\rb\n", 4), (Texts{"a", "", "b", "!"}));
    EXPECT_EQ(Lines("one\ntwo\rlines\r\r\nthree\n", 4), (Texts{"one", "twolines", "three", "!"}));
    EXPECT_EQ(Lines("one\rtwo\nlines\n\n\rthree\r", 4), (Texts{"one", "twolines", "three", "!"}));
}

TEST(TextStreamReader, AByteAbove127EndsTheCallWithFalseAndIsConsumed)
{
    EXPECT_EQ(Lines("ab\xC3\xA4"
                    "cd\nef\n",
                    5),
              (Texts{"ab!", "!", "cd", "ef", "!"}));
    EXPECT_EQ(Lines("\x80\xFF\x7F\n", 4), (Texts{"!", "!", "\x7F", "!"}));
    EXPECT_EQ(Lines("a\n\x80", 3), (Texts{"a", "!", "!"}));
    EXPECT_EQ(Lines("no line end yet\x80then one\n", 2), (Texts{"no line end yet!", "then one"}));
}

TEST(TextStreamReader, ZerosAndOtherControlCharactersAreText)
{
    std::string text;
    for (char c = 0; c != 127; ++c) {
        text += c == '\r' || c == '\n' ? 'x' : c;
    }
    EXPECT_EQ(Lines(text + "\n" + text, 3), (Texts{text, text, "!"}));
}

TEST(TextStreamReader, CarriageReturnAndLineFeedAreLineEnds)
{
    for (int c = CHAR_MIN; c <= CHAR_MAX; ++c) {
        EXPECT_EQ(TextStreamReader::IsCRLF(static_cast<char>(c)), c == 13 || c == 10) << c;
    }
}

TEST(TextStreamReader, EachReaderLearnsItsLineEndAndStartsWhereTheStreamStands)
{
    std::string text = "a\rb\nc\rd\n";
    auto stream = Over<Quarn::memorystream>(text);
    Quarn::string line;
    EXPECT_TRUE(TextStreamReader(stream).ReadLine(line));
    EXPECT_EQ(line, "a");
    EXPECT_TRUE(TextStreamReader(stream).ReadLine(line));
    EXPECT_EQ(line, "b");
    TextStreamReader reader(stream);
    EXPECT_TRUE(reader.ReadLine(line));
    TextStreamReader copy = reader;
    EXPECT_TRUE(copy.ReadLine(line));
    EXPECT_EQ(line, "d");
    EXPECT_EQ(stream.tellg(), std::streampos(8));
}

// A piece of text: line ends, zeros, high bytes, words; sometimes longer than a file's buffer.
std::string Piece(std::mt19937& random)
{
    static Texts const pieces = {"\r",
                                 "\n",
                                 "\r\n",
                                 "\n\r",
                                 "\r\r\n",
                                 "\x80",
                                 "\xC3",
                                 std::string(2, '\0'),
                                 "a word",
                                 "\x7F",
                                 "\xFF\n",
                                 "x",
                                 "12345678",
                                 "1234567\r",
                                 "sixteen letters."};
    unsigned const choice = random() % 40;
    if (choice < pieces.size()) {
        return pieces[choice];
    }
    std::size_t const length = choice == 39 ? 4000 + random() % 6000 : random() % 40;
    return std::string(length, static_cast<char>('a' + choice % 26));
}

std::string Mixture(std::mt19937& random, std::size_t size)
{
    static Texts const ends = {"\r", "\n", "\r\n", ""};
    std::string const& end = ends[random() % ends.size()];
    std::string text;
    while (text.size() < size) {
        text += Piece(random) + end;
    }
    return text;
}

TEST(TextStreamReader, BringsWhatTheModelBringsAndLeavesEveryStreamAsReadByteByByte)
{
    std::mt19937 random(1);
    ScratchFolder const folder;
    for (std::size_t i = 0; i != 100; ++i) {
        std::string text = Mixture(random, i % 10 == 0 ? 30000 : random() % 300);
        auto memory = Over<Quarn::memorystream>(text);
        std::vector<Call> const calls = ReadAll(memory);

        LineModel model(text);
        for (Call const& call : calls) {
            std::string line;
            ASSERT_EQ(model.ReadLine(line), call.result);
            ASSERT_EQ(line, call.line);
            ASSERT_EQ(call.position, static_cast<std::streamoff>(model.Position()));
            ASSERT_EQ(call.count, model.Count());
        }

        auto derived = Over<DerivedMemory>(text);
        ASSERT_EQ(ReadAll(derived), calls);

        std::string const path = folder.Make("text", text);
        Quarn::ifstream file(path.c_str(), ios_base::binary);
        DerivedFile derivedFile(path.c_str(), ios_base::binary);
        std::vector<Call> const fileCalls = ReadAll(file);
        ASSERT_EQ(ReadAll(derivedFile), fileCalls);
        ASSERT_EQ(fileCalls.size(), calls.size());
        for (std::size_t n = 0; n != calls.size(); ++n) {
            ASSERT_EQ(fileCalls[n].line, calls[n].line);
            ASSERT_EQ(fileCalls[n].result, calls[n].result);
        }
    }
}

// What is seen of a stream on which lines are read and everything else is done between them.
Texts ReadWithOtherOperations(Quarn::istream& stream, unsigned seed, std::size_t size)
{
    std::mt19937 random(seed);
    TextStreamReader reader(stream);
    Texts seen;
    unsigned char block[300] = {};
    for (int i = 0; i != 60; ++i) {
        unsigned value = 0;
        Quarn::string line;
        try {
            switch (random() % 12) {
            case 0:
                stream >> value;
                break;
            case 1:
                value = stream.peek();
                break;
            case 2:
                value = stream.readsome(block, random() % sizeof block);
                break;
            case 3:
                stream.putback('p');
                break;
            case 4:
                stream.unget();
                break;
            case 5:
                stream.seekg(static_cast<std::streamoff>(random() % (size + 1)));
                break;
            case 6:
                stream.seekg(random() % 20, random() % 4);
                break;
            case 7:
                stream.read(block, random() % sizeof block);
                break;
            case 8:
                value = static_cast<unsigned>(stream.sync());
                break;
            case 9:
                stream.clearstate();
                break;
            default:
                value = reader.ReadLine(line) ? 1 : 0;
                break;
            }
        } catch (Quarn::StreamException const& e) {
            line = e.GetString();
        }
        unsigned const count = stream.gcount();
        std::streamoff const position = random() % 2 == 0 ? std::streamoff(stream.tellg()) : -2;
        seen.push_back(line + " " + std::to_string(value) + " " + std::to_string(count) + " " +
                       std::to_string(position) + " " + std::to_string(stream.gcount()) +
                       (stream.IsValidInput() ? "" : " invalid") +
                       std::string(std::begin(block), std::end(block)));
    }
    return seen;
}

TEST(TextStreamReader, LinesAndOtherReadsMixAsOnStreamsThatAreReadByteByByte)
{
    std::mt19937 random(2);
    ScratchFolder const folder;
    for (unsigned seed = 0; seed != 100; ++seed) {
        std::string const text = Mixture(random, seed % 10 == 0 ? 20000 : random() % 600);
        std::string first = text;
        std::string second = text; // putback writes
        auto memory = Over<Quarn::memorystream>(first);
        auto derived = Over<DerivedMemory>(second);
        ASSERT_EQ(ReadWithOtherOperations(memory, seed, text.size()),
                  ReadWithOtherOperations(derived, seed, text.size()))
            << seed;
        ASSERT_EQ(first, second);

        std::string const path = folder.Make("text", text);
        ios_base::openmode const mode = seed % 2 == 0 ? ios_base::binary : ios_base::in;
        Quarn::ifstream file(path.c_str(), mode);
        DerivedFile derivedFile(path.c_str(), mode);
        ASSERT_EQ(ReadWithOtherOperations(file, seed, text.size()),
                  ReadWithOtherOperations(derivedFile, seed, text.size()))
            << seed;
    }
}

TEST(TextStreamReader, ReadsOnWhereAFileHasGrown)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("text", "one\ntw");
    Quarn::ifstream file(path.c_str(), ios_base::binary);
    TextStreamReader reader(file);
    EXPECT_EQ(ReadOne(file, reader), (Call{"one", true, 4, 1, true}));
    EXPECT_EQ(ReadOne(file, reader), (Call{"tw", true, -1, 0, false}));
    std::ofstream(path, ios_base::binary | ios_base::app) << "o\n";
    EXPECT_EQ(ReadOne(file, reader), (Call{"", false, -1, 0, false}));
    file.clearstate();
    EXPECT_EQ(ReadOne(file, reader), (Call{"o", true, 8, 1, true}));
    file.close();
    EXPECT_EQ(ReadOne(file, reader), (Call{"", false, -1, 0, false}));
}

TEST(TextStreamReader, OpensAFileAnewWithoutBytesOfTheOldOne)
{
    ScratchFolder const folder;
    Quarn::ifstream file(folder.Make("first", "one\ntwo\n").c_str(), ios_base::binary);
    TextStreamReader reader(file);
    EXPECT_EQ(ReadOne(file, reader).line, "one");
    file.close();
    file.open(folder.Make("second", "three\nfour\n").c_str(), ios_base::binary);
    EXPECT_EQ(ReadOne(file, reader), (Call{"three", true, 6, 1, true}));
}

TEST(TextStreamReader, AStreamThatIsReadByteByByteIsAskedForOneByteAtATime)
{
    FakeInput stream(Hex("61 62 0D 0A 63 0D"));
    TextStreamReader reader(stream);
    Quarn::string line;
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "ab");
    EXPECT_EQ(stream.Left(), 3U);
    EXPECT_TRUE(reader.ReadLine(line));
    EXPECT_EQ(line, "c");
    EXPECT_FALSE(reader.ReadLine(line));
    EXPECT_EQ(stream.Calls(), std::vector<std::size_t>(7, 1));
}

TEST(TextStreamReader, BytesPassTheCompressorAsInEveryRead)
{
    std::string const text = "ab\r\ncd\r";
    for (unsigned const minimum : {1U, 2U}) {
        RunLengthCompressor compressor(minimum);
        Quarn::memorystream stream(500);
        stream.SetOutputCompressor(&compressor);
        for (char const c : text) {
            stream.write(&c, 1);
        }
        std::streamoff const end = stream.tellp();
        EXPECT_EQ(end, static_cast<std::streamoff>(text.size()) * (minimum == 1 ? 10 : 1));
        stream.seekp(0, 0);
        stream.SetInputCompressor(&compressor);
        TextStreamReader reader(stream);
        EXPECT_EQ(ReadOne(stream, reader).line, "ab");
        EXPECT_EQ(ReadOne(stream, reader).line, "cd");
        EXPECT_EQ(stream.tellg(), std::streampos(end));
        EXPECT_EQ(compressor.decompressed, minimum == 1 ? static_cast<int>(text.size()) : 0);
    }
}

// Brings one 'a', then throws.
template<typename Exception>
class ThrowingInput : public FakeInput
{
public:
    explicit ThrowingInput(Exception const& exception) : FakeInput(Hex("61")), m_exception(exception) {}

protected:
    istream& input(unsigned char* buffer, unsigned long n) override
    {
        if (Left() == 0) {
            throw m_exception;
        }
        return FakeInput::input(buffer, n);
    }

private:
    Exception m_exception;
};

TEST(TextStreamReader, EveryStreamExceptionEndsTheData)
{
    ThrowingInput corrupted{Quarn::StreamException(Quarn::StreamException::CorruptedData)};
    ThrowingInput version{Quarn::StreamVersionException(2, 1, 0)};
    for (Quarn::istream* const stream :
         {static_cast<Quarn::istream*>(&corrupted), static_cast<Quarn::istream*>(&version)}) {
        TextStreamReader reader(*stream);
        Quarn::string line;
        EXPECT_TRUE(reader.ReadLine(line));
        EXPECT_EQ(line, "a");
        EXPECT_FALSE(reader.ReadLine(line));
        EXPECT_EQ(line, "");
    }
}

TEST(TextStreamReader, OtherExceptionsPassThroughAndTheLineHoldsWhatWasRead)
{
    ThrowingInput broken(std::logic_error("broken"));
    TextStreamReader reader(broken);
    Quarn::string line;
    EXPECT_THROW(reader.ReadLine(line), std::logic_error);
    EXPECT_EQ(line, "a");

    ThrowingInput ours(Quarn::QuarnException("broken"));
    EXPECT_THROW(TextStreamReader(ours).ReadLine(line), Quarn::QuarnException);
    EXPECT_EQ(line, "a");
}

TEST(TextStreamReader, AStreamThatBringsNothingGivesFalse)
{
    Quarn::nullstream stream;
    TextStreamReader reader(stream);
    Quarn::string line = "before";
    EXPECT_FALSE(reader.ReadLine(line));
    EXPECT_EQ(line, "");
}

TEST(TextStreamReader, AMissingFileGivesFalse)
{
    ScratchFolder const folder;
    Quarn::ifstream file((folder / "none").c_str(), ios_base::binary);
    TextStreamReader reader(file);
    EXPECT_EQ(ReadOne(file, reader), (Call{"", false, -1, 0, false}));
}

} // namespace
