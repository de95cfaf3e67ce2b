#include "record.h"

#include "quarn/stream/dump_indent.h"
#include "quarn/stream/header_block.h"

#include <ctime>
#include <iomanip>
#include <sstream>

namespace station {

namespace {

constexpr char timeFormat[] = "%Y-%m-%d %H:%M:%S";

} // namespace

Quarn::ostream& operator<<(Quarn::ostream& out, Record const& record)
{
    Quarn::Stream::HeaderBlock header;
    header.id = recordId;
    header.version = recordVersion;
    out.dumpLabel("Record");
    Quarn::DumpStreamIndent const indent(out, 4);
    out.dump("Header", header);
    out.dump("Run", record.run);
    out.dump("Free bytes", record.freeBytes);
    out.dump("Total bytes", record.totalBytes);
    out.dump("Free percent", record.freePercent);
    out.dump("Up seconds", record.upSeconds);
    out.dump("Processors", record.processors);
    out.dump("Name", record.name);
    out.dump("Time", record.time);
    Quarn::dump(out, "Length", record.pipe.length);
    Quarn::dump(out, "Speed", record.pipe.speed);
    return Quarn::dump(out, "Remarks", record.remarks);
}

Quarn::istream& operator>>(Quarn::istream& in, Record& record)
{
    unsigned long const version = in.ReadAndVerifyHeader(recordId, recordVersion);
    in >> record.run >> record.freeBytes >> record.totalBytes >> record.freePercent >> record.upSeconds >>
        record.processors >> record.name;
    Quarn::string text;
    if (version >= 3) {
        // Of the labels, that of a distance alone is stored.
        in >> record.time >> text >> record.pipe.length >> record.pipe.speed;
    } else {
        in >> text;
        record.time = TimeOf(text);
        record.pipe = {};
    }
    record.remarks.clear();
    if (version >= 2) {
        in >> record.remarks;
    }
    return in;
}

Quarn::string TimeText(Quarn::Time const& time)
{
    return time.Format(timeFormat);
}

Quarn::Time TimeOf(Quarn::string const& text)
{
    std::tm calendar = {};
    std::istringstream stream(text);
    stream >> std::get_time(&calendar, timeFormat);
    return stream ? Quarn::Time(&calendar) : Quarn::Time::NoTime;
}

} // namespace station
