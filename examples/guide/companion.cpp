// A function of a companion library.
#include "companion.h"

namespace guide {

// [load a companion library]
// In cubic meters an hour; 0 where the companion library is not installed.
double FlowAt(double level)
{
    Quarn::Library* const curves = Quarn::Library::Create("PumpCurves", Win32Quarn::Win32LibFactory);
    double flow = 0;
    if (curves != nullptr && curves->Load()) {
        auto const curve = reinterpret_cast<double (*)(double)>(curves->GetFunction("FlowOfPump"));
        if (curve != nullptr) {
            flow = curve(level);
        }
    }
    Quarn::Library::Release(curves);
    return flow;
}
// [end]

} // namespace guide
