#include "quarn/properties/win32/settings_file.h"

#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/file_reading.h"
#include "quarn/properties/win32/settings_path.h"
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/xml_library.h"

namespace Quarn::Win32 {

SettingsReport CheckSettingsFile(Quarn::string const& path) noexcept
{
    SettingsReport report;
    try {
        detail::XmlLibraryUse const library;
        std::string document;
        if (detail::IsMissing(path)) {
            report.reason = "there is no such file";
        } else if (!library.Started() || !detail::ReadWholeFile(path, document)) {
            report.reason = "it cannot be read, or is longer than 256 MiB";
        } else {
            PropertyCollection tree;
            detail::ReadProblem problem;
            detail::ReadResult const result = detail::ReadSettings(document, tree, &problem);
            if (result == detail::ReadResult::Whole) {
                report.result = SettingsReport::Loads;
            } else if (result == detail::ReadResult::Partial) {
                report.result = SettingsReport::LoadsInPart;
            }
            report.reason = problem.reason;
            report.line = problem.line;
            report.column = problem.column;
        }
    } catch (...) {
        report.reason = "no memory"; // short enough for a string without any
    }
    return report;
}

} // namespace Quarn::Win32
