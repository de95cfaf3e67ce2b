// Dates and Julian day numbers, for the operations of Time. The number of a date is that of the Julian day
// that begins at its noon: the date begins half a day before. The well-known formulas with factors such as
// 365.25 and 30.6001, in whole numbers and with factors that need no true division, which give the same
// result for every day. Any thread may call them.
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
inline int DayNumber(int year, int month, int date)
{
    constexpr int firstGregorian = (1582 * 16 + 10) * 32 + 5;
    // Years begin in March, so that the leap day is the last.
    int const early = month <= 2 ? 1 : 0;
    auto const march = static_cast<unsigned>(year - early);
    auto const months = static_cast<unsigned>(month + 12 * early);
    unsigned const monthDays = (979 * months - 2919) / 32; // those of the months from March on
    auto const day = static_cast<int>((march + 4716) * 1461 / 4 + monthDays) + date - 1402;
    if ((year * 16 + month) * 32 + date < firstGregorian) [[unlikely]] {
        return day;
    }
    unsigned const century = march / 100;
    return day + 2 - static_cast<int>(century - century / 4);
}

// The date of a day from 0 on. Int holds 4 times the day.
template<std::integral Int>
CivilDay CivilDateIn(Int day)
{
    constexpr Int firstGregorian = 2299161; // 1582-10-15
    if (day >= firstGregorian) [[likely]] {
        Int const century = (4 * day - 7468865) / 146097; // (day - 1867216.25) / 36524.25
        day += 1 + century - century / 4;
    }
    // Years that begin in March, from -4716 on.
    Int const quarters = 4 * (day + 1401) + 3;
    Int const year = quarters / 1461;
    auto const dayOfYear = static_cast<std::uint32_t>(quarters % 1461) / 4;
    // The month, from 3 to 14, and below it the date's place in the month, in 2141 parts of 65536.
    std::uint32_t const month = 2141 * dayOfYear + 197913;
    std::uint32_t const early = (dayOfYear + 206) / 512; // 1 from day 306 on: January and February
    CivilDay civil{};
    civil.date = static_cast<int>((month & 0xFFFF) / 2141 + 1);
    civil.month = static_cast<int>((month >> 16) - 12 * early);
    civil.year = static_cast<std::int64_t>(year) - 4716 + early;
    return civil;
}

// The date of a day below 2^53, before day 0 too.
inline CivilDay CivilDate(std::int64_t day)
{
    constexpr std::int64_t cycle = 1461; // days in four years
    std::int64_t const cycles = day < 0 ? -day / cycle + 1 : 0;
    CivilDay civil = CivilDateIn(day + cycles * cycle);
    civil.year -= 4 * cycles;
    return civil;
}

} // namespace Quarn::detail
