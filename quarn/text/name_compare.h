// Comparison of names without regard to case. ASCII letters fold always. Other characters fold, one to one,
// to the lower case of the C locale that setlocale has set, where that locale decodes them; bytes that it
// does not decode stand for themselves. A character outside ASCII never equals one inside.
#pragma once

#include <cstdint>
#include <string_view>

namespace Quarn::detail {

bool EqualNames(std::string_view a, std::string_view b) noexcept;

// A hash that is the same for equal names. That of a name in ASCII holds as long as the process; that of any
// other name only as long as the locale. The two kinds of names are never equal.
struct NameHash
{
    std::uint64_t value;
    bool isAscii;
};
NameHash HashName(std::string_view name) noexcept;

// The name of the locale that decides about characters outside ASCII. Valid until the locale changes.
char const* NameLocale() noexcept;

} // namespace Quarn::detail
