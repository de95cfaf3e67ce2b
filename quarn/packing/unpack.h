// Quarn::Unpack: takes apart what Quarn::Pack (packing/pack.h) or Writef has put into a settings value or a
// registry value. Unlike Readf it takes a record only as a whole, with just these items, and says what is
// wrong with another. One value belongs to one thread at a time.
//
//   int left = 0;
//   Quarn::string name;
//   if (Quarn::UnpackResult const result = Quarn::Unpack(value, left, name); !result) {
//       ... result.reason, result.item
//   }
#pragma once

#include "quarn/packing/packed_items.h"

#include <charconv>
#include <cmath>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <system_error>
#include <tuple>
#include <type_traits>
#include <utility>

namespace Quarn {

// What Unpack says of a record: true where it has stored the items.
struct UnpackResult
{
    // What a record can be like.
    enum Reason
    {
        Complete,   // the record is good: its items have been stored
        Unreadable, // there is no such value, it cannot be read, or it holds no text
        TooShort,   // the record ends before the item's last character; an item ends in a comma
        TooLong,    // it goes on behind the last item
        WrongKind   // the item is none of this type, or a number out of its range
    };

    Reason reason = Complete; // why nothing was stored, if so
    std::size_t item = 0;     // which one, counted from 0; of TooLong the number of items; otherwise 0

    // Whether the items have been stored.
    explicit operator bool() const { return reason == Complete; }
};

namespace detail {

// Takes a record apart from its beginning. `drivePaths`: in a text that begins like a path with a drive, C:\,
// backslashes stand for themselves; in others one before a double quote stands for the quote.
class RecordUnpacker
{
public:
    RecordUnpacker(std::string_view record, bool drivePaths) : m_rest(record), m_drivePaths(drivePaths) {}

    bool AtEnd() const { return m_rest.empty(); }

    template<typename T>
    UnpackResult::Reason Read(T& item)
    {
        bool const isFirst = std::exchange(m_isFirst, false);
        if constexpr (PackedText<T>) {
            return ReadText(item, isFirst);
        } else {
            std::size_t const end = m_rest.find(',');
            if (end == m_rest.npos) {
                return UnpackResult::TooShort;
            }
            bool const isGood = Convert(m_rest.substr(0, end), item);
            m_rest.remove_prefix(end + 1);
            return isGood ? UnpackResult::Complete : UnpackResult::WrongKind;
        }
    }

private:
    UnpackResult::Reason ReadText(std::string& text, bool isFirst)
    {
        for (char const c : std::string_view(isFirst ? ",\"" : "\"")) {
            if (m_rest.empty()) {
                return UnpackResult::TooShort;
            }
            if (m_rest.front() != c) {
                return UnpackResult::WrongKind;
            }
            m_rest.remove_prefix(1);
        }
        bool const isLiteral = m_drivePaths && m_rest.size() > 2 && m_rest[1] == ':' && m_rest[2] == '\\';
        for (std::size_t i = 0; i < m_rest.size(); ++i) {
            char c = m_rest[i];
            if (c == '"') {
                if (i + 1 == m_rest.size()) {
                    return UnpackResult::TooShort;
                }
                bool const isGood = m_rest[i + 1] == ',';
                m_rest.remove_prefix(i + 2);
                return isGood ? UnpackResult::Complete : UnpackResult::WrongKind;
            }
            if (c == ',' && !isFirst) {
                return UnpackResult::WrongKind;
            }
            if (c == '\\' && !isLiteral && m_rest.substr(i + 1).starts_with('"')) {
                c = '"';
                ++i;
            }
            text.push_back(c);
        }
        return UnpackResult::TooShort;
    }

    template<typename Number>
    static bool ConvertWhole(std::string_view field, Number& number)
    {
        char const* const end = field.data() + field.size();
        auto const result = std::from_chars(field.data(), end, number);
        return result.ec == std::errc() && result.ptr == end;
    }

    template<typename T>
    static bool Convert(std::string_view field, T& item)
    {
        if constexpr (std::same_as<T, bool>) {
            item = field == "1";
            return item || field == "0";
        } else if constexpr (std::same_as<T, HighFirst>) {
            return ConvertHalves(field, item.value, 32, 0);
        } else if constexpr (std::same_as<T, LowFirst>) {
            return ConvertHalves(field, item.value, 0, 32);
        } else {
            // An integer in 32 bits, a decimal number as a double.
            using Integer = std::conditional_t<std::signed_integral<T>, std::int32_t, std::uint32_t>;
            std::conditional_t<std::integral<T>, Integer, double> number = 0;
            if (!ConvertWhole(field, number)) {
                return false;
            }
            if constexpr (std::same_as<T, float>) {
                if (std::isfinite(number) && std::fabs(number) > std::numeric_limits<float>::max()) {
                    return false;
                }
            }
            item = static_cast<T>(number);
            return true;
        }
    }

    static bool ConvertHalves(std::string_view field, std::uint64_t& value, int firstShift, int secondShift)
    {
        std::size_t const colon = field.find(':');
        std::uint32_t first = 0;
        std::uint32_t second = 0;
        if (colon == field.npos || !ConvertWhole(field.substr(0, colon), first) ||
            !ConvertWhole(field.substr(colon + 1), second)) {
            return false;
        }
        value = std::uint64_t{first} << firstShift | std::uint64_t{second} << secondShift;
        return true;
    }

    std::string_view m_rest;
    bool m_drivePaths;
    bool m_isFirst = true;
};

// The value's text; false where it has none.
inline bool ReadRecord(PropertyValue const& value, string& record)
{
    record = value.GetValueString();
    return value.GetDataType() == PropertyData::TypeString;
}
inline bool ReadRecord(Win32Quarn::RegistryValue& value, string& record)
{
    constexpr unsigned long text = 1; // REG_SZ
    unsigned long type = 0;
    return value.Read(record, &type) && type == text;
}

} // namespace detail

// Reads the items and stores them when the record is good as a whole; otherwise none of them changes. A
// record of Writef reads as by Readf, with the types of packing/pack.h: but texts are replaced, not appended
// to, an integer must be one in its own range (a `long` has 32 bits), a truth value 0 or 1, and a decimal
// number may lack its decimals.
template<UnpackSource Value, UnpackableItem... Items>
    requires(sizeof...(Items) > 0)
[[nodiscard]] UnpackResult Unpack(Value& value, Items&... items)
{
    string record;
    if (!detail::ReadRecord(value, record)) {
        return {UnpackResult::Unreadable, 0};
    }
    constexpr bool drivePaths = std::derived_from<Value, PropertyValue>;
    detail::RecordUnpacker unpacker(record, drivePaths);
    UnpackResult result;
    std::tuple<Items...> read;
    auto const readItem = [&](auto& item) {
        result.reason = unpacker.Read(item);
        result.item += result ? 1 : 0;
        return static_cast<bool>(result);
    };
    if (!std::apply([&](auto&... each) { return (readItem(each) && ...); }, read)) {
        return result;
    }
    if (!unpacker.AtEnd()) {
        result.reason = UnpackResult::TooLong;
        return result;
    }
    std::tie(items...) = std::move(read);
    return {};
}

} // namespace Quarn
