// The station's log: what an operator finds there after many runs.
#include "tests/station/station_fixture.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

class StationLog : public Station
{
protected:
    std::filesystem::path Path() const { return m_data / "Station.log"; }
    // The lines behind their dates and times.
    std::vector<std::string> Lines() const
    {
        std::vector<std::string> lines;
        std::istringstream log(Contents(Path()));
        for (std::string line; std::getline(log, line);) {
            EXPECT_EQ(line.substr(8, 3), " | ") << line; // 26-11-21 | 15:52:46 text
            EXPECT_EQ(line.substr(0, 20).find_first_not_of("0123456789-: |"), line.npos) << line;
            lines.push_back(line.substr(20));
        }
        return lines;
    }
};

TEST_F(StationLog, GrowsFromRunToRunUpToItsLevel)
{
    Quarn::PropertyCollection settings("Station", "Quarn_Properties");
    settings.SetValueString("Identity:Name=100% %s %n", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("log        " + Path().string() + "\n")) << m_output;

    settings = Load();
    settings.SetValueInt32("Log:Level=0", true);
    settings.SetValueInt32("Limits:FreeDiskPercent=101", true);
    ASSERT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
    ASSERT_EQ(Run(""), 0) << m_output;

    std::vector<std::string> lines = Lines();
    ASSERT_EQ(lines.size(), 7U);
    EXPECT_EQ(lines[2].find("record of "), 0U) << lines[2];
    lines.erase(lines.begin() + 2);
    EXPECT_EQ(lines, (std::vector<std::string>{"settings loaded", "100% %s %n started, run 1", "stopped",
                                               "100% %s %n started, run 2",
                                               "free disk space is below its limit", "stopped"}));
}

TEST_F(StationLog, ThatCannotBeWrittenStopsNothing)
{
    std::filesystem::create_directory(Path());
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("log        could not be written, code -2\n")) << m_output;
    EXPECT_TRUE(Says("journal    1 record,")) << m_output;
}

TEST_F(StationLog, TellsWhyARunFailed)
{
    std::filesystem::create_directory(Journal());
    EXPECT_NE(Run(""), 0);
    EXPECT_TRUE(Says("station: Generic Write\n")) << m_output;
    EXPECT_EQ(Lines().back(), "failed: Generic Write");
}

} // namespace
