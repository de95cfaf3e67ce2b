#include "settings_tree.h"

#include "quarn/properties/win32/xml_persist.h"

#include "outcome.h"

namespace tool {

namespace {

using Quarn::Win32::SettingsReport;

SettingsReport LoadTree(std::string const& path, Quarn::PropertyCollection& settings)
{
    SettingsReport report = Quarn::Win32::CheckSettingsFile(path);
    if (report.result != SettingsReport::DoesNotLoad &&
        !Quarn::Win32::XMLPropPersist(path).Populate(&settings)) {
        report.result = SettingsReport::DoesNotLoad; // it has just changed
        report.reason = "it cannot be read any more";
    }
    return report;
}

// The depth of a tree that was loaded is bounded.
// NOLINTNEXTLINE(misc-no-recursion)
void WalkBelow(Quarn::PropertyKey const& key, std::string const& path,
               std::function<void(std::string const&, Quarn::PropertyKey const&)> const& visit)
{
    visit(path, key);
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        Quarn::PropertyKey const& child = *key.GetSubKey(i);
        WalkBelow(child, JoinPath(path, child.GetName()), visit);
    }
}

Quarn::PropertyValue* FindValue(Quarn::PropertyKey& key, Quarn::string const& name)
{
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        Quarn::PropertyValue* const value = key.GetValue(i);
        if (*value == (name.empty() ? Quarn::PropertyValue::DefaultValueName : name)) {
            return value;
        }
    }
    return nullptr;
}

} // namespace

std::string ReportText(std::string const& path, SettingsReport const& report)
{
    std::string text = Printable(path) + ':';
    if (report.line != 0) {
        text += std::to_string(report.line) + ':';
        if (report.column != 0) {
            text += std::to_string(report.column) + ':';
        }
    }
    return text + ' ' + Printable(report.reason);
}

bool LoadForReading(std::string const& path, Quarn::PropertyCollection& settings)
{
    SettingsReport const report = LoadTree(path, settings);
    if (report.result == SettingsReport::DoesNotLoad) {
        throw Failure(CannotRead, ReportText(path, report));
    }
    if (report.result == SettingsReport::LoadsInPart) {
        Warn(ReportText(path, report) + "; not all of the file is loaded");
        return false;
    }
    return true;
}

void LoadWhole(std::string const& path, Quarn::PropertyCollection& settings)
{
    SettingsReport const report = LoadTree(path, settings);
    if (report.result != SettingsReport::Loads) {
        throw Failure(CannotRead, ReportText(path, report));
    }
}

void WalkKeys(Quarn::PropertyKey const& key,
              std::function<void(std::string const&, Quarn::PropertyKey const&)> const& visit)
{
    WalkBelow(key, "", visit);
}

std::string JoinPath(std::string const& path, std::string const& below)
{
    return path.empty() || below.empty() ? path + below : path + '\\' + below;
}

std::string AddressOf(std::string const& path, Quarn::PropertyValue const& value)
{
    return path + ':' + value.GetName();
}

std::string FoldedName(Quarn::string const& name)
{
    return name.Lower(); // the program stays in the "C" locale, where other letters have no case
}

Place FindPlace(Quarn::PropertyCollection& settings, std::string const& address)
{
    Place place;
    std::size_t colon = address.find(':');
    if (colon == std::string::npos) {
        place.name = address;
        place.key = &settings;
        place.value = FindValue(settings, place.name);
        return place;
    }
    place.path = address.substr(0, colon);
    place.name = address.substr(colon + 1);
    place.key = settings.GetSubKey(Quarn::string(place.path), false);
    for (; colon != std::string::npos; colon = address.find(':', colon + 1)) {
        Quarn::string const path = address.substr(0, colon);
        Quarn::string const name = address.substr(colon + 1);
        Quarn::PropertyKey* const key = settings.GetSubKey(path, false);
        if (Quarn::PropertyValue* const value = key != nullptr ? FindValue(*key, name) : nullptr) {
            return {path, name, key, value};
        }
    }
    return place;
}

std::string ShownValue(Quarn::PropertyData const& data)
{
    Quarn::string const text = data.GetDataString();
    return data.GetType() == Quarn::PropertyData::TypeString ? Quoted(text) : std::string(text);
}

void AddData(Json& json, Quarn::PropertyData const& data)
{
    json.Text("type", data.GetTypename());
    switch (data.GetType()) {
    case Quarn::PropertyData::TypeInt32:
        json.Number("value", data.GetDataInt32());
        break;
    case Quarn::PropertyData::TypeUnknown:
        json.Null("value");
        break;
    default:
        json.Text("value", data.GetDataString());
        break;
    }
}

} // namespace tool
