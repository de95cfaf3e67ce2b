// The station's companion module, loaded for as long as the object lives. The setting "Pipe:Companion" names
// it; without one it is StationHydraulics, beside the program.
#pragma once

#include "quarn/platform/library.h"
#include "quarn/properties/property_key.h"

#include "pipe.h"

#include <optional>

namespace station {

class Companion
{
public:
    explicit Companion(Quarn::PropertyKey const& settings);
    Companion(Companion const&) = delete;
    Companion& operator=(Companion const&) = delete;
    ~Companion();

    Quarn::string GetName() const { return m_library->GetLibName(); }
    bool IsLoaded() const { return m_library->IsLoaded(); }
    // The pressure in pascals that is lost in the pipe; nothing where the module or its function is missing.
    std::optional<double> PressureLoss(Pipe const& pipe) const;

private:
    Quarn::Library* m_library;
};

} // namespace station
