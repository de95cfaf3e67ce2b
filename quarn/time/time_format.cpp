// Times as text.
#include "quarn/time/civil_day.h"
#include "quarn/time/time.h"

#include <string_view>

namespace Quarn {

namespace {

constexpr std::size_t Capacity = 256;

// Whether every field has its usual digits, on both systems: a date from 1970 to 3000.
bool IsUsual(Time const& time)
{
    return time.GetYear() - 1970U <= 3000U - 1970U && time.GetMonth() - 1U < 12U &&
           time.GetDate() - 1U < 31U && time.GetHour() < 24 && time.GetMinute() < 60 && time.GetSecond() < 60;
}

char* PutTwoDigits(unsigned number, char* text)
{
    *text++ = static_cast<char>('0' + number / 10);
    *text++ = static_cast<char>('0' + number % 10);
    return text;
}

// What strftime makes of a usual time and a format of ASCII and the numbers that no locale changes; returns
// the end of the text. Null for another format, and where the text may be too long.
char* PutNumbers(Time const& time, char const* format, char* text)
{
    char const* const last = text + Capacity - sizeof "2000";
    for (; *format != '\0'; ++format) {
        if (text > last || static_cast<unsigned char>(*format) >= 0x80) {
            return nullptr;
        }
        if (*format != '%') {
            *text++ = *format;
            continue;
        }
        switch (*++format) {
        case 'Y':
            text = PutTwoDigits(time.GetYear() / 100U, text);
            text = PutTwoDigits(time.GetYear() % 100U, text);
            break;
        case 'm':
            text = PutTwoDigits(time.GetMonth(), text);
            break;
        case 'd':
            text = PutTwoDigits(time.GetDate(), text);
            break;
        case 'H':
            text = PutTwoDigits(time.GetHour(), text);
            break;
        case 'M':
            text = PutTwoDigits(time.GetMinute(), text);
            break;
        case 'S':
            text = PutTwoDigits(time.GetSecond(), text);
            break;
        default:
            return nullptr;
        }
    }
    return text;
}

} // namespace

string Time::Format(string const& format) const
{
    char text[Capacity];
    if (IsUsual(*this)) {
        if (char const* const end = PutNumbers(*this, format.c_str(), text)) {
            return {text, static_cast<std::size_t>(end - text)};
        }
    }
    std::tm calendar{};
    Get_tm(&calendar);
    calendar.tm_yday = static_cast<int>(detail::DayNumber(GetYear(), GetMonth(), GetDate()) -
                                        detail::DayNumber(GetYear(), 1, 1));
    std::size_t const length = std::strftime(text, Capacity, format.c_str(), &calendar);
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
