// Saving, reading and listing records.
#include "records.h"

namespace guide {

// [save a record]
void Save(Quarn::ostream& stream, Sample const& sample)
{
    stream.dump("Sample", Quarn::Stream::HeaderBlock{sampleId, sampleVersion});
    stream.dump("Pump", sample.pump);
    stream.dump("Level", sample.level);
    stream.dump("Remark", sample.remark);
}

bool SaveFile(char const* path, Sample const& sample)
{
    try {
        Quarn::ofstream file(path, std::ios_base::binary | std::ios_base::trunc);
        Save(file, sample);
        file.close();
        return file.IsValidOutput(); // a full disk shows here at the latest
    } catch (Quarn::StreamException const&) {
        return false;
    }
}
// [end]

// [read a record]
Sample Load(Quarn::istream& stream)
{
    Sample sample;
    unsigned long const version = stream.ReadAndVerifyHeader(sampleId, sampleVersion);
    stream >> sample.pump >> sample.level;
    if (version >= 2) {
        stream >> sample.remark;
    }
    return sample;
}

// Empty, or why the file could not be read.
Quarn::string LoadFile(char const* path, Sample& sample)
{
    try {
        Quarn::ifstream file(path, std::ios_base::binary);
        sample = Load(file);
    } catch (Quarn::StreamVersionException const&) {
        return "written by a newer program";
    } catch (Quarn::StreamVerifyIdException const&) {
        return "not a sample";
    } catch (Quarn::StreamException const& failure) {
        return failure.GetString(); // "Generic Read": the file ends early, or there is none
    }
    return "";
}
// [end]

// [list a record]
bool ListFile(char const* path, Sample const& sample)
{
    try {
        Quarn::sofdumpstream listing(path, std::ios_base::trunc);
        listing.dumpLabel("From the pump room");
        Quarn::DumpStreamIndent const indent(listing, 4);
        Save(listing, sample);
        listing.close();
        return listing.IsValidOutput();
    } catch (Quarn::StreamException const&) {
        return false;
    }
}
// [end]

} // namespace guide
