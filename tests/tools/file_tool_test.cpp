// quarn crc, record, version, units, log, and the command line itself, as a user runs them.
#include "quarn/stream/file_stream.h"
#include "quarn/stream/header_block.h"

#include "json_reader.h"
#include "run_quarn.h"

#include <algorithm>
#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace {

using FileTool = QuarnTool;
using namespace std::string_literals;

TEST_F(FileTool, CrcPrintsChecksumSizeAndName)
{
    std::string const check = m_folder.Make("check", "123456789");
    std::string const empty = m_folder.Make("empty", "");
    EXPECT_EQ(Run({"crc", check, empty}).output, "cbf43926  9  " + check + "\n00000000  0  " + empty + "\n");
    Outcome const some = Run({"crc", m_folder / "missing", check, m_folder.Path(), "--json"}, 3);
    JsonValue const json = ReadJson(some.output);
    ASSERT_EQ(json.items.size(), 1U); // what can be read is done all the same
    EXPECT_EQ(json[0]["crc32"].text, "cbf43926");
    EXPECT_EQ(json[0]["size"].text, "9");
    EXPECT_TRUE(Has(some.errors, "missing: cannot be read: "));
}

TEST_F(FileTool, RecordShowsHeaderBlocksStringsAndBytes)
{
    std::string const file = m_folder / "record";
    {
        Quarn::ofstream stream(file.c_str(), std::ios_base::binary);
        stream << Quarn::Stream::HeaderBlock{0x534D504C, 2} << Quarn::string("ab\n\"");
        stream << Quarn::Stream::HeaderBlock{7, 0xFFFFFFFF};
    }
    EXPECT_EQ(Run({"record", "show", file, "--header", "0x18"}).output,
              file + ", 32 bytes\n\n"
                     "HEADER BLOCKS\n"
                     "00000000  id 0x534d504c, version 2\n"
                     "00000018  id 0x00000007, version 4294967295\n\n"
                     "STRINGS  (offset, length, text)\n"
                     "00000008         4  \"ab\\n\\\"\"\n\n"
                     "BYTES\n"
                     "00000000  4c 50 4d 53 02 00 00 00  ff ff ff ff 04 00 00 00  |LPMS............|\n"
                     "00000010  fb ff ff ff 61 62 0a 22  07 00 00 00 ff ff ff ff  |....ab.\"........|\n");
    EXPECT_TRUE(Has(Run({"record", "show", file, "--from", "20", "--bytes", "3"}).output,
                    "BYTES\n00000014  61 62 0a                                          |ab.|\n"
                    "... 9 bytes more; --from 23 shows them\n"));
    JsonValue const json = ReadJson(Run({"record", "show", file, "--json", "--header", "25"}, 1).output);
    EXPECT_EQ(json["size"].text, "32");
    EXPECT_EQ(json["headers"][0]["id"].text, "1397575756");
    EXPECT_EQ(json["headers"][1]["id"].text, "null"); // the file ends inside
    EXPECT_EQ(json["strings"][0]["text"].text, "ab\n\"");
}

// Where each string begins.
std::vector<std::string> Offsets(JsonValue const& json)
{
    std::vector<std::string> offsets;
    for (auto const& [name, item] : json["strings"].items) {
        offsets.push_back(item["offset"].text);
    }
    return offsets;
}

std::string Stored(std::string const& text)
{
    auto const size = static_cast<char>(text.size());
    return "\xFF\xFF\xFF\xFF"s + size + "\0\0\0"s + static_cast<char>(~size) + "\xFF\xFF\xFF"s + text;
}

