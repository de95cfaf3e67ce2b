#include "quarn/units/unit_enumerators.h"
#include "quarn/units/unit_names.h"
#include "quarn/units/velocity.h"

#include "file_commands.h"
#include "json.h"

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace tool {

namespace {

using Distance = Quarn::Distance<float>;

// All but the unknown one.
std::vector<Distance::Unit> Units()
{
    std::vector<Distance::Unit> units;
    Quarn::DistanceUnitEnumerator enumerator;
    for (int i = 0; enumerator.Enumerate(i) != Distance::Unknown; ++i) {
        units.push_back(enumerator.Enumerate(i));
    }
    return units;
}

// By any of its names, in letters of either case; those that are spelled exactly so come first.
Distance::Unit FindUnit(std::string const& name)
{
    Quarn::string const wanted = name;
    std::vector<Distance::Unit> const units = Units();
    for (bool const exactly : {true, false}) {
        for (Distance::Unit const unit : units) {
            for (Quarn::string const& known :
                 {Win32Quarn::GetUnitsName(unit), Win32Quarn::GetUnitsNamePlural(unit),
                  Win32Quarn::GetUnitsAbbrev(unit)}) {
                if (exactly ? known == wanted : known.Lower() == wanted.Lower()) {
                    return unit;
                }
            }
        }
    }
    throw Failure(WrongUsage, Quoted(name) + " is no unit; `quarn units` lists them");
}

// As the library does it: as long as it takes at one of the unit in a time.
float Convert(Distance const& distance, Distance::Unit unit)
{
    Quarn::Velocity<float> const one{{unit, 0}, 1};
    return (distance / one).value;
}

float ParseValue(std::string const& text)
{
    char* end = nullptr;
    float const value = std::strtof(text.c_str(), &end);
    if (text.empty() || *end != '\0' || !std::isfinite(value)) {
        throw Failure(WrongUsage, Quoted(text) + " is no number that a distance can have");
    }
    return value;
}

std::string Text(float value)
{
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%.7g", static_cast<double>(value));
    return text.data();
}

void ListUnits(bool json)
{
    if (!json) {
        Print(Paint(Colour::Strong, "UNIT        PLURAL       METERS    SHORT") + '\n');
        for (Distance::Unit const unit : Units()) {
            std::string line = Win32Quarn::GetUnitsName(unit);
            line.resize(12, ' ');
            line += Win32Quarn::GetUnitsNamePlural(unit);
            line.resize(25, ' ');
            line += Text(Convert({unit, 1}, Distance::Meter));
            line.resize(35, ' ');
            Print(line + Win32Quarn::GetUnitsAbbrev(unit) + '\n');
        }
        return;
    }
    Json output;
    output.Array();
    for (Distance::Unit const unit : Units()) {
        output.Object();
        output.Number("number", static_cast<int>(unit));
        output.Text("name", Win32Quarn::GetUnitsName(unit));
        output.Text("plural", Win32Quarn::GetUnitsNamePlural(unit));
        output.Text("abbreviation", Win32Quarn::GetUnitsAbbrev(unit));
        output.Real("meters", Convert({unit, 1}, Distance::Meter));
        output.End();
    }
    output.End();
}

} // namespace

ExitCode ConvertUnits(std::string const& value, std::string const& from, std::string const& to, bool json)
{
    if (value.empty() && from.empty()) {
        ListUnits(json);
        return Done;
    }
    Distance const distance{FindUnit(from), ParseValue(value)};
    Distance::Unit const unit = FindUnit(to);
    float const converted = Convert(distance, unit);
    if (!std::isfinite(converted)) {
        throw Failure(WrongUsage, "so many " + std::string(Win32Quarn::GetUnitsNamePlural(unit)) +
                                      " are beyond what a distance can hold");
    }
    if (json) {
        Json output;
        output.Object();
        output.Real("value", converted);
        output.Text("unit", Win32Quarn::GetUnitsName(unit));
        output.End();
    } else {
        Print(Text(distance.value) + ' ' + Win32Quarn::GetUnitsAbbrev(distance.unit) + " = " +
              Text(converted) + ' ' + Win32Quarn::GetUnitsAbbrev(unit) + '\n');
    }
    return Done;
}

} // namespace tool
