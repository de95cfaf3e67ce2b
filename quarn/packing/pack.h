// Quarn::Pack: several items in one settings value or registry value, for new code. The record is that of
// Writef, character for character, but the types of the items say what is written: there is no format that
// could be wrong, and what is no item does not compile. One value belongs to one thread at a time.
//
//   Quarn::Pack(value, left, top, name);              value.Writef("iit", left, top, &name)
//   if (Quarn::Unpack(value, left, top, name)) ...    packing/unpack.h
//
//   type                  letter of Writef
//   int, long             i
//   unsigned int, long    D     in 32 bits
//   bool                  b
//   double                d     in six decimals, deliberately of the number as a float
//   float                 f     in six decimals
//   HighFirst, LowFirst   T, v
//   text                  t     up to its first zero byte
#pragma once

#include "quarn/packing/packed_items.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

namespace Quarn {

namespace detail {

template<PackableItem T>
constexpr char LetterOf()
{
    if constexpr (PackedText<T>) {
        return 't';
    } else if constexpr (std::same_as<T, bool>) {
        return 'b';
    } else if constexpr (std::same_as<T, double>) {
        return 'd';
    } else if constexpr (std::same_as<T, float>) {
        return 'f';
    } else if constexpr (std::same_as<T, HighFirst>) {
        return 'T';
    } else if constexpr (std::same_as<T, LowFirst>) {
        return 'v';
    } else {
        return std::signed_integral<T> ? 'i' : 'D';
    }
}

template<typename T>
bool FitsItem(T const& item)
{
    if constexpr (std::same_as<T, long>) {
        return static_cast<std::int32_t>(item) == item;
    } else if constexpr (std::same_as<T, unsigned long>) {
        return static_cast<std::uint32_t>(item) == item;
    } else {
        return true;
    }
}

// An item as long as it takes to write it: as it is, other texts as strings.
template<PackedNumber T>
T const& Hold(T const& item)
{
    return item;
}
inline string const& Hold(string const& item)
{
    return item;
}
template<PackedText T>
string Hold(T const& item)
{
    return std::string(std::string_view(item));
}

// An item as Writef takes it.
template<PackedNumber T>
auto Passed(T const& item)
{
    if constexpr (std::same_as<T, long>) {
        return static_cast<int>(item);
    } else if constexpr (std::same_as<T, unsigned long>) {
        return static_cast<unsigned int>(item);
    } else if constexpr (std::same_as<T, float>) {
        return &item;
    } else if constexpr (std::same_as<T, HighFirst> || std::same_as<T, LowFirst>) {
        return item.value;
    } else {
        return item;
    }
}
inline string const* Passed(string const& item)
{
    return &item;
}

template<typename... Items>
bool WriteHeld(auto& value, char const* format, Items const&... items)
{
    return value.Writef(format, Passed(items)...);
}

} // namespace detail

// Writes the items as the value's text, as its Writef does; false where the registry refuses, with the error
// in the key. A `long` that needs more than 32 bits, possible where it has 64, is refused too: then nothing
// is written. Texts are written as they are: one with a double quote in it, or one with a comma that is not
// the first item, cannot be read back, and Unpack refuses it.
template<PackTarget Value, PackableItem... Items>
    requires(sizeof...(Items) > 0)
bool Pack(Value& value, Items const&... items)
{
    static constexpr char format[] = {detail::LetterOf<Items>()..., '\0'};
    return (detail::FitsItem(items) && ...) && detail::WriteHeld(value, format, detail::Hold(items)...);
}

} // namespace Quarn
