// The station's records: listed, in another language, of older versions.
#include "quarn/stream/crc32.h"
#include "quarn/stream/memory_stream.h"

#include "tests/platform/process_text.h"
#include "tests/station/station_fixture.h"

#include <fstream>
#include <string>

#include <gtest/gtest.h>

namespace {

// A record as the station once wrote it: its time is a text, and from version 2 on it has remarks.
void AppendOldRecord(std::filesystem::path const& journal, std::uint32_t version, char const* time)
{
    Quarn::memorystream record(1024);
    record << Quarn::Stream::HeaderBlock{0x53544E31, version} << 77U << 1.0e9 << 4.0e9 << 25.0F << 3600U
           << static_cast<unsigned short>(2) << "Old station" << time;
    if (version >= 2) {
        record << 1U << "a remark";
    }
    auto const size = static_cast<std::uint32_t>(std::streamoff(record.tellp()));
    Quarn::CRC32 crc;
    crc.Add(record.GetMemory(), size);
    std::uint32_t const head[2] = {size, static_cast<std::uint32_t>(crc.GetValue())};
    std::ofstream file(journal, std::ios_base::binary | std::ios_base::app);
    file.write(reinterpret_cast<char const*>(head), sizeof head);
    file.write(reinterpret_cast<char const*>(record.GetMemory()), size);
}

TEST_F(Station, ListsItsJournalByTheFunctionThatWritesIt)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    ASSERT_EQ(Run(""), 0) << m_output;
    std::string const last = Load().GetValueString("Runs:Last", "");
    std::string const bytes = Contents(Journal());

    ASSERT_EQ(Run("--dump"), 0) << m_output;
    std::string const head = "Record\n    Header(ID=0x53544e31), Version=3\n    Run=";
    EXPECT_EQ(m_output.find(head + "1\n"), 0U) << m_output;
    std::size_t const second = m_output.find(head + "2\n");
    ASSERT_NE(second, std::string::npos) << m_output;
    // 2026-11-21 15:52:46 is 11/21/26 15:52:46 there.
    std::string const time =
        last.substr(5, 2) + "/" + last.substr(8, 2) + "/" + last.substr(2, 2) + last.substr(10);
    EXPECT_EQ(m_output.substr(m_output.find("    Name=", second)),
              "    Name=\"Station 1\"\n    Time=" + time +
                  ")\nLength\n    Value=120.000000\n    Units=0\nSpeed\n    Value=1.500000\n    DistUnit=0\n"
                  "    TimeUnit=0\nRemarks\n        String Count=0\n");
    EXPECT_EQ(Contents(Journal()), bytes);
}

TEST_F(Station, ListsTheWholeRecordsOfADamagedJournalAndSaysThatItIs)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    std::ofstream(Journal(), std::ios_base::binary | std::ios_base::app) << "more";
    std::string const bytes = Contents(Journal());

    EXPECT_NE(Run("--dump"), 0);
    EXPECT_TRUE(Says("    Run=1\n")) << m_output;
    EXPECT_TRUE(Says("is damaged behind these records")) << m_output;
    EXPECT_EQ(Contents(Journal()), bytes);
}

TEST_F(Station, HasNothingToListBeforeItsFirstRun)
{
    EXPECT_NE(Run("--dump"), 0);
    EXPECT_TRUE(Says("there is no record in")) << m_output;
    EXPECT_FALSE(std::filesystem::exists(Settings()));
    EXPECT_FALSE(std::filesystem::exists(Journal()));
}

TEST_F(Station, ReadsRecordsOfOlderVersions)
{
    AppendOldRecord(Journal(), 1, "2024-03-05 07:08:09");
    AppendOldRecord(Journal(), 2, "no time");
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("journal    3 records")) << m_output;
    EXPECT_TRUE(Says("the first of 2024-03-05 07:08:09 UTC")) << m_output;

    ASSERT_EQ(Run("--dump"), 0) << m_output;
    EXPECT_TRUE(Says("    Run=77\n")) << m_output;
    EXPECT_TRUE(Says("    Name=\"Old station\"\n    Time=03/05/24 07:08:09)\n"
                     "Length\n    Value=0.000000\n    Units=12\n"))
        << m_output;
    EXPECT_TRUE(Says("Remarks\n        String Count=1\na remark\n")) << m_output;
}

TEST_F(Station, DescribesItsPipeInItsUnitsAndTheUsualOnes)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("pipe       120.00 meters = 393.70 feet, 80.0 s on the way at 1.50 m/s\n")) << m_output;

    Quarn::PropertyCollection settings = Load();
    settings.SetValueString("Pipe:Length=1.0,11,", true);
    settings.SetValueString("Pipe:Speed=440.0,10,1,", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(
        Says("pipe       1.00 mile = 1609.34 meters = 5280.00 feet, 4.0 min on the way at 440.00 yd/min\n"))
        << m_output;
    EXPECT_EQ(Load().GetValueString("Pipe:Length", ""), "1.000000,11,");
    EXPECT_EQ(Load().GetValueString("Pipe:Speed", ""), "440.000000,10,1,");
}

TEST_F(Station, GoesOnWithAPipeThatMakesNoSense)
{
    Quarn::PropertyCollection settings("Station", "Quarn_Properties");
    settings.SetValueString("Pipe:Length=5,2000000000,", true);
    settings.SetValueString("Pipe:Speed=-1,-7,99,", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("pipe       5.00  = 5.00 meters = 16.40 feet, 0.0 ? on the way at -1.00 /?\n"))
        << m_output;
    ASSERT_EQ(Run("--dump"), 0) << m_output;
    EXPECT_TRUE(Says("    Units=2000000000\n")) << m_output;
}

// The decimal point is that of the language where the system knows a locale of its name.
TEST_F(Station, NamesUnitsInTheLanguageThatItIsTold)
{
    ASSERT_EQ(Run("--language DEU"), 0) << m_output;
    EXPECT_TRUE(Says("00 Meter = 393")) << m_output;
    EXPECT_TRUE(Says("70 " + ProcessText(u"Fu\u00df") + ", 80")) << m_output;
    EXPECT_EQ(Load().GetValueString("Pipe:Length", ""), "120.000000,0,");
    ASSERT_EQ(Run("--language DEU --dump"), 0) << m_output;
    EXPECT_TRUE(Says("    Run=1\n")) << m_output;

    ASSERT_EQ(Run("--language XXX"), 0) << m_output;
    EXPECT_TRUE(Says("393.70 feet")) << m_output;
    EXPECT_NE(Run("--language"), 0);
    EXPECT_TRUE(Says("usage:")) << m_output;
}

} // namespace
