// Different objects in different threads: every thread gets the results that it gets alone.
#include "quarn/platform/guards.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stat_stream.h"
#include "quarn/stream/string_stream.h"
#include "quarn/time/time.h"
#include "quarn/units/unit_names.h"

#include "tests/platform/scratch_folder.h"
#include "tests/threads/in_threads.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

Quarn::string Text(int number, int round)
{
    Quarn::string text;
    text.Format("thread %d, round %05d, %.3f", number, round, number / 3.0);
    return text;
}

TEST(Threads, TextsAreFormattedIndependently)
{
    auto const work = [](int number) {
        std::string all;
        for (int round = 0; round < 200; ++round) {
            all += Text(number, round);
        }
        return all;
    };
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
}

TEST(Threads, RecordsAreWrittenCountedAndReadIndependently)
{
    auto const work = [](int number) {
        Quarn::memorystream stream(10000);
        Quarn::statstream count;
        for (int round = 0; round < 100; ++round) {
            stream << Text(number, round) << round;
            count << Text(number, round) << round;
        }
        stream.seekp(0, 0);
        std::string all = std::to_string(count.GetCRCValue()) + ":";
        for (int round = 0; round < 100; ++round) {
            Quarn::string text;
            int value = 0;
            stream >> text >> value;
            all += text + std::to_string(value);
        }
        return all;
    };
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
}

TEST(Threads, TimesBecomeTextIndependently)
{
    auto const work = [](int number) {
        std::string all;
        for (int round = 0; round < 100; ++round) {
            Quarn::Time time;
            time.SetUTC(1000000000 + number * 1000 + round);
            all += time.Format("%Y-%m-%d %H:%M:%S;");
        }
        return all;
    };
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
}

TEST(Threads, SettingsAreSavedAndLoadedIndependently)
{
    ScratchFolder const folder;
    auto const work = [&folder](int number) {
        Quarn::string const path = folder / ("settings" + std::to_string(number) + ".xml");
        std::string all;
        for (int round = 0; round < 3; ++round) {
            Quarn::PropertyCollection settings("Root", "Threads");
            for (int i = 0; i < 20; ++i) {
                settings.SetValue(Text(number, i), Quarn::PropertyData(Text(number, i + round)), true);
            }
            all += Quarn::Win32::XMLPropPersist(path).Persist(&settings) ? "saved " : "not saved ";
            Quarn::PropertyCollection loaded;
            all += Quarn::Win32::XMLPropPersist(path).Populate(&loaded) ? "loaded " : "not loaded ";
            for (int i = 0; i < 20; ++i) {
                all += loaded.GetValueString(Text(number, i), "?");
            }
        }
        return all;
    };
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
    EXPECT_EQ(together[0].find("not"), std::string::npos);
}

TEST(Threads, UnitNamesAreReadTogether)
{
    auto const work = [](int) {
        std::string all;
        for (int unit = 0; unit < 14; ++unit) {
            auto const distance = static_cast<Quarn::Distance<float>::Unit>(unit);
            all += Win32Quarn::GetUnitsName(distance) + Win32Quarn::GetUnitsAbbrev(distance);
        }
        return all;
    };
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
    EXPECT_EQ(together[0].substr(0, 6), "meterm");
}

TEST(Threads, AMutexLetsOneThroughAtATime)
{
    int counter = 0;
    auto const work = [&counter](int) {
        for (int round = 0; round < 50; ++round) {
            Win32Quarn::MutexWrapper const guard("QuarnThreadsTest");
            ++counter;
        }
        return std::string();
    };
    InEachThread(work);
    EXPECT_EQ(counter, ThreadCount * 50);
}

} // namespace
