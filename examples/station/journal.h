// The station's journal: one file, one entry a record. An entry is the record's size and CRC-32, 32 bits
// each, then its bytes; the text in a record is compressed where that may pay.
#pragma once

#include "quarn/properties/win32/property_stores.h"

#include "record.h"

#include <cstdint>
#include <functional>
#include <string>

namespace station {

// What is known of a record before it is written.
struct Measure
{
    std::uint32_t size = 0;
    std::uint32_t crc = 0;
};

struct JournalSummary
{
    std::uint32_t records = 0;
    // The bytes of whole entries, and of what follows them: a write that a power cut ended, or damage.
    std::uint64_t goodBytes = 0;
    std::uint64_t restBytes = 0;
    std::string restReason;
};

// The journal beside the settings file.
std::string JournalPath(Quarn::Win32::QuarnProperties& settings);

// Appends the record at the end of the journal. Throws Quarn::StreamException when the file cannot be
// written.
Measure Append(std::string const& path, Record const& record);

// Reads the journal from its start to its end or to its first bad entry, checks every CRC and hands out every
// record. A journal that does not exist has no records.
JournalSummary ReadJournal(std::string const& path, std::function<void(Record const&)> const& each);

// Where something follows the whole entries: gives the journal as it is a second name, and leaves the whole
// entries under its own, so that the next one can be found behind them. Returns the second name, or nothing
// where nothing followed.
std::string SetAside(std::string const& path, JournalSummary const& summary);

} // namespace station
