// What docs/guide.md shows does what the guide says. Its code is that of examples/guide/: a check of its own
// compares them.
#include "examples/guide/companion.h"
#include "examples/guide/records.h"
#include "examples/guide/services.h"
#include "examples/guide/settings.h"
#include "platform/child_process.h"
#include "tests/platform/scratch_folder.h"
#include "tests/registry/throw_away_key.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Distance = Quarn::Distance<float>;

class Guide : public testing::Test
{
protected:
    // The content without the carriage returns of text files on Windows.
    static std::string TextOf(std::string const& path)
    {
        std::string text = ContentOf(path);
        std::erase(text, '\r');
        return text;
    }

    static std::filesystem::path DataFolder()
    {
        return std::filesystem::path(std::getenv("QUARN_TEST_MACHINE")) / "data";
    }

    ScratchFolder const m_folder;
    std::string const m_path = m_folder / "file";
};

TEST_F(Guide, SavesARecordAndReadsIt)
{
    guide::Sample sample;
    sample.pump = 3;
    sample.level = 1.25;
    sample.remark = "valve stuck";
    ASSERT_TRUE(guide::SaveFile(m_path.c_str(), sample));
    guide::Sample read;
    EXPECT_EQ(guide::LoadFile(m_path.c_str(), read), "");
    EXPECT_EQ(read.pump, 3U);
    EXPECT_EQ(read.level, 1.25);
    EXPECT_EQ(read.remark, "valve stuck");
    EXPECT_FALSE(guide::SaveFile((m_folder / "no folder/file").c_str(), sample));
}

TEST_F(Guide, ReadsAnOlderRecordAndRefusesOthers)
{
    auto const write = [&](std::uint32_t id, std::uint32_t version) {
        Quarn::ofstream file(m_path.c_str(), std::ios_base::binary | std::ios_base::trunc);
        file << Quarn::Stream::HeaderBlock{id, version} << std::uint32_t{7} << 0.5;
    };
    guide::Sample sample;
    write(guide::sampleId, 1);
    EXPECT_EQ(guide::LoadFile(m_path.c_str(), sample), "");
    EXPECT_EQ(sample.pump, 7U);
    EXPECT_EQ(sample.level, 0.5);
    EXPECT_EQ(sample.remark, "");
    write(guide::sampleId, 3);
    EXPECT_EQ(guide::LoadFile(m_path.c_str(), sample), "written by a newer program");
    write(guide::sampleId + 1, 1);
    EXPECT_EQ(guide::LoadFile(m_path.c_str(), sample), "not a sample");
    write(guide::sampleId, 2);
    EXPECT_EQ(guide::LoadFile(m_path.c_str(), sample), "Generic Read");
    EXPECT_EQ(guide::LoadFile((m_folder / "none").c_str(), sample), "Generic Read");
    EXPECT_EQ(sample.pump, 7U);
}

TEST_F(Guide, ListsARecord)
{
    guide::Sample sample;
    sample.pump = 3;
    sample.level = 1.25;
    sample.remark = "valve stuck";
    ASSERT_TRUE(guide::ListFile(m_path.c_str(), sample));
    EXPECT_EQ(TextOf(m_path), TextOf(QUARN_TEST_DATA "/guide/listing.txt"));
    EXPECT_FALSE(guide::ListFile((m_folder / "no folder/file").c_str(), sample));
}

TEST_F(Guide, KeepsSettings)
{
    std::filesystem::path const file = DataFolder() / "Pumps.xml";
    std::filesystem::remove(file);
    EXPECT_EQ(guide::CountRuns(), 1);
    EXPECT_EQ(guide::CountRuns(), 2);
    EXPECT_EQ(guide::CountRuns(), 3);
    EXPECT_EQ(TextOf(file.string()), TextOf(QUARN_TEST_DATA "/guide/Pumps.xml"));
    std::filesystem::remove(file);
}

TEST_F(Guide, PacksAValue)
{
    Quarn::PropertyKey settings("Pumps", nullptr);
    guide::Window window{120, 80, 1.25, "Pumps"};
    EXPECT_EQ(guide::LoadWindow(settings, window), "there is none yet");
    ASSERT_TRUE(guide::SaveWindow(settings, window));
    EXPECT_EQ(settings.GetValue("Window")->GetValueString(), "120,80,1.250000,\"Pumps\",");
    guide::Window read;
    EXPECT_EQ(guide::LoadWindow(settings, read), "");
    EXPECT_EQ(read.left, 120);
    EXPECT_EQ(read.top, 80);
    EXPECT_EQ(read.zoom, 1.25);
    EXPECT_EQ(read.title, "Pumps");
    settings.GetValue("Window")->SetValue("120,80,");
    EXPECT_EQ(guide::LoadWindow(settings, read), "item 3 of the record is not as it should be");
    EXPECT_EQ(read.title, "Pumps");
}

