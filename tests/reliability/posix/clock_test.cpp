// The clock at the ends of what anybody's types can hold.
#include "quarn/platform/log.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/time/win32_time.h"

#include "reliability/posix/system_calls.h"
#include "tests/properties/private_folders.h"

#include <climits>

namespace {

using Quarn::Win32::QuarnProperties;

constexpr std::time_t Second = 1;

// 1901, 1969, 1970, where backups begin to be counted, 2038, 2106, where their count begins anew, 2232 (the
// last second that a Linux clock can be set to), 9999 and further.
constexpr std::time_t Ends[] = {
    INT_MIN,    -Second,          0,        1208357069,        1208357070,
    INT_MAX,    INT_MAX + Second, UINT_MAX, UINT_MAX + Second, 1208357070 + UINT_MAX + Second,
    8277292036,
};

class ClockEnds : public PrivateFolders
{};

// The moment as the C library has it.
std::string Expected(std::tm* (*convert)(std::time_t const*, std::tm*), std::time_t moment)
{
    std::tm calendar{};
    convert(&moment, &calendar);
    char text[100];
    std::strftime(text, sizeof text, "%Y-%m-%d %H:%M:%S", &calendar);
    return text;
}

std::string TextOf(Quarn::Time const& time)
{
    Quarn::string text;
    text.Format("%d-%02d-%02d %02d:%02d:%02d", time.GetYear(), time.GetMonth(), time.GetDate(),
                time.GetHour(), time.GetMinute(), time.GetSecond());
    return text;
}

TEST_F(ClockEnds, CurrentTimesAreThoseOfTheCLibrary)
{
    for (std::time_t const moment : Ends) {
        StoppedClock const clock(moment);
        EXPECT_EQ(TextOf(Quarn::UTCTime()), Expected(::gmtime_r, moment)) << moment;
        EXPECT_EQ(TextOf(Quarn::LocalTime()), Expected(::localtime_r, moment)) << moment;
    }
}

TEST_F(ClockEnds, ConversionsGoThereAndBack)
{
    for (std::time_t const moment : Ends) {
        StoppedClock const clock(moment);
        Quarn::Time const utc = Quarn::UTCTime();
        Quarn::Time time = utc;
        time.ConvertToLocal();
        EXPECT_EQ(TextOf(time), Expected(::localtime_r, moment)) << moment;
        time.ConvertToUTC();
        EXPECT_EQ(TextOf(time), TextOf(utc)) << moment;
    }
}

TEST_F(ClockEnds, BackupsAreNamedModulo2To32AndRestored)
{
    for (std::time_t const moment : Ends) {
        StoppedClock const clock(moment);
        QuarnProperties store(m_file, "Store");
        store.SetValue("text", Quarn::PropertyData("kept"), true);
        ASSERT_TRUE(store.Persist(true)) << moment;
        char backup[MAX_PATH] = "";
        ASSERT_TRUE(store.BackupXML(backup)) << moment;
        Quarn::string name;
        name.Format("%s_%x.xml", m_base.c_str(), static_cast<unsigned int>(moment - 1208357070));
        EXPECT_EQ(std::filesystem::path(backup).filename(), name.c_str());
        EXPECT_TRUE(store.RestoreXML(backup)) << moment;
        EXPECT_EQ(store.GetValueString("text", ""), "kept");
    }
}

TEST_F(ClockEnds, SecondNamesCountOnFromTheLastNumberToTheFirst)
{
    StoppedClock const clock(1208357069); // ffffffff
    for (int i = 0; i < 3; ++i) {
        QuarnProperties store(m_file, "Store");
        store.SetAutoPersist(false);
        WriteContent(store.GetXMLFilePath(), "spoiled " + std::to_string(i));
        EXPECT_FALSE(store.Populate());
        EXPECT_TRUE(store.Persist(true));
    }
    EXPECT_EQ(Names(), (std::set<std::string>{m_file, m_base + "_0.xml", m_base + "_1.xml",
                                              m_base + "_ffffffff.xml"}));
}

TEST_F(ClockEnds, TheLogIsStampedWithTheDay)
{
    std::string const path = DataFolder() + "/" + m_base + ".log";
    for (std::time_t const moment : Ends) {
        StoppedClock const clock(moment);
        Win32Quarn::Log::SetOutputOptions(4); // the date in front
        ASSERT_EQ(Win32Quarn::Log::SetPath(path.c_str()), 0);
        EXPECT_EQ(Win32Quarn::Log::Output(0, "x"), 0) << moment;
        EXPECT_EQ(Win32Quarn::Log::Close(), 0);
        std::tm calendar{};
        ::localtime_r(&moment, &calendar);
        Quarn::string day;
        day.Format("%02d-%02d-%02d ", calendar.tm_year - 100, calendar.tm_mon + 1, calendar.tm_mday);
        EXPECT_EQ(ContentOf(path).substr(0, day.size()), day) << moment;
        std::filesystem::remove(path);
    }
}

} // namespace
