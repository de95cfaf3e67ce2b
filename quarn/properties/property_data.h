// Quarn::PropertyData: the payload of one property value: a text, a block of bytes, a signed 32-bit number or
// nothing. A plain value that owns its bytes: copies never share them. One object belongs to one thread at a
// time.
//
//   PropertyData data = PropertyData::Create("binary", "0aFF7"); // two bytes, 0x0a and 0xff
//   data.GetDataString();                                        // "0aff"
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Quarn {

namespace detail {

class SettingsSteps;

} // namespace detail

class QUARN_API PropertyData
{
public:
    // What the data is.
    enum DataType : std::int32_t
    {
        TypeString = 0,
        TypeBinary = 1,
        TypeInt32 = 2,
        TypeUnknown = 3
    };

    // Type unknown, size 0.
    PropertyData() noexcept = default;
    // A text, as Assign makes it. A null pointer is the empty text.
    PropertyData(string const& text);
    PropertyData(char const* text);
    // A number, as Assign makes it.
    PropertyData(long number);
    // Any other integer, the literal 0 included, as the 32-bit number that it is or is converted to.
    template<std::integral T>
    PropertyData(T number)
    {
        if constexpr (sizeof(T) <= sizeof(std::int32_t)) {
            Assign(static_cast<long>(static_cast<std::int32_t>(number)));
        } else {
            Assign(static_cast<long>(number));
        }
    }
    // Binary data: a copy of `length` bytes. A negative length is 0. A null pointer stands for zero bytes.
    PropertyData(unsigned char const* bytes, long length);
    // A copy with bytes of its own. The number that Create gives to data of an unknown type is not copied.
    PropertyData(PropertyData const& other);
    // Takes the payload over and leaves `other` of unknown type and size 0.
    PropertyData(PropertyData&& other) noexcept;
    virtual ~PropertyData();

    // As the constructors: copies the bytes.
    PropertyData& operator=(PropertyData const& other);
    // As the constructors: takes the payload over.
    PropertyData& operator=(PropertyData&& other) noexcept;

    // Text: size is its length + 1, for the terminating zero. A length + 1 beyond 32 bits is reported by the
    // blocking message of Int64ToUInt32 and cut.
    void Assign(string const& text);
    // Number, size 4. A number beyond 32 bits is reported and cut in the same way.
    void Assign(long number);
    // Raw data of a type; `source` may lie in this object's own bytes. Text and binary data copy `size` bytes
    // (zero bytes where `source` is null); a number takes the first 4 bytes, the missing ones of a shorter
    // source being 0, and keeps `size` as given. For any other type throws the int 0, with the payload
    // released and `type` and `size` stored.
    void Assign(DataType type, void const* source, unsigned long size);

    // Data from the name of its type and its text form, the reverse of GetTypename and GetDataString.
    // "binary" takes two hexadecimal digits of either case per byte; an odd last character is ignored, and a
    // pair counts as the number it begins with, 0 where there is none. "int32" takes a decimal number, 0
    // where there is none, modulo 2^32. Any other name gives data of unknown type and size 4 that holds the
    // number of the text but has an empty text form.
    static PropertyData Create(string const& typeName, string const& text);

    // The type with this name, compared exactly; TypeUnknown when there is none.
    static DataType GetType(string const& typeName);

    // TypeUnknown in the beginning.
    DataType GetType() const { return m_type; }
    // "string", "binary", "int32" or "unknown". Valid until the process ends.
    string const& GetTypename() const;
    // The text form: a text up to its first zero byte, two lower-case hexadecimal digits per byte, a decimal
    // number; empty for data of unknown type.
    string GetDataString() const;
    // A text as a decimal number (white space and sign first, up to the first other character, 0 where there
    // is none; beyond 32 bits the nearest limit), a number as it is, 0 for any other type.
    long GetDataInt32() const;
    // The number of payload bytes; a text's terminating zero counts.
    long GetDataSize() const { return static_cast<long>(m_size); }
    // The bytes of a text or of binary data, with a zero byte behind the last; null for any other type. Valid
    // until the object is assigned to or destroyed.
    unsigned char const* GetDataBinary() const { return HasBuffer() ? m_data.buffer : nullptr; }

    // Equal when type and size are equal and the number or the place of the bytes is the same: a text or
    // binary data is equal to itself alone, whatever the bytes. Two of the same type and size 0 are equal.
    bool operator==(PropertyData const& other) const;
    bool operator!=(PropertyData const& other) const { return !(*this == other); }

private:
    friend class detail::SettingsSteps;

    static PropertyData Make(DataType type, std::string_view text);
    // Whether the buffer is in use: by its type alone, so that type and ownership cannot disagree.
    static bool HasBuffer(DataType type) { return type == TypeString || type == TypeBinary; }
    bool HasBuffer() const { return HasBuffer(m_type); }

    // Replaces the payload by a text or binary data; `fill` writes the bytes of the new buffer.
    template<typename Fill>
    void AssignBuffer(DataType type, std::uint32_t size, Fill fill);
    void AssignText(std::string_view text);
    void AssignNumber(DataType type, std::uint32_t size, std::int32_t number);
    void Release() noexcept;

    DataType m_type = TypeUnknown;
    std::uint32_t m_size = 0;
    union {
        unsigned char* buffer;
        std::int32_t number;
    } m_data{};
};

} // namespace Quarn
