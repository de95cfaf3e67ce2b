// The station's record: what one run measured, in the library's record format.
//
// Version 2: id and version (header block), run number, free and total disk space in bytes, free percentage,
// up time in seconds, number of processors, the station's name, the time of the run, the remarks. Version 1
// had no remarks; it is still read.
#pragma once

#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/string.h"
#include "quarn/text/string_list.h"

#include <cstdint>

namespace station {

constexpr unsigned long recordId = 0x53544E31; // "STN1"
constexpr unsigned long recordVersion = 2;

struct Record
{
    std::uint32_t run = 0;
    double freeBytes = 0;
    double totalBytes = 0;
    float freePercent = 0;
    std::uint32_t upSeconds = 0;
    std::uint16_t processors = 0;
    Quarn::string name;
    Quarn::string time; // UTC
    Quarn::StringList remarks;
};

// Writes the record in the newest version.
Quarn::ostream& operator<<(Quarn::ostream& out, Record const& record);

// Reads a record of version 1 or 2; a foreign or newer one, and one that ends early, throws
// Quarn::StreamException or a class derived from it.
Quarn::istream& operator>>(Quarn::istream& in, Record& record);

} // namespace station
