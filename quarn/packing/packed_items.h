// What Quarn::Pack (packing/pack.h) and Quarn::Unpack (packing/unpack.h) take: the values that hold records,
// the types of their items, and the two forms of a 64-bit number. Nothing here has state; any thread may use
// it.
#pragma once

#include "quarn/properties/property_value.h"
#include "quarn/registry/registry_value.h"
#include "quarn/text/string.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

namespace Quarn {

// A 64-bit number as an item of its own type, since there are two forms of it: the upper half first (letter T
// of PropertyValue::Writef), and the lower half first (letter v).
struct HighFirst
{
    std::uint64_t value = 0;
};
struct LowFirst
{
    std::uint64_t value = 0;
};

// What Pack writes to, a settings value or a registry value, and what Unpack reads from: a settings value may
// be constant then.
template<typename T>
concept PackTarget = !std::is_const_v<T> &&
                     (std::derived_from<T, PropertyValue> || std::derived_from<T, Win32Quarn::RegistryValue>);
template<typename T>
concept UnpackSource = PackTarget<T> || std::derived_from<T, PropertyValue>;

// Numbers and truth values, each the type itself: nothing is converted. A `long` is an item of 32 bits
// whatever its own width. Shorter and longer integers, characters, enumerations and pointers are none.
template<typename T>
concept PackedNumber = std::same_as<T, int> || std::same_as<T, long> || std::same_as<T, unsigned int> ||
    std::same_as<T, unsigned long> || std::same_as<T, bool> || std::same_as<T, double> ||
    std::same_as<T, float> || std::same_as<T, HighFirst> || std::same_as<T, LowFirst>;

// Strings of both kinds and, for Pack alone, literals, views and plain C strings that are not null.
template<typename T>
concept PackedText = std::convertible_to<T const&, std::string_view> && !std::same_as<T, std::nullptr_t>;

// What Pack and Unpack take.
template<typename T>
concept PackableItem = PackedNumber<T> || PackedText<T>;
template<typename T>
concept UnpackableItem = PackedNumber<T> || std::same_as<T, string> || std::same_as<T, std::string>;

} // namespace Quarn