TEST_F(Guide, SeedsSettingsFromTheRegistry)
{
    std::filesystem::path const file = DataFolder() / "Station2.xml";
    std::filesystem::remove(file);
    EXPECT_EQ(guide::StationName(), "a station without a name");
    std::filesystem::remove(file);
    Win32Quarn::LocalMachineKey key(R"(SOFTWARE\Acme\Station)");
    ASSERT_TRUE(key.Open("Identity"));
    ASSERT_TRUE(Win32Quarn::RegistryValue(key, "Name").Write(Quarn::string("Harbour")));
    EXPECT_EQ(guide::StationName(), "Harbour");
    RemoveTree(HKEY_LOCAL_MACHINE, R"(SOFTWARE\Acme)");
    EXPECT_EQ(guide::StationName(), "Harbour") << "from the file";
    std::filesystem::remove(file);
}

TEST_F(Guide, LogsTextsAndMessages)
{
    ASSERT_TRUE(guide::StartLog(m_path.c_str()));
    guide::LogText(2, "tank 100% full");
    guide::LogText(3, "dropped");
    guide::RunUnattended();
    Quarn::Int64ToUInt32(std::int64_t{1} << 40, "", 0);
    Quarn::SetMessageHandler(nullptr);
    EXPECT_EQ(Win32Quarn::Log::Close(), 0);
    std::string text = ContentOf(m_path);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }, '#');
    EXPECT_EQ(text, "##-##-## | tank ###% full\n"
                    "##-##-## | Int## Conversion Error, quarn/text/narrowing.h: ###\n");

    ASSERT_TRUE(guide::StartLog((m_folder / "not yet/log").c_str()));
    guide::LogText(0, "lost");
    m_folder.MakeFolder("not yet");
    guide::LogText(0, "written");
    EXPECT_EQ(Win32Quarn::Log::Close(), 0);
    EXPECT_EQ(ContentOf(m_folder / "not yet/log").substr(11), "written\n");
}

TEST_F(Guide, LoadsACompanionLibrary)
{
    EXPECT_EQ(guide::FlowAt(2), 0) << "it is not beside the tests";
    EXPECT_EQ(ChildProcess({"guide", "flow"}).Wait(), 0);
}

TEST_F(Guide, TranslatesUnits)
{
    EXPECT_EQ(guide::Describe({Distance::Mile, 2.5F}), "2.5 miles");
    EXPECT_EQ(ChildProcess({"guide", "DEU"}).Wait(), 0);
}

TEST_F(Guide, ConvertsUnits)
{
    Distance const feet = guide::Convert({Distance::Mile, 2}, Distance::Foot);
    EXPECT_EQ(feet.unit, Distance::Foot);
    EXPECT_NEAR(feet.value, 10560.0F, 0.01F);
}

TEST_F(Guide, FormatsAndComparesTimes)
{
    Quarn::Time const time(2024, 3, 5, 22, 30, 1, 0, 0);
    EXPECT_EQ(guide::BackupName(time), "pumps-20240305-223001.bak");
    EXPECT_FALSE(guide::IsDue(time, Quarn::Time(2024, 3, 6, 4, 30, 0, 999, 0)));
    EXPECT_TRUE(guide::IsDue(time, Quarn::Time(2024, 3, 6, 4, 30, 1, 0, 0)));
}

TEST_F(Guide, ReadsLines)
{
    WriteContent(m_path, "north\r\nsouth\r\n\r\nlast");
    EXPECT_EQ(guide::ReadNames(m_path.c_str()), (std::vector<Quarn::string>{"north", "south", "", "last"}));
    EXPECT_TRUE(guide::ReadNames((m_folder / "none").c_str()).empty());
}

TEST_F(Guide, LocksBetweenProcesses)
{
    {
        ChildProcess first({"guide", m_path});
        ChildProcess second({"guide", m_path});
        EXPECT_EQ(first.Wait(), 0);
        EXPECT_EQ(second.Wait(), 0);
    }
    EXPECT_EQ(guide::NextNumber(m_path.c_str()), 2 * 50 + 1);
}

} // namespace

int RunChildCommand(int count, char** arguments)
{
    if (count != 3 || arguments[1] != std::string_view("guide")) {
        return -1;
    }
    std::string_view const what = arguments[2];
    if (what == "DEU") {
        QuarnUtil::InitLanguage("DEU");
        return guide::Describe({Distance::Mile, 2}) == "2 Meilen" ? 0 : 1;
    }
    if (what == "flow") {
        std::filesystem::current_path(QUARN_PUMP_CURVES);
        return guide::FlowAt(2) == 72 ? 0 : 1;
    }
    for (int i = 0; i < 50; ++i) {
        guide::NextNumber(arguments[2]);
    }
    return 0;
}
