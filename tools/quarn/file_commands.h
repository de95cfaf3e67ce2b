// The commands on files other than settings, and on none. Each returns the exit code, or throws Failure.
#pragma once

#include "outcome.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tool {

struct RecordView
{
    std::vector<std::uint64_t> headers; // offsets of header blocks beside the first one
    std::uint64_t from = 0;             // where the hex view begins
    std::uint64_t bytes = 512;          // how much it shows
};
ExitCode ShowRecord(std::string const& path, RecordView const& view, bool json);

ExitCode PrintChecksums(std::vector<std::string> const& files, bool json);
ExitCode PrintVersions(std::vector<std::string> const& files, bool json);

// Without names, lists the units; `from` and `to` are names, plurals or abbreviations.
ExitCode ConvertUnits(std::string const& value, std::string const& from, std::string const& to, bool json);

struct LogView
{
    std::uint64_t lines = 10; // of the file's end
    bool follow = true;
    std::uint64_t endAfter = 0; // lines in all; 0 for no end
};
ExitCode ShowLog(std::string const& file, LogView const& view, bool json);

} // namespace tool
