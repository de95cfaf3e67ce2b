// The compiler checks the items of Pack and Unpack.
#include "quarn/packing/pack.h"
#include "quarn/packing/unpack.h"

bool Use(Quarn::PropertyValue& value, Quarn::string& text)
{
    long long longer = 0;
    int const constant = 0;
#if defined(WRONG_TYPE)
    return Quarn::Pack(value, constant, longer, text);
#elif defined(CONSTANT_TARGET)
    return static_cast<bool>(Quarn::Unpack(value, constant, text));
#else
    Quarn::LowFirst number{static_cast<std::uint64_t>(longer)};
    return Quarn::Pack(value, constant, number, text) && Quarn::Unpack(value, number, text);
#endif
}
