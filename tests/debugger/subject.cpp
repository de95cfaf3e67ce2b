// What the debugger looks at in Look(): an object of every type that has a view, and memory that is none.
#include "quarn/quarn_util.h"

#include <cstdint>
#include <cstdio>
#include <cstring>

Quarn::string emptyText;
Quarn::string shortText = "north \"pump\"\n\x01\xE4";
Quarn::string longText(1000, 'x');
Quarn::string umlaut = "Stra\xC3\x9F"
                       "e";

Quarn::Time moment(2024, 3, 5, 22, 30, 1, 250, 7);
Win32Quarn::Time windowsMoment(moment);
Quarn::UTCTime now;
Quarn::TIME plainMoment = moment;
Quarn::Time noTime = Quarn::Time::NoTime;
Quarn::Time firstTime;
Quarn::Time wrongTime(2024, 13, 31, 24, 60, 0, 0, 0);
Quarn::TimeValue pauseTime(1, 2, 3, 4, 5, 6);
Quarn::TIMEVALUE plainPause = pauseTime;
Quarn::TimeValue wrongPause(1, 2147483640);
Quarn::TimeSpan span(-90);

Quarn::PropertyData textData = "north";
Quarn::PropertyData numberData = -5;
Quarn::PropertyData noData;
unsigned char const bytes[40] = {0x0A, 0xFF, 3};
Quarn::PropertyData binaryData(bytes, 2);
Quarn::PropertyData longData(bytes, 40);
Quarn::PropertyValue singleValue("Count", numberData, nullptr);
Quarn::PropertyCollection settings("Pumps", "Quarn_Properties");
Quarn::PropertyKey emptyKey("Empty", nullptr);
Quarn::PropertyKey circle("Circle", nullptr);
Quarn::PropertyKey damagedKey("Damaged", nullptr);

Quarn::Distance<float> distance{Quarn::Distance<float>::Mile, 2.5F};
Quarn::Distance<float> strangeDistance{static_cast<Quarn::Distance<float>::Unit>(77), 1};
Quarn::InverseDistance<float> inverse{Quarn::Distance<float>::Meter, 0.1F};
Quarn::Velocity<float> velocity{{Quarn::Distance<float>::Foot, 3}, -1};
Quarn::DTime<float> interval;
Quarn::Stream::HeaderBlock header{0x534D504C, 2};

Quarn::memorystream memoryStream(64);
unsigned char lentBlock[4] = {1, 2, 3, 4};
Quarn::memorystream lentStream(lentBlock, 4);
Quarn::memorystream noBlock;
Quarn::memorydumpstream memoryListing(300);
Quarn::statstream counter(true);
Quarn::statdumpstream listingCounter(false);
Quarn::nullstream nowhere;
Quarn::stringodumpstream collected;
Quarn::ifstream noFile;

// Bytes that were never an object, and none at all.
alignas(16) unsigned char garbage[1024];
alignas(16) unsigned char zeros[1024];

void Look(Quarn::ifstream& input, Quarn::ofstream& output, Quarn::PropertyKey const& key)
{
    static_cast<void>(input.tellg());
    static_cast<void>(output.tellp());
    static_cast<void>(key.GetName());
}

int main()
{
    settings.SetValueInt32("Runs:Count=3", true);
    settings.SetValueString("Operator\\Shift:Name=Smith", true);
    settings.ClearDirty();
    settings.SetValueString("Operator:Name=Jones", true);
    circle.AddSubKey("A")->AddSubKey("B");
    damagedKey.AddSubKey("A");
    damagedKey.AddSubKey("B")->AddSubKey("C");
    damagedKey.AddValue("v")->SetValue(1L);

    memoryStream << 5 << static_cast<unsigned short>(0x1234);
    std::memset(memoryStream.GetMemory() + 6, 0xEE, 58);
    noBlock.ReleaseMemory();
    std::memset(memoryListing.GetMemory(), 0, 300);
    counter << 5 << "text";
    listingCounter.dump("Pump", 3);
    collected << "north";
    std::memset(garbage, 0xCC, sizeof garbage);
    try {
        lentStream.seekp(9, 0);
    } catch (Quarn::StreamException const&) {
    }

    Quarn::ofstream output("views-subject.dat", std::ios_base::binary | std::ios_base::trunc);
    output << 5;
    Quarn::ofstream("views-subject-input.dat", std::ios_base::binary | std::ios_base::trunc) << 7 << 8;
    {
        Quarn::ifstream input("views-subject-input.dat", std::ios_base::binary);
        int number = 0;
        input >> number;
        Look(input, output, settings);
        input.close();
    }
    output.close();
    std::remove("views-subject.dat");
    std::remove("views-subject-input.dat");
}
