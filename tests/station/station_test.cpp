// What the station keeps from run to run: its settings and their backups, its journal.
#include "quarn/platform/version_info.h"

#include "tests/station/station_fixture.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

TEST_F(Station, SecondRunContinuesTheFirst)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("Station 1, run 1")) << m_output;
    EXPECT_TRUE(Says("1 record,")) << m_output;
    auto const journalSize = fs::file_size(Journal());

    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("Station 1, run 2")) << m_output;
    EXPECT_TRUE(Says("the last run was at")) << m_output;
    EXPECT_TRUE(Says("2 records")) << m_output;
    EXPECT_GT(fs::file_size(Journal()), journalSize);

    EXPECT_EQ(Load().GetValueInt32("Runs:Count", 0), 2);
}

TEST_F(Station, ReadsItsSettings)
{
    Quarn::PropertyCollection settings("Station", "Quarn_Properties");
    settings.SetValueString("Identity:Name=Pump house", true);
    settings.SetValueInt32("Limits:FreeDiskPercent=101", true);
    settings.SetValueInt32("Runs:Count=41", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));

    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("Pump house, run 42")) << m_output;
    EXPECT_TRUE(Says("free disk space is below its limit")) << m_output;
}

TEST_F(Station, RefusesForeignAndNewerRecordsWithTheLibrarysWords)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("Stream type check failed, expecting 0x53544e31 found 0x4c4f4731")) << m_output;
    EXPECT_TRUE(Says("Version check 4 exceeds 3 for id=0x53544E31. Software is out of date.")) << m_output;
}

TEST_F(Station, KeepsADamagedJournalAndGoesOnBehindItsWholeRecords)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    std::string bytes = Contents(Journal());
    bytes.back() = static_cast<char>(bytes.back() ^ 1);
    std::ofstream(Journal(), std::ios_base::binary) << bytes;

    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("was damaged")) << m_output;
    EXPECT_TRUE(Says("2 records")) << m_output;
    EXPECT_EQ(Contents(Journal().string() + ".damaged1"), bytes);
}

TEST_F(Station, TellsItsNameAndVersionFromItsOwnVersionBlock)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    Win32Quarn::CVersionInfo const block(QUARN_STATION);
    ASSERT_EQ(block.GetProductName(), "Sample Station");
    EXPECT_EQ(m_output.find(block.GetProductName() + " " + block.GetProductVersion()), 0U) << m_output;
}

TEST_F(Station, IsSeededFromTheRegistryOnce)
{
    ASSERT_EQ(Run("--commission \"Pump house\" 101"), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("new, seeded from the registry")) << m_output;
    EXPECT_TRUE(Says("Pump house, run 1")) << m_output;
    EXPECT_TRUE(Says("free disk space is below its limit")) << m_output;

    ASSERT_EQ(Run("--commission Other 1"), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("Station.xml: loaded")) << m_output;
    EXPECT_TRUE(Says("Pump house, run 2")) << m_output;
}

TEST_F(Station, KeepsItsWindowAsOneRecord)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("window     640 x 480 at 0, 0")) << m_output;
    EXPECT_EQ(Load().GetValueString("Window:Main", ""), "24,24,640,480,");
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("window     640 x 480 at 24, 24")) << m_output;

    Quarn::PropertyCollection settings = Load();
    settings.SetValueString("Window:Main=5,6,7,", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("window     640 x 480 at 0, 0")) << m_output;
}

TEST_F(Station, BacksItsSettingsUpBeforeItChangesThem)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_FALSE(Says("backup")) << m_output;
    EXPECT_EQ(Backups().size(), 0U);
    std::string const content = Contents(Settings());
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_TRUE(Says("backup     " + Backups()[0].string())) << m_output;
    EXPECT_EQ(Contents(Backups()[0]), content);
}

// However fast the runs follow each other.
TEST_F(Station, HasOneBackupAtATime)
{
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(Run(""), 0) << m_output;
        EXPECT_EQ(Backups().size(), i == 0 ? 0U : 1U);
    }
}

TEST_F(Station, RestoresSettingsThatWereSpoiledByHand)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Backups().size(), 1U);
    std::string const content = Contents(Settings());
    std::ofstream(Settings(), std::ios_base::binary) << content.substr(0, content.size() / 2);

    // The second run's count went with the file; its backup is of the run before.
    std::string const backup = Backups()[0].string();
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("could not be read; restored from " + backup)) << m_output;
    EXPECT_TRUE(Says("Station 1, run 2")) << m_output;
    EXPECT_TRUE(Says("3 records")) << m_output;
    EXPECT_EQ(Load().GetValueInt32("Runs:Count", 0), 2);
    EXPECT_EQ(Backups().size(), 1U);
}

TEST_F(Station, PassesOverBackupsThatAreSpoiledToo)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    std::string const backup = Backups()[0].string();
    std::string const newer = (m_data / "Station_ffffffff.xml").string();
    std::ofstream(newer, std::ios_base::binary) << "spoiled";
    std::ofstream(Settings(), std::ios_base::binary) << "spoiled";
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("restored from " + backup)) << m_output;
    EXPECT_EQ(Contents(newer), "spoiled");
}

TEST_F(Station, KeepsSettingsThatCannotBeReadUnderASecondName)
{
    std::string const spoiled = "<Quarn_Properties><Key Name=\"Station\"><Value";
    std::ofstream(Settings(), std::ios_base::binary) << spoiled;

    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("could not be read; the file will be kept")) << m_output;
    ASSERT_EQ(Backups().size(), 1U);
    EXPECT_EQ(Contents(Backups()[0]), spoiled);
    EXPECT_EQ(Load().GetValueInt32("Runs:Count", 0), 1);
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
