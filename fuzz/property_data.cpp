// Property data from type name and text, and from raw bytes. The text form of whatever comes out makes the
// same payload again, and every reader stays inside the bytes.
//
// Input: one byte for the type, then the text or the bytes.
#include "quarn/properties/property_data.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

using Quarn::PropertyData;

void Check(bool holds, char const* what)
{
    if (!holds) {
        std::fputs(what, stderr);
        std::abort();
    }
}

// Binary data and numbers come back whole, texts up to their first zero byte.
void CheckRoundTrip(PropertyData const& data)
{
    PropertyData const again = PropertyData::Create(data.GetTypename(), data.GetDataString());
    Check(again.GetType() == data.GetType(), "the type changed\n");
    Check(again.GetDataString() == data.GetDataString(), "the text form changed\n");
    Check(again.GetDataInt32() == data.GetDataInt32(), "the number changed\n");
    if (data.GetType() == PropertyData::TypeBinary) {
        Check(again.GetDataSize() == data.GetDataSize() &&
                  std::equal(data.GetDataBinary(), data.GetDataBinary() + data.GetDataSize(),
                             again.GetDataBinary()),
              "the bytes changed\n");
    }
    PropertyData const copy(data);
    Check(copy.GetDataString() == data.GetDataString() && copy.GetDataSize() == data.GetDataSize(),
          "the copy differs\n");
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
    CheckRoundTrip(PropertyData::Create(names[data[0] % 5], text));
    CheckRoundTrip(PropertyData(text));
    CheckRoundTrip(PropertyData(bytes, static_cast<long>(size - 1)));

    PropertyData raw;
    raw.Assign(static_cast<PropertyData::DataType>(data[0] % 3), bytes, static_cast<unsigned long>(size - 1));
    CheckRoundTrip(raw);
    return 0;
}
