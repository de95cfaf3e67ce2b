// The sample station as a user runs it: a program, its output, its files.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

std::string Contents(fs::path const& path)
{
    std::ifstream file(path, std::ios_base::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

class Station : public testing::Test
{
protected:
    void SetUp() override
    {
        m_folder = fs::path("station_test") / testing::UnitTest::GetInstance()->current_test_info()->name();
        fs::remove_all(m_folder);
        fs::create_directories(m_folder);
    }
    void TearDown() override { fs::remove_all(m_folder); }

    std::string Settings() const { return (m_folder / "station.xml").string(); }
    fs::path Journal() const { return m_folder / "station.journal"; }

    // Runs the program; its output, both kinds, is in m_output.
    int Run(std::string const& arguments)
    {
        fs::path const out = m_folder / "output.txt";
        std::string const program = fs::path(QUARN_STATION).make_preferred().string();
        int const status = std::system((program + " " + arguments + " > " + out.string() + " 2>&1").c_str());
        m_output = Contents(out);
        return status;
    }
    bool Says(std::string const& text) const { return m_output.find(text) != std::string::npos; }

    fs::path m_folder;
    std::string m_output;
};

TEST_F(Station, SecondRunContinuesTheFirst)
{
    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("Station 1, run 1")) << m_output;
    EXPECT_TRUE(Says("1 record,")) << m_output;
    auto const journalSize = fs::file_size(Journal());

    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("Station 1, run 2")) << m_output;
    EXPECT_TRUE(Says("the last run was at")) << m_output;
    EXPECT_TRUE(Says("2 records")) << m_output;
    EXPECT_GT(fs::file_size(Journal()), journalSize);

    Quarn::PropertyCollection settings;
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Populate(&settings));
    EXPECT_EQ(settings.GetValueInt32("Runs:Count", 0), 2);
}

TEST_F(Station, ReadsItsSettings)
{
    Quarn::PropertyCollection settings("Station", "Quarn_Properties");
    settings.SetValueString("Identity:Name=Pump house", true);
    settings.SetValueInt32("Limits:FreeDiskPercent=101", true);
    settings.SetValueInt32("Runs:Count=41", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));

    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("Pump house, run 42")) << m_output;
    EXPECT_TRUE(Says("free disk space is below its limit")) << m_output;
}

TEST_F(Station, RefusesForeignAndNewerRecordsWithTheLibrarysWords)
{
    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("Stream type check failed, expecting 0x53544e31 found 0x4c4f4731")) << m_output;
    EXPECT_TRUE(Says("Version check 3 exceeds 2 for id=0x53544E31. Software is out of date.")) << m_output;
}

TEST_F(Station, KeepsADamagedJournalAndGoesOnBehindItsWholeRecords)
{
    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    std::string bytes = Contents(Journal());
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    std::ofstream(Journal(), std::ios_base::binary) << bytes;

    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("was damaged")) << m_output;
    EXPECT_TRUE(Says("2 records")) << m_output;
    EXPECT_EQ(Contents(Journal().string() + ".damaged1"), bytes);
}

TEST_F(Station, KeepsSettingsThatCannotBeReadUnderASecondName)
{
    std::string const spoiled = "<Quarn_Properties><Key Name=\"Station\"><Value";
    std::ofstream(Settings(), std::ios_base::binary) << spoiled;

    ASSERT_EQ(Run("--settings " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("cannot be read")) << m_output;
    bool kept = false;
    for (fs::directory_entry const& entry : fs::directory_iterator(m_folder)) {
        kept = kept || (entry.path().extension() == ".xml" && Contents(entry.path()) == spoiled);
    }
    EXPECT_TRUE(kept);
    EXPECT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Exists());
}

TEST_F(Station, ShowsTheTreeOfASettingsFile)
{
    Quarn::PropertyCollection settings("Top", "Some_Settings");
    settings.SetValueInt32("A\\B:Number=-5", true);
    settings.SetValueString("A:Text=x y", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));

    ASSERT_EQ(Run("--show " + Settings()), 0) << m_output;
    EXPECT_TRUE(Says("Some_Settings")) << m_output;
    EXPECT_TRUE(Says("Number = -5 (int32)")) << m_output;
    EXPECT_TRUE(Says("Text = \"x y\" (string)")) << m_output;
}

TEST_F(Station, FailsWithAReasonWhereThereIsNothingToShow)
{
    EXPECT_NE(Run("--show " + (m_folder / "missing.xml").string()), 0);
    EXPECT_TRUE(Says("is not a settings file that can be read")) << m_output;
    EXPECT_NE(Run("--nonsense"), 0);
    EXPECT_TRUE(Says("usage:")) << m_output;
}

} // namespace
