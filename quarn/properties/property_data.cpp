#include "quarn/properties/property_data.h"

#include "quarn/text/narrowing.h"
#include "quarn/text/number_text.h"

#include <algorithm>
#include <charconv>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>

#include <string.h>

namespace Quarn {

namespace {

string const typeNames[] = {"string", "binary", "int32", "unknown"};

// The longest text of a 32-bit number.
constexpr std::size_t NumberLength = sizeof "-2147483648";

} // namespace

PropertyData::PropertyData(string const& text)
{
    Assign(text);
}

PropertyData::PropertyData(char const* text) : PropertyData(string(text != nullptr ? text : "")) {}

PropertyData::PropertyData(long number)
{
    Assign(number);
}

PropertyData::PropertyData(unsigned char const* bytes, long length)
{
    Assign(TypeBinary, bytes, static_cast<unsigned long>(std::max(length, 0L)));
}

PropertyData::PropertyData(PropertyData const& other)
{
    *this = other;
}

PropertyData::PropertyData(PropertyData&& other) noexcept
    : m_type(std::exchange(other.m_type, TypeUnknown)),
      m_size(std::exchange(other.m_size, 0)),
      m_data(other.m_data)
{}

PropertyData::~PropertyData()
{
    Release();
}

PropertyData& PropertyData::operator=(PropertyData const& other)
{
    if (this == &other) {
        return *this;
    }
    if (other.HasBuffer()) {
        AssignBuffer(other.m_type, other.m_size, [&other](unsigned char* buffer) {
            ::memcpy(buffer, other.m_data.buffer, other.m_size);
        });
    } else {
        AssignNumber(other.m_type, other.m_size, other.m_type == TypeInt32 ? other.m_data.number : 0);
    }
    return *this;
}

PropertyData& PropertyData::operator=(PropertyData&& other) noexcept
{
    if (this != &other) {
        Release();
        m_data = other.m_data;
        m_type = std::exchange(other.m_type, TypeUnknown);
        m_size = std::exchange(other.m_size, 0);
    }
    return *this;
}

void PropertyData::Assign(string const& text)
{
    AssignText(text);
}

void PropertyData::Assign(long number)
{
    AssignNumber(TypeInt32, sizeof(std::int32_t), detail::NarrowLong(number));
}

void PropertyData::Assign(DataType type, void const* source, unsigned long size)
{
    std::uint32_t const count = detail::NarrowCount(size);
    if (HasBuffer(type)) {
        AssignBuffer(type, count, [source, count](unsigned char* buffer) {
            if (source != nullptr) {
                ::memcpy(buffer, source, count);
            } else {
                ::memset(buffer, 0, count);
            }
        });
        return;
    }
    std::int32_t number = 0;
    if (type == TypeInt32 && source != nullptr) {
        ::memcpy(&number, source, std::min<std::size_t>(count, sizeof number));
    }
    AssignNumber(type, count, number);
    if (type != TypeInt32) {
        throw 0;
    }
}

PropertyData PropertyData::Create(string const& typeName, string const& text)
{
    return Make(GetType(typeName), text);
}

PropertyData PropertyData::Make(DataType type, std::string_view text)
{
    PropertyData data;
    switch (type) {
    case TypeString:
        data.AssignText(text);
        break;
    case TypeBinary: {
        std::uint32_t const count = detail::NarrowCount(text.size() / 2);
        data.AssignBuffer(type, count, [text, count](unsigned char* buffer) {
            for (std::size_t i = 0; i < count; ++i) {
                std::string_view const pair(text.data() + 2 * i, 2);
                buffer[i] = static_cast<unsigned char>(detail::StringToLong(pair, 16));
            }
        });
        break;
    }
    default:
        data.AssignNumber(type, sizeof(std::int32_t), detail::AsciiToLong(text));
        break;
    }
    return data;
}

PropertyData::DataType PropertyData::GetType(string const& typeName)
{
    string const* const found = std::find(std::begin(typeNames), std::end(typeNames), typeName);
    return found != std::end(typeNames) ? static_cast<DataType>(found - std::begin(typeNames)) : TypeUnknown;
}

string const& PropertyData::GetTypename() const
{
    bool const known = HasBuffer() || m_type == TypeInt32;
    return typeNames[known ? m_type : TypeUnknown];
}

string PropertyData::GetDataString() const
{
    string text;
    if (m_type == TypeString) {
        text.assign(reinterpret_cast<char const*>(m_data.buffer));
    } else if (m_type == TypeBinary) {
        constexpr char digits[] = "0123456789abcdef";
        text.reserve(2 * std::size_t{m_size} + 64);
        for (std::uint32_t i = 0; i < m_size; ++i) {
            unsigned char const byte = m_data.buffer[i];
            text.push_back(digits[byte >> 4]);
            text.push_back(digits[byte & 0xf]);
        }
    } else if (m_type == TypeInt32) {
        char buffer[NumberLength];
        text.assign(buffer, std::to_chars(std::begin(buffer), std::end(buffer), m_data.number).ptr);
    }
    return text;
}

long PropertyData::GetDataInt32() const
{
    if (m_type == TypeString) {
        return detail::StringToLong({reinterpret_cast<char const*>(m_data.buffer), m_size});
    }
    return m_type == TypeInt32 ? m_data.number : 0;
}

bool PropertyData::operator==(PropertyData const& other) const
{
    if (m_type != other.m_type || m_size != other.m_size) {
        return false;
    }
    if (m_size == 0) {
        return true;
    }
    return HasBuffer() ? m_data.buffer == other.m_data.buffer : m_data.number == other.m_data.number;
}

template<typename Fill>
void PropertyData::AssignBuffer(DataType type, std::uint32_t size, Fill fill)
{
    // The zero byte behind the end keeps every reader of the text inside the buffer. The old payload goes
    // last: the bytes may come from there.
    auto buffer = std::make_unique_for_overwrite<unsigned char[]>(std::size_t{size} + 1);
    fill(buffer.get());
    buffer[size] = 0;
    Release();
    m_type = type;
    m_size = size;
    m_data.buffer = buffer.release();
}

void PropertyData::AssignText(std::string_view text)
{
    std::uint32_t const count = detail::NarrowCount(text.size() + 1);
    AssignBuffer(TypeString, count, [text, count](unsigned char* buffer) {
        std::size_t const size = std::min<std::size_t>(text.size(), count);
        std::copy_n(text.data(), size, buffer);
        buffer[size] = 0;
    });
}

void PropertyData::AssignNumber(DataType type, std::uint32_t size, std::int32_t number)
{
    Release();
    m_type = type;
    m_size = size;
    m_data.number = number;
}

void PropertyData::Release() noexcept
{
    if (HasBuffer()) {
        delete[] m_data.buffer;
    }
    m_type = TypeUnknown;
    m_size = 0;
}

} // namespace Quarn
