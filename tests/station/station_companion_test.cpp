// The module that the station loads while it runs.
#include "tests/station/station_fixture.h"

#include <string>

#include <gtest/gtest.h>

namespace {

class StationCompanion : public Station
{
protected:
    // Runs the station with these settings of its pipe.
    int RunWith(std::vector<std::string> const& pipe)
    {
        Quarn::PropertyCollection settings("Station", "Quarn_Properties");
        for (std::string const& value : pipe) {
            settings.SetValueString("Pipe:" + value, true);
        }
        EXPECT_TRUE(Quarn::Win32::XMLPropPersist(Settings()).Persist(&settings));
        return Run("");
    }
};

TEST_F(StationCompanion, KnowsThePressureThatIsLost)
{
    ASSERT_EQ(Run(""), 0) << m_output;
    EXPECT_TRUE(Says("pressure   0.27 bar lost, says StationHydraulics\n")) << m_output;
    ASSERT_EQ(RunWith({"Length=1,11,", "Speed=440,10,1,", "Companion=StationHydraulics"}), 0) << m_output;
    EXPECT_TRUE(Says("pressure   72.36 bar lost, says StationHydraulics\n")) << m_output;
}

TEST_F(StationCompanion, ThatIsMissingIsARemark)
{
    ASSERT_EQ(RunWith({"Companion=Missing"}), 0) << m_output;
    EXPECT_FALSE(Says("pressure")) << m_output;
    EXPECT_TRUE(Says("remark     the companion Missing could not be loaded\n")) << m_output;
    EXPECT_TRUE(Says("journal    1 record,")) << m_output;
    EXPECT_NE(Contents(m_data / "Station.log").find("the companion Missing could not be loaded\n"),
              std::string::npos);
}

TEST_F(StationCompanion, ThatIsAnotherModuleIsARemark)
{
    std::string const module = QUARN_OTHER_MODULE;
    ASSERT_EQ(RunWith({"Companion=" + module}), 0) << m_output;
    EXPECT_TRUE(Says("remark     the companion " + module + " has no PressureLoss\n")) << m_output;
}

} // namespace
