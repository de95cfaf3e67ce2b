// A small station: opens its settings, takes readings of the machine, appends them to its journal as a
// record, reads the journal back, notes the run in its settings.
//
//   station                              one run
//   station --commission NAME PERCENT    names the station and sets its limit of free disk space, for the
//                                        first run
//   station --show FILE                  prints the tree of any settings file
//   station --dump                       prints the journal, record by record
//   station --language CODE ...          any of them with the library's texts in a language such as DEU
//
// Settings and journal lie in the machine's data folder.
#include "quarn/platform/module.h"
#include "quarn/platform/version_info.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/xml_persist.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"

#include "journal.h"
#include "readings.h"
#include "settings.h"
#include "show.h"
#include "window.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

namespace {

constexpr double gigabyte = 1e9;

// Reads a record of the given kind and version, which this program does not know, and says what the library
// says.
void ShowRefusal(unsigned int id, unsigned int version)
{
    Quarn::memorystream stream(sizeof(Quarn::Stream::HeaderBlock));
    Quarn::Stream::HeaderBlock header;
    header.id = id;
    header.version = version;
    stream << header;
    stream.seekg(0, 0);
    try {
        station::Record record;
        stream >> record;
    } catch (Quarn::StreamException const& refusal) {
        std::printf("refused    %s\n", refusal.GetString());
    }
}

void ShowJournal(std::string const& path)
{
    Quarn::Time first = Quarn::Time::NoTime;
    station::JournalSummary const summary = station::ReadJournal(path, [&](station::Record const& record) {
        first = first == Quarn::Time::NoTime ? record.time : first;
    });
    std::printf("journal    %u record%s, %llu bytes, every checksum right; the first of %s UTC\n",
                summary.records, summary.records == 1 ? "" : "s",
                static_cast<unsigned long long>(summary.goodBytes), station::TimeText(first).c_str());
}

// One run over settings that are loaded.
void Run(Quarn::Win32::QuarnProperties& settings)
{
    station::Record record;
    record.name = settings.GetValueString("Identity:Name", "Station 1");
    long const limit = settings.GetValueInt32("Limits:FreeDiskPercent", 10);
    record.run = static_cast<std::uint32_t>(settings.GetValueInt32("Runs:Count", 0)) + 1;
    Quarn::string const lastRun = settings.GetValueString("Runs:Last", "");

    std::printf("%s, run %u\n", record.name.c_str(), record.run);
    if (!lastRun.empty()) {
        std::printf("           the last run was at %s UTC\n", lastRun.c_str());
    }
    station::Window const window = station::ReadWindow(settings);
    std::printf("window     %d x %d at %d, %d\n", window.width, window.height, window.left, window.top);

    station::TakeReadings(record);
    if (record.freePercent < static_cast<float>(limit)) {
        record.remarks.push_back("free disk space is below its limit");
    }
    std::printf("disk       %.1f GB free of %.1f GB, %.0f %% (limit %ld %%)\n", record.freeBytes / gigabyte,
                record.totalBytes / gigabyte, static_cast<double>(record.freePercent), limit);
    std::printf("machine    %u processors, up for %u h %02u min\n", static_cast<unsigned>(record.processors),
                record.upSeconds / 3600, record.upSeconds / 60 % 60);
    record.pipe = station::ReadPipe(settings);
    std::printf("pipe       %s\n", station::Describe(record.pipe).c_str());
    for (Quarn::string const& remark : record.remarks) {
        std::printf("remark     %s\n", remark.c_str());
    }

    std::string const journal = station::JournalPath(settings);
    std::string const aside = station::SetAside(journal, station::ReadJournal(journal, [](auto const&) {}));
    if (!aside.empty()) {
        std::printf("journal    was damaged; it is kept as %s\n", aside.c_str());
    }
    station::Measure const measure = station::Append(journal, record);
    std::printf("record     %u bytes, CRC-32 0x%08X, appended to %s\n", measure.size, measure.crc,
                journal.c_str());
    ShowJournal(journal);
    ShowRefusal(0x4C4F4731, 1);
    ShowRefusal(station::recordId, station::recordVersion + 1);

    std::string const backup = station::BackUp(settings);
    if (!backup.empty()) {
        std::printf("backup     %s\n", backup.c_str());
    }
    Quarn::string spec;
    settings.SetValueString("Identity:Name=" + record.name, true);
    spec.Format("Limits:FreeDiskPercent=%ld", limit);
    settings.SetValueInt32(spec, true);
    spec.Format("Runs:Count=%u", record.run);
    settings.SetValueInt32(spec, true);
    settings.SetValueString("Runs:Last=" + station::TimeText(record.time), true);
    station::WritePipe(settings, record.pipe);
    station::WriteWindow(settings, station::NextWindow(window));
}

int RunOnce()
{
    Win32Quarn::CVersionInfo const self;
    std::printf("%s %s\n", self.GetProductName().c_str(), self.GetProductVersion().c_str());

    Quarn::Win32::QuarnProperties settings = station::MakeSettings();
    std::string const loaded = station::Load(settings);
    std::printf("settings   %s: %s\n", settings.GetXMLFilePath().c_str(), loaded.c_str());
    Run(settings);
    bool const saved = settings.Persist(false);
    std::printf("settings   %s\n", saved ? "saved" : "could not be saved");
    return saved ? 0 : 1;
}

int Commission(std::string const& name, std::string const& percent)
{
    if (!station::Commission(name, std::strtoul(percent.c_str(), nullptr, 10))) {
        std::fprintf(stderr, "station: the registry could not be written\n");
        return 1;
    }
    std::printf("The first run will be that of \"%s\".\n", name.c_str());
    return 0;
}

int ShowFile(std::string const& path)
{
    Quarn::PropertyCollection settings;
    if (!Quarn::Win32::XMLPropPersist(path).Populate(&settings)) {
        std::fprintf(stderr, "station: %s is not a settings file that can be read\n", path.c_str());
        return 1;
    }
    station::Show(settings);
    return 0;
}

int DumpJournal()
{
    Quarn::Win32::QuarnProperties settings = station::MakeSettings();
    std::string const path = station::JournalPath(settings);
    station::JournalSummary const summary = station::ListJournal(path);
    if (summary.restBytes != 0) {
        std::fprintf(stderr, "station: %s is damaged behind these records: %s\n", path.c_str(),
                     summary.restReason.c_str());
        return 1;
    }
    if (summary.records == 0) {
        std::fprintf(stderr, "station: there is no record in %s\n", path.c_str());
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv)
{
    std::vector<std::string> arguments(argv + 1, argv + argc);
    try {
        if (arguments.size() >= 2 && arguments[0] == "--language") {
            QuarnUtil::InitLanguage(arguments[1].c_str());
            arguments.erase(arguments.begin(), arguments.begin() + 2);
        }
        if (arguments.empty()) {
            return RunOnce();
        }
        if (arguments.size() == 3 && arguments[0] == "--commission") {
            return Commission(arguments[1], arguments[2]);
        }
        if (arguments.size() == 2 && arguments[0] == "--show") {
            return ShowFile(arguments[1]);
        }
        if (arguments.size() == 1 && arguments[0] == "--dump") {
            return DumpJournal();
        }
    } catch (std::exception const& failure) {
        std::fprintf(stderr, "station: %s\n", failure.what());
        return 1;
    }
    std::fprintf(stderr,
                 "usage: station [--language CODE] [--commission NAME PERCENT | --show FILE | --dump]\n");
    return 2;
}
