// Which arguments make a stream, and which the compiler refuses.
#pragma once

#include <type_traits>

template<typename Stream, typename... Arguments>
constexpr bool Makes = std::is_constructible_v<Stream, Arguments...>;
