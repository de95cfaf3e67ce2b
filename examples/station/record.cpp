#include "record.h"

#include "quarn/stream/header_block.h"

namespace station {

Quarn::ostream& operator<<(Quarn::ostream& out, Record const& record)
{
    Quarn::Stream::HeaderBlock header;
    header.id = recordId;
    header.version = recordVersion;
    out << header << record.run << record.freeBytes << record.totalBytes << record.freePercent
        << record.upSeconds << record.processors << record.name << record.time;
    // The library reads string lists; a writer is the count and the strings.
    out << static_cast<unsigned int>(record.remarks.size());
    for (Quarn::string const& remark : record.remarks) {
        out << remark;
    }
    return out;
}

Quarn::istream& operator>>(Quarn::istream& in, Record& record)
{
    unsigned long const version = in.ReadAndVerifyHeader(recordId, recordVersion);
    in >> record.run >> record.freeBytes >> record.totalBytes >> record.freePercent >> record.upSeconds >>
        record.processors >> record.name >> record.time;
    record.remarks.clear();
    if (version >= 2) {
        in >> record.remarks;
    }
    return in;
}

} // namespace station
