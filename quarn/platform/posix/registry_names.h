// (private) Names in the registry: how paths are divided, and the form in which names compare and sort.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Quarn::detail {

constexpr std::size_t MaxKeyName = 255;
constexpr std::size_t MaxValueName = 16383;

// A name, which may have any bytes, in the form that is equal for names that differ in case alone: upper-case
// UTF-16, the high byte of each unit first, so that bytes sort as the units do. Bytes that are no UTF-8 stand
// for themselves. This form is stored; it depends on no locale and no version of another library.
std::string FoldName(std::string_view name);

// The number of UTF-16 units of a folded name.
inline std::size_t FoldedLength(std::string const& folded)
{
    return folded.size() / 2;
}

// The names of a path, which are divided by one or more backslashes; one at its end does not count. Throws
// RegistryFailure for one at its beginning. Null is the empty path.
std::vector<std::string_view> SplitKeyPath(char const* path);

} // namespace Quarn::detail
