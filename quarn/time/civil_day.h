// (private) Dates and Julian day numbers. The number of a date is that of the Julian day that begins at its
// noon: the date begins half a day before. The well-known formulas with factors such as 365.25 and 30.6001,
// in whole numbers, which give the same result for every day.
#pragma once

#include <concepts>
#include <cstdint>

namespace Quarn::detail {

struct CivilDay
{
    std::int64_t year;
    int month;
    int date;
};

// For years and fields as a Time holds them, in order or not. From 1582-10-05 on the date is Gregorian.
inline std::int64_t DayNumber(int year, int month, int date)
{
    bool const isGregorian = year > 1582 || (year == 1582 && (month > 10 || (month == 10 && date >= 5)));
    if (month <= 2) {
        --year;
        month += 12;
    }
    int correction = 0;
    if (isGregorian) {
        int const century = year / 100;
        correction = 2 - century + century / 4;
    }
    return (month + 1) * 306001 / 10000 + (year + 4716) * 1461 / 4 + date + correction - 1524;
}

// The date of a day from 0 on. Int holds 20 times the day.
template<std::integral Int>
CivilDay CivilDateIn(Int day)
{
    constexpr Int firstGregorian = 2299161; // 1582-10-15
    if (day >= firstGregorian) {
        Int const century = (4 * day - 7468865) / 146097; // (day - 1867216.25) / 36524.25
        day += 1 + century - century / 4;
    }
    day += 1524;
    Int const year = (20 * day - 2442) / 7305; // (day - 122.1) / 365.25
    auto const rest = static_cast<std::uint32_t>(day - year * 1461 / 4);
    std::uint32_t const month = rest * 10000 / 306001;
    CivilDay civil{};
    civil.date = static_cast<int>(rest - month * 306001 / 10000);
    civil.month = static_cast<int>(month < 14 ? month - 1 : month - 13);
    civil.year = static_cast<std::int64_t>(year) - (civil.month > 2 ? 4716 : 4715);
    return civil;
}

// The date of a day below 2^53, before day 0 too.
inline CivilDay CivilDate(std::int64_t day)
{
    constexpr std::int64_t cycle = 1461; // days in four years
    constexpr std::int64_t shortLimit = 200'000'000;
    if (day >= 0 && day < shortLimit) {
        return CivilDateIn(static_cast<std::uint32_t>(day));
    }
    std::int64_t const cycles = day < 0 ? -day / cycle + 1 : 0;
    CivilDay civil = CivilDateIn(day + cycles * cycle);
    civil.year -= 4 * cycles;
    return civil;
}

} // namespace Quarn::detail
