// (private) Whether functions may hold vectors of more than 16 bytes. GCC stores those that it has no
// register left for at their own alignment, and on Windows the stack has no more than 16.
#pragma once

namespace Quarn::detail {

#ifdef _WIN32
inline constexpr bool KeepsWideVectors = false;
#else
inline constexpr bool KeepsWideVectors = true;
#endif

} // namespace Quarn::detail
