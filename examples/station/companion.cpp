#include "companion.h"

#include "quarn/platform/win32_library.h"

#include "hydraulics.h"

#include <new>

namespace station {

Companion::Companion(Quarn::PropertyKey const& settings)
    : m_library(Quarn::Library::Create(settings.GetValueString("Pipe:Companion", "StationHydraulics"),
                                       Win32Quarn::Win32LibFactory))
{
    if (m_library == nullptr) {
        throw std::bad_alloc();
    }
    m_library->Load();
}

Companion::~Companion()
{
    Quarn::Library::Release(m_library);
}

std::optional<double> Companion::PressureLoss(Pipe const& pipe) const
{
    auto* const loss = reinterpret_cast<decltype(&::PressureLoss)>(m_library->GetFunction("PressureLoss"));
    if (loss == nullptr) {
        return {};
    }
    return loss(Meters(pipe.length), MetersPerSecond(pipe.speed));
}

} // namespace station
