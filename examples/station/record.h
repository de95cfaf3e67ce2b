// The station's record: what one run measured, in the library's record format.
//
// Version 3: id and version (header block), run number, free and total disk space in bytes, free percentage,
// up time in seconds, number of processors, the station's name, the time of the run, the pipe's length behind
// the text "Length", the water's speed, the remarks. Up to version 2 the time was a text, and there was no
// pipe; version 1 had no remarks either. All are still read.
#pragma once

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/string.h"
#include "quarn/text/string_list.h"
#include "quarn/time/time.h"

#include "pipe.h"

#include <cstdint>

namespace station {

constexpr unsigned long recordId = 0x53544E31; // "STN1"
constexpr unsigned long recordVersion = 3;

struct Record
{
    std::uint32_t run = 0;
    double freeBytes = 0;
    double totalBytes = 0;
    float freePercent = 0;
    std::uint32_t upSeconds = 0;
    std::uint16_t processors = 0;
    Quarn::string name;
    Quarn::Time time; // UTC
    Pipe pipe;
    Quarn::StringList remarks;
};

// Writes the record in the newest version; or, to a stream in dump mode, its listing.
Quarn::ostream& operator<<(Quarn::ostream& out, Record const& record);

// Reads a record of version 1 to 3; a foreign or newer one, and one that ends early, throws
// Quarn::StreamException or a class derived from it.
Quarn::istream& operator>>(Quarn::istream& in, Record& record);

// A time as the station shows it and once stored it; what is no such text is no time.
Quarn::string TimeText(Quarn::Time const& time);
Quarn::Time TimeOf(Quarn::string const& text);

} // namespace station