TEST_F(FileTool, RecordFindsEveryStringAndNoOther)
{
    std::string const minusOne = "\xFF\xFF\xFF\xFF"s;
    // Two empty ones in a row; one behind a number -1; one in another; one of 255; wrong check words.
    std::string bytes = Stored("") + Stored("") + minusOne + Stored("x") + Stored("<" + Stored("in") + ">");
    std::string const long255(255, 'y');
    bytes += minusOne + "\xFF\0\0\0\0\xFF\xFF\xFF"s + long255;
    std::string const wrong =
        minusOne + "\2\0\0\0\3\xFF\xFF\xFF"s + "no" + minusOne + minusOne + "\0\0\0\0"s + "end";
    std::string const file = m_folder.Make("record", bytes + wrong + Stored("last").substr(0, 14));
    JsonValue const json = ReadJson(Run({"record", "show", file, "--json"}).output);
    auto const at = [&](std::size_t offset) { return std::to_string(offset); };
    EXPECT_EQ(Offsets(json), (std::vector<std::string>{at(0), at(12), at(28), at(41), at(54), at(69),
                                                       at(bytes.size() + wrong.size())}));
    EXPECT_EQ(json["strings"][5]["length"].text, "255");
    EXPECT_EQ(json["strings"][5]["all_shown"].text, "true");
    EXPECT_EQ(json["strings"][6]["whole"].text, "false");
    EXPECT_EQ(json["strings"][6]["text"].text, "la");
}

TEST_F(FileTool, RecordFindsStringsAcrossTheBordersOfItsPieces)
{
    constexpr std::size_t Piece = std::size_t{1} << 20;
    std::string bytes(3 * Piece, 'z');
    std::vector<std::string> expected;
    for (std::size_t const offset : {Piece - 30, Piece - 7, Piece + 9, 2 * Piece - 12, 2 * Piece + 4}) {
        bytes.replace(offset, 13, Stored("s"));
        expected.push_back(std::to_string(offset));
    }
    std::string const file = m_folder.Make("record", bytes);
    EXPECT_EQ(Offsets(ReadJson(Run({"record", "show", file, "--json"}).output)), expected);
}

TEST_F(FileTool, TextsThatATerminalWouldObeyAreEscaped)
{
    std::string const file =
        m_folder.Make("record", Stored("\x1B[2J\xC2\x9B") + Stored("\xFF\xFE") + "12345678");
    Outcome const shown = Run({"record", "show", file});
    EXPECT_FALSE(Has(shown.output, "\x1B"));
    EXPECT_TRUE(Has(shown.output, "\"\\x1b[2J")) << shown.output;
    JsonValue const json = ReadJson(Run({"record", "show", file, "--json"}).output);
    EXPECT_EQ(json["strings"][0]["text"].text.substr(0, 4), "\x1B[2J");
    // What is no text in the code page keeps its bytes.
    JsonValue const& second = json["strings"][1];
    EXPECT_TRUE(second["text"].text != "\xEF\xBF\xBD\xEF\xBF\xBD" || second["text_bytes"].text == "fffe");
}

TEST_F(FileTool, VersionPrintsTheBlocksOfModulesOfBothSystems)
{
    Outcome const own = Run({"version", QUARN_LIBRARY});
    EXPECT_TRUE(Has(own.output, "  ProductName      QuarnUtil\n")) << own.output;
    JsonValue const json = ReadJson(Run({"version", "--json", QUARN_LIBRARY, QUARN_LIBRARY}).output);
    EXPECT_EQ(json[1]["CompanyName"].text, "Tessary");
    EXPECT_EQ(json[1]["Comments"].kind, JsonValue::Missing); // it has none
    Outcome const none = Run({"version", m_folder.Make("text"), m_folder / "missing"}, 3);
    EXPECT_TRUE(Has(none.errors, "text: there is no version block in it\n"));
    EXPECT_TRUE(Has(none.errors, "missing: there is no such file\n"));
}

