#include "quarn/properties/win32/settings_document.h"

#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/file_reading.h"
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/settings_replace.h"
#include "quarn/properties/win32/settings_writer.h"
#include "quarn/properties/win32/xml_library.h"

namespace Quarn::detail {

bool SettingsFileExists(string const& path) noexcept
{
    return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

bool LoadSettings(string const& path, PropertyCollection& collection, bool& spoiled) noexcept
{
    spoiled = SettingsFileExists(path);
    if (!spoiled) {
        return false;
    }
    try {
        XmlLibraryUse const library;
        std::string document;
        if (!library.Started() || !ReadWholeFile(path, document)) {
            return false;
        }
        ReadResult const result = ReadSettings(document, collection);
        spoiled = result != ReadResult::Whole;
        return result == ReadResult::Whole || result == ReadResult::Partial;
    } catch (...) {
        return false;
    }
}

bool SaveSettings(string const& path, PropertyCollection const& collection, bool& spoiled) noexcept
{
    try {
        std::string document;
        if (!WriteSettings(collection, document) || !ReplaceSettingsFile(path, document, spoiled)) {
            return false;
        }
        spoiled = false;
        return true;
    } catch (...) {
        return false;
    }
}

} // namespace Quarn::detail
