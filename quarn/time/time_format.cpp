// Times as text.
#include "quarn/time/civil_day.h"
#include "quarn/time/time.h"

#include <string_view>

namespace Quarn {

string Time::Format(string const& format) const
{
    constexpr std::size_t capacity = 256;
    std::tm calendar{};
    Get_tm(&calendar);
    calendar.tm_yday = static_cast<int>(detail::DayNumber(GetYear(), GetMonth(), GetDate()) -
                                        detail::DayNumber(GetYear(), 1, 1));
    char text[capacity];
    std::size_t const length = std::strftime(text, capacity, format.c_str(), &calendar);
    // Without a length the runtime library leaves the buffer in any state.
    return length != 0 ? string(text) : string();
}

bool Time::VerifyFormatString(string const& format)
{
    constexpr std::string_view letters = "dHmMyYpSbBaA%cIjUwWxXzZ";
    for (std::size_t percent = format.find('%'); percent != string::npos;
         percent = format.find('%', percent + 1)) {
        if (percent + 1 == format.size() || letters.find(format[percent + 1]) == letters.npos) {
            return false;
        }
    }
    return true;
}

void Time::DebugShowTime() const {} // NOLINT(readability-convert-member-functions-to-static): the interface

} // namespace Quarn
