// The companion module StationHydraulics: what the water loses on its way. The station loads it while it
// runs, so that another formula needs no other station.
#include "hydraulics.h"

extern "C" double PressureLoss(double meters, double metersPerSecond)
{
    // After Darcy and Weisbach, for water in a smooth pipe of 100 mm.
    constexpr double friction = 0.02;
    constexpr double diameter = 0.1;
    constexpr double density = 1000;
    return friction * meters / diameter * density * metersPerSecond * metersPerSecond / 2;
}
