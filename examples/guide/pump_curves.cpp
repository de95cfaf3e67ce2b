// The companion library itself, a module of its own: PumpCurves.dll or PumpCurves.so.

// [the companion library]
extern "C" double FlowOfPump(double level)
{
    return 12 + 30 * level;
}
// [end]
