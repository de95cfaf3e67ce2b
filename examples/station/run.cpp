#include "run.h"

#include "quarn/platform/version_info.h"
#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stream_exception.h"

#include "companion.h"
#include "journal.h"
#include "log.h"
#include "readings.h"
#include "settings.h"
#include "window.h"

#include <cstdio>
#include <exception>
#include <optional>
#include <string>

namespace station {

namespace {

constexpr double gigabyte = 1e9;
constexpr double bar = 1e5; // in pascals

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
        Record record;
        stream >> record;
    } catch (Quarn::StreamException const& refusal) {
        std::printf("refused    %s\n", refusal.GetString());
    }
}

void ShowJournal(std::string const& path)
{
    Quarn::Time first = Quarn::Time::NoTime;
    JournalSummary const summary = ReadJournal(
        path, [&](Record const& record) { first = first == Quarn::Time::NoTime ? record.time : first; });
    std::printf("journal    %u record%s, %llu bytes, every checksum right; the first of %s UTC\n",
                summary.records, summary.records == 1 ? "" : "s",
                static_cast<unsigned long long>(summary.goodBytes), TimeText(first).c_str());
}

// What the companion module knows of the record's pipe; that it is missing is a remark.
void ShowPressure(Quarn::PropertyKey const& settings, Record& record)
{
    Companion const companion(settings);
    std::optional<double> const loss = companion.PressureLoss(record.pipe);
    if (loss) {
        std::printf("pressure   %.2f bar lost, says %s\n", *loss / bar, companion.GetName().c_str());
    } else {
        record.remarks.push_back("the companion " + companion.GetName() +
                                 (companion.IsLoaded() ? " has no PressureLoss" : " could not be loaded"));
    }
}

// One run over settings that are loaded.
void Run(Quarn::Win32::QuarnProperties& settings)
{
    Record record;
    record.name = settings.GetValueString("Identity:Name", "Station 1");
    long const limit = settings.GetValueInt32("Limits:FreeDiskPercent", 10);
    record.run = static_cast<std::uint32_t>(settings.GetValueInt32("Runs:Count", 0)) + 1;
    Quarn::string const lastRun = settings.GetValueString("Runs:Last", "");

    std::printf("%s, run %u\n", record.name.c_str(), record.run);
    Log(logEvents, record.name + " started, run " + std::to_string(record.run));
    if (!lastRun.empty()) {
        std::printf("           the last run was at %s UTC\n", lastRun.c_str());
    }
    Window const window = ReadWindow(settings);
    std::printf("window     %d x %d at %d, %d\n", window.width, window.height, window.left, window.top);

    TakeReadings(record);
    if (record.freePercent < static_cast<float>(limit)) {
        record.remarks.push_back("free disk space is below its limit");
    }
    std::printf("disk       %.1f GB free of %.1f GB, %.0f %% (limit %ld %%)\n", record.freeBytes / gigabyte,
                record.totalBytes / gigabyte, static_cast<double>(record.freePercent), limit);
    std::printf("machine    %u processors, up for %u h %02u min\n", static_cast<unsigned>(record.processors),
                record.upSeconds / 3600, record.upSeconds / 60 % 60);
    record.pipe = ReadPipe(settings);
    std::printf("pipe       %s\n", Describe(record.pipe).c_str());
    ShowPressure(settings, record);
    for (Quarn::string const& remark : record.remarks) {
        std::printf("remark     %s\n", remark.c_str());
        Log(logEvents, remark);
    }

    std::string const journal = JournalPath(settings);
    std::string const aside = SetAside(journal, ReadJournal(journal, [](auto const&) {}));
    if (!aside.empty()) {
        std::printf("journal    was damaged; it is kept as %s\n", aside.c_str());
        Log(logEvents, "the journal was damaged; it is kept as " + aside);
    }
    Measure const measure = Append(journal, record);
    std::printf("record     %u bytes, CRC-32 0x%08X, appended to %s\n", measure.size, measure.crc,
                journal.c_str());
    Log(logDetails, "record of " + std::to_string(measure.size) + " bytes appended");
    ShowJournal(journal);
    ShowRefusal(0x4C4F4731, 1);
    ShowRefusal(recordId, recordVersion + 1);

    std::string const backup = BackUp(settings);
    if (!backup.empty()) {
        std::printf("backup     %s\n", backup.c_str());
    }
    Quarn::string spec;
    settings.SetValueString("Identity:Name=" + record.name, true);
    spec.Format("Limits:FreeDiskPercent=%ld", limit);
    settings.SetValueInt32(spec, true);
    spec.Format("Runs:Count=%u", record.run);
    settings.SetValueInt32(spec, true);
    settings.SetValueString("Runs:Last=" + TimeText(record.time), true);
    WritePipe(settings, record.pipe);
    WriteWindow(settings, NextWindow(window));
}

} // namespace

int RunOnce()
{
    Win32Quarn::CVersionInfo const self;
    std::printf("%s %s\n", self.GetProductName().c_str(), self.GetProductVersion().c_str());

    Quarn::Win32::QuarnProperties settings = MakeSettings();
    std::printf("log        %s\n", OpenLog(settings).c_str());
    std::string const loaded = Load(settings);
    std::printf("settings   %s: %s\n", settings.GetXMLFilePath().c_str(), loaded.c_str());
    SetLogLevel(settings);
    Log(logDetails, "settings " + loaded);
    bool saved = false;
    try {
        Run(settings);
        saved = settings.Persist(false);
    } catch (std::exception const& failure) {
        Log(logEvents, Quarn::string("failed: ") + failure.what());
        CloseLog();
        throw;
    }
    std::printf("settings   %s\n", saved ? "saved" : "could not be saved");
    Log(logEvents, saved ? "stopped" : "stopped; the settings could not be saved");
    int const logged = CloseLog();
    if (logged != 0) {
        std::printf("log        could not be written, code %d\n", logged);
    }
    return saved ? 0 : 1;
}

} // namespace station
