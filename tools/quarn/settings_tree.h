// Settings trees as the commands see them: loaded with a reason where that fails, flat, each value with its
// address.
#pragma once

#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/settings_file.h"

#include "json.h"

#include <functional>
#include <string>

namespace tool {

// "FILE:LINE:COLUMN: REASON", or without the place where there is none.
std::string ReportText(std::string const& path, Quarn::Win32::SettingsReport const& report);

// Loads the file; throws Failure where it does not load. False, with a warning, where a part was not loaded.
bool LoadForReading(std::string const& path, Quarn::PropertyCollection& settings);
// Throws Failure for a part, too: nothing that is not known may be overwritten, or compared.
void LoadWhole(std::string const& path, Quarn::PropertyCollection& settings);

// Calls `visit` for the key and all below, the key first, each with its path from the key: "" and "A\B".
void WalkKeys(Quarn::PropertyKey const& key,
              std::function<void(std::string const& path, Quarn::PropertyKey const& key)> const& visit);

// "path\below", or the one of them that is not empty.
std::string JoinPath(std::string const& path, std::string const& below);
// "path:name"
std::string AddressOf(std::string const& path, Quarn::PropertyValue const& value);
// A name in a list of names: letters of either case alike, as the library compares them.
std::string FoldedName(Quarn::string const& name);

// Where an address leads. The path of the key ends at the first colon for which there is such a value, at the
// very first where there is none; without a colon the value is the collection's own.
struct Place
{
    std::string path;
    Quarn::string name;
    Quarn::PropertyKey* key = nullptr;     // null where it is missing
    Quarn::PropertyValue* value = nullptr; // null where it is missing
};
Place FindPlace(Quarn::PropertyCollection& settings, std::string const& address);

// The value for people: a text in quotes, a number, hexadecimal digits.
std::string ShownValue(Quarn::PropertyData const& data);
// The members "type" and "value": a text, a number, a text of hexadecimal digits, null.
void AddData(Json& json, Quarn::PropertyData const& data);

} // namespace tool