TEST_F(FileTool, UnitsConvertsByAnyNameOfAUnit)
{
    EXPECT_EQ(Run({"units", "2.5", "Miles", "km"}).output, "2.5 mi = 4.02336 km\n");
    EXPECT_EQ(Run({"units", "-3", "foot", "IN"}).output, "-3 ft = -36 in\n");
    JsonValue const json = ReadJson(Run({"units", "1", "angstrom", "meters", "--json"}).output);
    EXPECT_EQ(json["value"].text, "1e-10");
    JsonValue const list = ReadJson(Run({"units", "--json"}).output);
    ASSERT_EQ(list.items.size(), 12U);
    EXPECT_EQ(list[5]["abbreviation"].text, "\xC3\x85");
    EXPECT_EQ(list[11]["meters"].text, "1609.344");
    EXPECT_TRUE(Has(Run({"units"}).output, "mile        miles        1609.344  mi\n"));
    EXPECT_TRUE(Has(Run({"units", "1", "cubit", "m"}, 2).errors, "\"cubit\" is no unit"));
    Run({"units", "1e39", "m", "m"}, 2);
    Run({"units", "one", "m", "m"}, 2);
    Run({"units", "1e38", "km", "angstrom"}, 2);
    Run({"units", "1", "m"}, 2);
}

TEST_F(FileTool, LogShowsTheLastLines)
{
    std::string const file = m_folder.Make("log", "one\r\ntwo\nthree\x1B\nfour");
    EXPECT_EQ(Run({"log", file, "--no-follow", "--lines", "2"}).output, "three\\x1b\nfour\n");
    EXPECT_EQ(Run({"log", file, "--no-follow"}).output, "one\ntwo\nthree\\x1b\nfour\n");
    EXPECT_EQ(Run({"log", file, "--lines", "0", "--no-follow"}).output, "");
    EXPECT_EQ(ReadJson(Run({"log", file, "--lines=1", "--no-follow", "--json"}).output).text, "four");
    std::string many;
    for (int i = 0; i < 30'000; ++i) {
        many += std::to_string(i) + '\n';
    }
    std::string const tail =
        Run({"log", m_folder.Make("many", many), "--no-follow", "--lines", "20000"}).output;
    EXPECT_EQ(tail, many.substr(many.find("\n10000\n") + 1));
    Run({"log", m_folder / "missing", "--no-follow"}, 3);
}

TEST_F(FileTool, LogFollowsWhatIsWritten)
{
    std::string const file = m_folder.Make("log", "before\n");
    Outcome outcome;
    std::atomic<bool> ended = false;
    std::thread follower([&] {
        outcome = RunQuarn({"log", file, "--lines", "1", "--end-after", "4"});
        ended = true;
    });
    // However late the program begins, there are more lines to come; each is written in two parts.
    std::string all = "before\n";
    for (int i = 0; !ended && i < 5'000; ++i) {
        for (std::string const& part : {"line " + std::to_string(i), std::string("\n")}) {
            std::ofstream(file, std::ios_base::binary | std::ios_base::app) << part;
            all += part;
            ::Sleep(10);
        }
    }
    follower.join();
    EXPECT_EQ(outcome.code, 0) << outcome.errors;
    EXPECT_EQ(std::count(outcome.output.begin(), outcome.output.end(), '\n'), 4) << outcome.output;
    EXPECT_TRUE(Has('\n' + all, '\n' + outcome.output)) << outcome.output;
}

TEST_F(FileTool, WrongUsageHasItsExitCodeAndAReason)
{
    EXPECT_TRUE(Has(Run({}, 2).errors, "--help"));
    Run({"nonsense"}, 2);
    Run({"settings"}, 2);
    Run({"settings", "get", "a.xml"}, 2);
    Run({"settings", "get", "a.xml", "b", "c"}, 2);
    Run({"settings", "set", "a.xml", "b", "c", "--type", "float"}, 2);
    Run({"record", "show", "a", "--header", "-1"}, 2);
    Run({"record", "show", "a", "--bytes", "many"}, 2);
    EXPECT_TRUE(Has(Run({"registry", "show", "Software"}, 2).errors, "does not begin with a root"));
}

TEST_F(FileTool, HelpHasExamples)
{
    EXPECT_TRUE(Has(Run({"--help"}).output, "Exit codes: 0 done;"));
    EXPECT_TRUE(
        Has(Run({"settings", "set", "--help"}).output, "quarn settings set Station.xml Runs:Count 0\n"));
    EXPECT_EQ(Run({"--version"}).output, "quarn " QUARN_VERSION "\n");
}

} // namespace
