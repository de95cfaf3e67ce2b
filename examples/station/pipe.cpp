#include "pipe.h"

#include "quarn/units/unit_enumerators.h"
#include "quarn/units/unit_names.h"

namespace station {

namespace {

using Distance = Quarn::Distance<float>;
using Velocity = Quarn::Velocity<float>;

constexpr char lengthRecord[] = "fi";
constexpr char speedRecord[] = "fii";

struct TimeUnit
{
    char const* name;
    double seconds;
};

TimeUnit TimeUnitOf(int unit)
{
    static constexpr TimeUnit units[] = {{"s", 1}, {"min", 60}, {"h", 3600}};
    return unit >= 0 && unit < 3 ? units[unit] : TimeUnit{"?", 1};
}

Quarn::string Describe(Distance const& distance)
{
    Quarn::string text;
    text.Format("%.2f %s", static_cast<double>(distance.value),
                (distance.value == 1 ? Win32Quarn::GetUnitsName(distance.unit)
                                     : Win32Quarn::GetUnitsNamePlural(distance.unit))
                    .c_str());
    return text;
}

// To convert is to ask how long it takes at one of the other unit in a time.
Distance In(Distance::Unit unit, Distance const& distance)
{
    return {unit, (distance / Velocity{{unit, 0}, 1}).value};
}

} // namespace

Pipe ReadPipe(Quarn::PropertyKey const& settings)
{
    Pipe pipe{{Distance::Meter, 120}, {{Distance::Meter, 0}, 1.5F}};
    float number = 0;
    int lengthUnit = 0;
    int timeUnit = 0;
    Quarn::PropertyValue const* value = settings.GetValue("Pipe:Length");
    if (value != nullptr && value->Readf(lengthRecord, &number, &lengthUnit)) {
        pipe.length = {static_cast<Distance::Unit>(lengthUnit), number};
    }
    value = settings.GetValue("Pipe:Speed");
    if (value != nullptr && value->Readf(speedRecord, &number, &lengthUnit, &timeUnit)) {
        pipe.speed = {{static_cast<Distance::Unit>(lengthUnit), timeUnit}, number};
    }
    return pipe;
}

void WritePipe(Quarn::PropertyKey& settings, Pipe const& pipe)
{
    Quarn::PropertyKey& key = *settings.AddSubKey("Pipe");
    key.AddValue("Length")->Writef(lengthRecord, &pipe.length.value, static_cast<int>(pipe.length.unit));
    key.AddValue("Speed")->Writef(speedRecord, &pipe.speed.value, static_cast<int>(pipe.speed.unit.distance),
                                  pipe.speed.unit.time);
}

double Meters(Quarn::Distance<float> const& distance)
{
    return static_cast<double>(In(Distance::Meter, distance).value);
}

double MetersPerSecond(Quarn::Velocity<float> const& speed)
{
    return Meters({speed.unit.distance, speed.value}) / TimeUnitOf(speed.unit.time).seconds;
}

Quarn::string Describe(Pipe const& pipe)
{
    Quarn::string text = Describe(pipe.length);
    Quarn::MediumDistanceUnitEnumerator usual;
    for (int i = 0; usual.Enumerate(i) != -1; ++i) {
        if (usual.Enumerate(i) != pipe.length.unit) {
            text += " = " + Describe(In(usual.Enumerate(i), pipe.length));
        }
    }
    Quarn::DTime<float> const time = pipe.length / pipe.speed;
    Quarn::string rest;
    rest.Format(", %.1f %s on the way at %.2f %s/%s", static_cast<double>(time.value),
                TimeUnitOf(time.unit).name, static_cast<double>(pipe.speed.value),
                Win32Quarn::GetUnitsAbbrev(pipe.speed.unit.distance).c_str(),
                TimeUnitOf(pipe.speed.unit.time).name);
    return text + rest;
}

} // namespace station
