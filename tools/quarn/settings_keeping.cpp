#include "quarn/platform/win32_api.h"

#include "json.h"
#include "settings_commands.h"
#include "settings_tree.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace tool {

namespace {

using Quarn::Win32::SettingsReport;

// The path up to the name's extension, and the extension.
std::pair<std::string, std::string> Divide(std::string const& file)
{
    std::size_t const name = file.find_last_of("/\\:") + 1;
    std::size_t const dot = file.rfind('.');
    std::size_t const end = dot == std::string::npos || dot < name ? file.size() : dot;
    return {file.substr(0, end), file.substr(end)};
}

// The backups of the file, the newest first.
std::vector<std::string> BackupsOf(std::string const& file)
{
    auto const [stem, extension] = Divide(file);
    std::string const folder = stem.substr(0, stem.find_last_of("/\\:") + 1);
    std::vector<std::pair<std::uint32_t, std::string>> found;
    WIN32_FIND_DATAA data;
    HANDLE const search = ::FindFirstFileA((stem + "_*" + extension).c_str(), &data);
    for (bool more = search != INVALID_HANDLE_VALUE; more; more = ::FindNextFileA(search, &data) != FALSE) {
        std::string const path = folder + data.cFileName;
        std::size_t const stamp = stem.size() + 1;
        if (path.size() < stamp + extension.size()) {
            continue;
        }
        std::uint32_t number = 0;
        char const* const end = path.data() + path.size() - extension.size();
        auto const result = std::from_chars(path.data() + stamp, end, number, 16);
        if (result.ec == std::errc() && result.ptr == end) {
            found.emplace_back(number, path);
        }
    }
    if (search != INVALID_HANDLE_VALUE) {
        ::FindClose(search);
    }
    std::sort(found.rbegin(), found.rend());
    std::vector<std::string> paths;
    paths.reserve(found.size());
    for (auto const& [number, path] : found) {
        paths.push_back(path);
    }
    return paths;
}

// A backup's name holds the second, and each second has one.
std::string MakeBackup(std::string const& file)
{
    constexpr int Attempts = 15;
    constexpr DWORD Pause = 100; // milliseconds
    if (::GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
        throw Failure(CannotRead, Printable(file) + ": there is no such file");
    }
    for (int i = 0; i < Attempts; ++i) {
        Quarn::string backup;
        if (Quarn::Win32::BackupSettingsFile(Quarn::string(file), backup)) {
            return backup;
        }
        ::Sleep(Pause);
    }
    throw Failure(CannotWrite, Printable(file) + ": no backup of it could be made");
}

} // namespace

ExitCode CheckSettings(std::vector<std::string> const& files, bool json)
{
    ExitCode result = Done;
    std::optional<Json> output;
    if (json) {
        output.emplace().Array();
    }
    for (std::string const& file : files) {
        SettingsReport const report = Quarn::Win32::CheckSettingsFile(file);
        bool const loads = report.result == SettingsReport::Loads;
        char const* const verdict = loads                                          ? "loads"
                                    : report.result == SettingsReport::LoadsInPart ? "loads in part"
                                                                                   : "does not load";
        if (!loads) {
            result = Differs;
        }
        if (output) {
            output->Object();
            output->Text("file", file);
            output->Text("result", verdict);
            if (!loads) {
                output->Number("line", report.line);
                output->Number("column", report.column);
                output->Text("reason", report.reason);
            }
            output->End();
        } else if (loads) {
            Print(Printable(file) + ": " + Paint(Colour::Good, verdict) + '\n');
        } else {
            Print(ReportText(file, report) + " (" + Paint(Colour::Bad, verdict) + ")\n");
        }
    }
    if (output) {
        output->End();
    }
    return result;
}

ExitCode BackupSettings(std::string const& file, bool json)
{
    std::string const backup = MakeBackup(file);
    if (json) {
        Json object;
        object.Object();
        object.Text("file", file);
        object.Text("backup", backup);
        object.End();
    } else {
        Print(Printable(backup) + '\n');
    }
    return Done;
}

ExitCode RestoreSettings(std::string const& file, std::string const& backup, bool json)
{
    std::string source = backup;
    if (source.empty()) {
        for (std::string const& candidate : BackupsOf(file)) {
            if (Quarn::Win32::CheckSettingsFile(candidate).result == SettingsReport::Loads) {
                source = candidate;
                break;
            }
        }
        if (source.empty()) {
            throw Failure(CannotRead, Printable(file) + ": it has no backup that loads");
        }
    } else {
        SettingsReport const report = Quarn::Win32::CheckSettingsFile(source);
        if (report.result != SettingsReport::Loads) {
            throw Failure(CannotRead, ReportText(source, report));
        }
    }
    std::string const kept = MakeBackup(file);
    if (!Quarn::Win32::RestoreSettingsFile(file, source)) {
        throw Failure(CannotWrite, Printable(file) + ": could not be replaced, and is as it was");
    }
    if (json) {
        Json object;
        object.Object();
        object.Text("file", file);
        object.Text("restored_from", source);
        object.Text("kept_as", kept);
        object.End();
    } else {
        Print(Printable(file) + " restored from " + Printable(source) + "\nIts content before is kept as " +
              Printable(kept) + '\n');
    }
    return Done;
}

} // namespace tool
