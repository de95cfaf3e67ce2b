// Property data from type name and text, and from raw bytes. The text form of whatever comes out makes the
// same payload again, every reader stays inside the bytes, and numbers are those of the C library.
//
// Input: one byte for the type, then the text or the bytes.
#include "quarn/properties/property_data.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <limits>

namespace {

using fuzz::Check;
using Quarn::PropertyData;

// The data, and its text form while that is made: of binary data two characters for each byte.
constexpr fuzz::MemoryBound Bound = {"property_data", 256, 2};
constexpr fuzz::MemoryBound TextBound = {"property_data_text", 256, 4};

// Binary data and numbers come back whole, texts up to their first zero byte.
void CheckRoundTrip(PropertyData const& data)
{
    PropertyData const again = PropertyData::Create(data.GetTypename(), data.GetDataString());
    Check(again.GetType() == data.GetType(), "the type changed");
    Check(again.GetDataString() == data.GetDataString(), "the text form changed");
    Check(again.GetDataInt32() == data.GetDataInt32(), "the number changed");
    if (data.GetType() == PropertyData::TypeBinary) {
        Check(again.GetDataSize() == data.GetDataSize() &&
                  std::equal(data.GetDataBinary(), data.GetDataBinary() + data.GetDataSize(),
                             again.GetDataBinary()),
              "the bytes changed");
    }
    PropertyData const copy(data);
    Check(copy.GetDataString() == data.GetDataString() && copy.GetDataSize() == data.GetDataSize(),
          "the copy differs");
}

// Of a number that 64 bits can hold: a text gives the nearest one of 32 bits, the type "int32" its lower
// bits.
void CheckNumber(Quarn::string const& text)
{
    errno = 0;
    long long const number = std::strtoll(text.c_str(), nullptr, 10);
    if (errno != ERANGE) {
        constexpr long long Least = std::numeric_limits<std::int32_t>::min();
        constexpr long long Most = std::numeric_limits<std::int32_t>::max();
        Check(PropertyData(text).GetDataInt32() == std::clamp(number, Least, Most), "another number");
        Check(PropertyData::Create("int32", text).GetDataInt32() == static_cast<std::int32_t>(number),
              "other bits of the number");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    static char const* const names[] = {"string", "binary", "int32", "unknown", "Binary"};
    unsigned char const* const bytes = data + 1;
    Quarn::string const text(reinterpret_cast<char const*>(bytes), size - 1);
    Quarn::string const name = names[data[0] % 5];
    PropertyData created;
    fuzz::Watch(Bound, size, [&] { created = PropertyData::Create(name, text); });
    Quarn::string written;
    fuzz::Watch(TextBound, size, [&] { written = created.GetDataString(); });
    CheckRoundTrip(created);
    CheckRoundTrip(PropertyData(text));
    CheckNumber(text);
    CheckRoundTrip(PropertyData(bytes, static_cast<long>(size - 1)));

    PropertyData raw;
    raw.Assign(static_cast<PropertyData::DataType>(data[0] % 3), bytes, static_cast<unsigned long>(size - 1));
    CheckRoundTrip(raw);
    return 0;
}
