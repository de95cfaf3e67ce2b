// The packed records of settings values.
#include "quarn/properties/property_value.h"
#include "quarn/text/packed_record.h"

namespace Quarn {

bool PropertyValue::Writef(char const* format, ...)
{
    std::va_list args;
    va_start(args, format);
    string const record = detail::WritePackedRecord(format, args);
    va_end(args);
    SetValue(record);
    return true;
}

bool PropertyValue::Readf(char const* format, ...) const
{
    std::va_list args;
    va_start(args, format);
    bool const complete =
        detail::ReadPackedRecord(GetValueString(), detail::DrivePaths::Literal, format, args);
    va_end(args);
    return complete;
}

} // namespace Quarn
