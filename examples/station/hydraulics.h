// What a companion module of the station exports.
#pragma once

// The pressure in pascals that water loses in a pipe of this length at this speed.
extern "C" double PressureLoss(double meters, double metersPerSecond);
