// A record with a field of every kind that the library stores, saved by one function: in binary mode a
// record, in dump mode the listing of tests/data/stream/listing.txt.
#pragma once

#include "quarn/stream/dump_indent.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/string_list.h"
#include "quarn/time/time.h"
#include "quarn/time/time_value.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

inline Quarn::StringList List(std::vector<std::string> const& texts)
{
    return texts;
}

struct EveryField
{
    Quarn::Stream::HeaderBlock header{0x00010002, 3};
    char letter = 'A';
    char lowLetter = -1;
    unsigned char byte = 255;
    short low = std::numeric_limits<short>::min();
    unsigned short high = std::numeric_limits<unsigned short>::max();
    int number = std::numeric_limits<std::int32_t>::min();
    unsigned int count = std::numeric_limits<std::uint32_t>::max();
    long wide = std::numeric_limits<std::int32_t>::min();
    unsigned long wideCount = std::numeric_limits<std::uint32_t>::max();
    float real = -0.5F;
    double precise = 1234567.890625;
    long double extended = 0.000001L;
    char const* text = "station";
    Quarn::string bytes = Quarn::string("a\tb\0\xE4 \x7F", 7);
    Quarn::string empty;
    Quarn::Time start = Quarn::Time(2024, 3, 5, 7, 8, 9, 123, 456);
    Quarn::StringList list = List({"x", "y"});
    Quarn::TimeValue pause = Quarn::TimeValue(1, 0, 0, 1, 0, 0);
};

inline void Save(Quarn::ostream& stream, EveryField const& record)
{
    stream.dumpLabel("Everything");
    Quarn::DumpStreamIndent const indent(stream, 4);
    stream.dump("Header", record.header);
    stream.dump("Letter", record.letter);
    stream.dump("Low letter", record.lowLetter);
    stream.dump("Byte", record.byte);
    stream.dump("Short", record.low);
    stream.dump("Unsigned short", record.high);
    stream.dump("Int", record.number);
    stream.dump("Unsigned int", record.count);
    stream.dump("Long", record.wide);
    stream.dump("Unsigned long", record.wideCount);
    stream.dump("Float", record.real);
    stream.dump("Double", record.precise);
    stream.dump("Long double", record.extended);
    stream.dump("Yes", true);
    stream.dump("No", false);
    stream.dump("Text", record.text);
    stream.dump("String", record.bytes);
    stream.dump("Empty", record.empty);
    stream.dump("Start", record.start);
    Quarn::dump(stream, "List", record.list);
    Quarn::dump(stream, "Pause", record.pause);
    stream.dump("Last", 0);
    stream.dump("plain label");
}

// The same record by the operators alone.
inline void Store(Quarn::ostream& stream, EveryField const& record)
{
    stream << record.header << record.letter << record.lowLetter << record.byte << record.low << record.high
           << record.number << record.count << record.wide << record.wideCount << record.real
           << record.precise << record.extended << true << false << record.text << record.bytes
           << record.empty << record.start;
    stream << 2U << "x"
           << "y";
    stream << record.pause.GetMinutes() << record.pause.GetFraction();
    stream << 0 << "plain label";
}
