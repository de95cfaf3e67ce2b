#include "quarn/units/unit_names.h"

#include "quarn/platform/module_state.h"
#include "quarn/platform/resource_strings.h"

#include <cstdint>
#include <iterator>

namespace Win32Quarn {

namespace {

// The ids of the texts, a place for each number from 0 to 13.
using Ids = unsigned int const[14];

constexpr Ids Names = {102, 103, 104, 105, 106, 107, 108, 109, 110, 111, 112, 113, 114, 114};
constexpr Ids Plurals = {115, 116, 117, 118, 119, 120, 121, 122, 123, 124, 125, 126, 114, 114};
// 139 is an abbreviation of "unknown", which is not used.
constexpr Ids Abbreviations = {127, 128, 129, 130, 131, 132, 133, 134, 135, 136, 137, 138, 114, 114};

Quarn::string Load(Ids const& ids, Quarn::Distance<float>::Unit unit)
{
    auto const index = static_cast<std::uint32_t>(unit);
    return index < std::size(ids) ? LoadQuarnString(ids[index], Quarn::detail::ResourceModule())
                                  : Quarn::string();
}

} // namespace

Quarn::string GetUnitsName(Quarn::Distance<float>::Unit unit)
{
    return Load(Names, unit);
}

Quarn::string GetUnitsNamePlural(Quarn::Distance<float>::Unit unit)
{
    return Load(Plurals, unit);
}

Quarn::string GetUnitsAbbrev(Quarn::Distance<float>::Unit unit)
{
    return Load(Abbreviations, unit);
}

} // namespace Win32Quarn
