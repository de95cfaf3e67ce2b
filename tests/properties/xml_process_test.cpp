// Several processes on one settings file, and savers that die.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "platform/child_process.h"
#include "tests/platform/scratch_folder.h"
#include "tests/scale.h"

#include <cstdlib>
#include <map>
#include <memory>
#include <string_view>

#include <gtest/gtest.h>

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

namespace {

constexpr std::size_t DocumentSize = 20000;

bool Save(Quarn::string const& path, char digit, int number)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue("text", PropertyData(Quarn::string(DocumentSize, digit)), true);
    collection.SetValue("number", PropertyData(number), true);
    return XMLPropPersist(path).Persist(&collection);
}

// Windows replaces no file that somebody reads, and a save gives up after two seconds of readers.
bool SaveInTheEnd(Quarn::string const& path, char digit, int number)
{
#if defined(_WIN32)
    constexpr int Attempts = 20;
#else
    constexpr int Attempts = 1;
#endif
    for (int i = 0; i < Attempts; ++i) {
        if (Save(path, digit, number)) {
            return true;
        }
    }
    return false;
}

struct Saved
{
    char digit = '?'; // of a file that is nobody's whole document
    long number = -1;
};

Saved Load(Quarn::string const& path)
{
    PropertyCollection collection;
    if (!XMLPropPersist(path).Populate(&collection)) {
        return {};
    }
    std::string const text = collection.GetValueString("text", "?");
    return {text == std::string(DocumentSize, text[0]) ? text[0] : '?',
            collection.GetValueInt32("number", -1)};
}

void ExpectWhole(Quarn::string const& path)
{
    EXPECT_NE(Load(path).digit, '?');
}

// Each saver's own saves follow one another, so nobody sees an earlier one again.
TEST(XmlProcesses, EightSaversAndReadersSeeWholeDocuments)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", '0', 0));
    std::string const count = std::to_string(Times("QUARN_SAVES", 25));
    std::vector<std::unique_ptr<ChildProcess>> savers;
    for (char const* const digit : {"1", "2", "3", "4", "5", "6", "7", "8"}) {
        savers.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{"save", scratch / "a.xml", digit, count}));
    }
    std::vector<std::unique_ptr<ChildProcess>> readers;
    for (int i = 0; i < 2; ++i) {
        readers.push_back(std::make_unique<ChildProcess>(
            std::vector<std::string>{"load", scratch / "a.xml", scratch / "end"}));
    }
    for (auto const& saver : savers) {
        EXPECT_EQ(saver->Wait(), 0);
    }
    scratch.Make("end");
    for (auto const& reader : readers) {
        EXPECT_EQ(reader->Wait(), 0);
    }
    Saved const last = Load(scratch / "a.xml");
    EXPECT_NE(last.digit, '?');
    EXPECT_EQ(last.number, 1) << "somebody's last";
    EXPECT_EQ(scratch.Names(), (std::set<std::string>{"a.xml", "end"}));
    ShowFigure("8 savers of ", count, " settings files each, 2 readers, 0 torn");
}

TEST(XmlProcesses, AKilledSaverLeavesTheOldDocumentOrTheNew)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", '0', 0));
    for (unsigned int i = 0; i < 15; ++i) {
        std::filesystem::remove(std::string(scratch / "started"));
        ChildProcess saver({"save", scratch / "a.xml", "1", "1000000", scratch / "started"});
        ASSERT_TRUE(WaitForFile(scratch / "started"));
        ::Sleep(i * 2);
        saver.Kill();
        ExpectWhole(scratch / "a.xml");
    }
    std::filesystem::remove(std::string(scratch / "started"));
    ASSERT_TRUE(Save(scratch / "a.xml", '2', 0));
    EXPECT_EQ(scratch.Names(), std::set<std::string>{"a.xml"});
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    std::string_view const command = count > 3 ? arguments[1] : "";
    if (command == "save") { // counts down to 1
        for (int i = std::atoi(arguments[4]); i > 0; --i) {
            if (!SaveInTheEnd(arguments[2], arguments[3][0], i)) {
                return 1;
            }
            if (count > 5) {
                std::ofstream(arguments[5]) << "x";
            }
        }
        return 0;
    }
    if (command == "load") { // until the file exists
        std::map<char, long> numbers;
        while (::GetFileAttributesA(arguments[3]) == INVALID_FILE_ATTRIBUTES) {
            Saved const saved = Load(arguments[2]);
            auto const last = numbers.emplace(saved.digit, saved.number).first;
            if (saved.digit == '?' || saved.number > last->second) {
                return saved.digit == '?' ? 1 : 2;
            }
            last->second = saved.number;
            ::Sleep(5);
        }
        return 0;
    }
    return -1;
}
