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

// A 64-bit number as an item of its own type, since there are two forms of it: here the upper half comes
// first (letter T of PropertyValue::Writef).
struct HighFirst
{
    std::uint64_t value = 0; // the number
};
// The other form: the lower half comes first (letter v).
struct LowFirst
{
    std::uint64_t value = 0; // the number
};

// What Pack writes to: a settings value or a registry value.
template<typename T>
concept PackTarget = !std::is_const_v<T> &&
                     (std::derived_from<T, PropertyValue> || std::derived_from<T, Win32Quarn::RegistryValue>);
// What Unpack reads from: the same, and a settings value may be constant.
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

// What Pack takes.
template<typename T>
concept PackableItem = PackedNumber<T> || PackedText<T>;
// What Unpack takes.
template<typename T>
concept UnpackableItem = PackedNumber<T> || std::same_as<T, string> || std::same_as<T, std::string>;

} // namespace Quarn
