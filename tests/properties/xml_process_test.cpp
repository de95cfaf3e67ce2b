// Several processes on one settings file, and savers that die.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "platform/child_process.h"
#include "tests/platform/scratch_folder.h"

#include <cstdlib>
#include <memory>
#include <string_view>

#include <gtest/gtest.h>

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::Win32::XMLPropPersist;

namespace {

constexpr std::size_t DocumentSize = 20000;

bool Save(Quarn::string const& path, char digit)
{
    PropertyCollection collection("Root", "Quarn_Properties");
    collection.SetValue("text", PropertyData(Quarn::string(DocumentSize, digit)), true);
    return XMLPropPersist(path).Persist(&collection);
}

// The file is always somebody's whole document.
void ExpectWhole(Quarn::string const& path)
{
    PropertyCollection collection;
    ASSERT_TRUE(XMLPropPersist(path).Populate(&collection));
    std::string const text = collection.GetValueString("text", "?");
    EXPECT_EQ(text, std::string(DocumentSize, text[0]));
}

TEST(XmlProcesses, SaversAndReadersSeeWholeDocuments)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", '0'));
    std::vector<std::unique_ptr<ChildProcess>> savers;
    for (char const* const digit : {"1", "2", "3"}) {
        savers.push_back(
            std::make_unique<ChildProcess>(std::vector<std::string>{"save", scratch / "a.xml", digit, "15"}));
    }
    ChildProcess reader({"load", scratch / "a.xml", "40"});
    for (int i = 0; i < 40; ++i) {
        ExpectWhole(scratch / "a.xml");
    }
    EXPECT_EQ(reader.Wait(), 0);
    for (auto const& saver : savers) {
        EXPECT_EQ(saver->Wait(), 0);
    }
    ExpectWhole(scratch / "a.xml");
    EXPECT_EQ(scratch.Names(), std::set<std::string>{"a.xml"});
}

TEST(XmlProcesses, AKilledSaverLeavesTheOldDocumentOrTheNew)
{
    ScratchFolder const scratch;
    ASSERT_TRUE(Save(scratch / "a.xml", '0'));
    for (unsigned int i = 0; i < 15; ++i) {
        std::filesystem::remove(std::string(scratch / "started"));
        ChildProcess saver({"save", scratch / "a.xml", "1", "1000000", scratch / "started"});
        ASSERT_TRUE(WaitForFile(scratch / "started"));
        ::Sleep(i * 2);
        saver.Kill();
        ExpectWhole(scratch / "a.xml");
    }
    std::filesystem::remove(std::string(scratch / "started"));
    ASSERT_TRUE(Save(scratch / "a.xml", '2'));
    EXPECT_EQ(scratch.Names(), std::set<std::string>{"a.xml"});
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    std::string_view const command = count > 3 ? arguments[1] : "";
    if (command == "save") {
        for (int i = std::atoi(arguments[4]); i > 0; --i) {
            if (!Save(arguments[2], arguments[3][0])) {
                return 1;
            }
            if (count > 5) {
                std::ofstream(arguments[5]) << "x";
            }
        }
        return 0;
    }
    if (command == "load") {
        for (int i = std::atoi(arguments[3]); i > 0; --i) {
            PropertyCollection collection;
            if (!XMLPropPersist(arguments[2]).Populate(&collection)) {
                return 1;
            }
            std::string const text = collection.GetValueString("text", "?");
            if (text != std::string(DocumentSize, text[0])) {
                return 2;
            }
        }
        return 0;
    }
    return -1;
}
