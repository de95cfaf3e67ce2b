// The pipe behind the station's pump, as its settings describe it: how long it is, and how fast the water
// runs. Each is one packed record: the number, then its units.
#pragma once

#include "quarn/properties/property_key.h"
#include "quarn/text/string.h"
#include "quarn/units/distance.h"
#include "quarn/units/velocity.h"

namespace station {

struct Pipe
{
    Quarn::Distance<float> length;
    Quarn::Velocity<float> speed; // its time unit: 0 second, 1 minute, 2 hour
};

// What the settings do not tell is 120 m and 1.5 m/s.
Pipe ReadPipe(Quarn::PropertyKey const& settings);
void WritePipe(Quarn::PropertyKey& settings, Pipe const& pipe);

double Meters(Quarn::Distance<float> const& distance);
double MetersPerSecond(Quarn::Velocity<float> const& speed);

// The pipe for people: its length in the setting's unit and in the units that are usual for such lengths, and
// how long the water takes, in the language of the library's texts.
Quarn::string Describe(Pipe const& pipe);

} // namespace station
