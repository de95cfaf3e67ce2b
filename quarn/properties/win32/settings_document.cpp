#include "quarn/properties/win32/settings_document.h"

#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/file_reading.h"
#include "quarn/properties/win32/settings_path.h"
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/settings_replace.h"
#include "quarn/properties/win32/settings_writer.h"
#include "quarn/properties/win32/xml_library.h"

#include <new>

namespace Quarn::detail {

bool LoadSettings(string const& path, PropertyCollection& collection, bool& spoiled) noexcept
{
    spoiled = !IsMissing(path);
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

bool AreSettingsSpoiled(string const& path) noexcept
{
    bool spoiled = true;
    try {
        PropertyCollection collection;
        LoadSettings(path, collection, spoiled);
    } catch (std::bad_alloc const&) { // NOLINT(bugprone-empty-catch): nobody can tell, so it is kept
    }
    return spoiled;
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
