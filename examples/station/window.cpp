#include "window.h"

namespace station {

namespace {

constexpr char record[] = "iiii";

} // namespace

Window ReadWindow(Quarn::PropertyKey const& settings)
{
    Window window;
    Quarn::PropertyValue const* const value = settings.GetValue("Window:Main");
    bool const complete =
        value != nullptr && value->Readf(record, &window.left, &window.top, &window.width, &window.height);
    return complete ? window : Window();
}

void WriteWindow(Quarn::PropertyKey& settings, Window const& window)
{
    settings.AddSubKey("Window")->AddValue("Main")->Writef(record, window.left, window.top, window.width,
                                                           window.height);
}

Window NextWindow(Window window)
{
    constexpr int step = 24;
    constexpr int steps = 10;
    window.left = (window.left + step) % (steps * step);
    window.top = (window.top + step) % (steps * step);
    return window;
}

} // namespace station
