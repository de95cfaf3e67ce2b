// Times in tests as texts that a failure can show.
#pragma once

#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

#include <cstdio>
#include <string>

// "2024-03-05 07:08:09.123.456", from the fields as they are stored.
inline std::string Text(Quarn::Time const& time)
{
    char text[64];
    std::snprintf(text, sizeof text, "%04d-%02d-%02d %02d:%02d:%02d.%03d.%03d", time.GetYear(),
                  time.GetMonth(), time.GetDate(), time.GetHour(), time.GetMinute(), time.GetSecond(),
                  time.GetMilliSecond(), time.GetMicroSecond());
    return text;
}

// "0x00001080 0x00000000": High, then Low.
inline std::string Words(Quarn::TIME const& words)
{
    char text[32];
    std::snprintf(text, sizeof text, "0x%08X 0x%08X", words.High, words.Low);
    return text;
}

// "1440 + 35791394": minutes and fraction.
inline std::string Text(Quarn::TimeValue const& value)
{
    return std::to_string(value.GetMinutes()) + " + " + std::to_string(value.GetFraction());
}

// A time of whole seconds.
inline Quarn::Time At(int year, int month, int date, int hour = 0, int minute = 0, int second = 0)
{
    return {static_cast<std::uint16_t>(year),
            static_cast<std::uint8_t>(month),
            static_cast<std::uint8_t>(date),
            static_cast<std::uint8_t>(hour),
            static_cast<std::uint8_t>(minute),
            static_cast<std::uint8_t>(second),
            0,
            0};
}
