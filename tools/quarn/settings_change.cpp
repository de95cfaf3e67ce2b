#include "quarn/properties/win32/xml_persist.h"

#include "json.h"
#include "settings_commands.h"
#include "settings_tree.h"

#include <algorithm>
#include <charconv>

namespace tool {

namespace {

using Quarn::PropertyData;

// Throws Failure for a text that is none of this type.
PropertyData MakeData(std::string const& type, std::string const& text)
{
    if (type == "int32") {
        std::int32_t number = 0;
        char const* const end = text.data() + text.size();
        auto const result = std::from_chars(text.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end) {
            throw Failure(WrongUsage, Quoted(text) + " is no number from -2147483648 to 2147483647");
        }
    } else if (type == "binary") {
        if (text.size() % 2 != 0 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
            throw Failure(WrongUsage, Quoted(text) + " is not made of two hexadecimal digits a byte");
        }
    } else {
        bool const isPlain = std::all_of(text.begin(), text.end(), [](char c) {
            return static_cast<unsigned char>(c) >= 0x20 || c == '\t' || c == '\n' || c == '\r';
        });
        if (!isPlain || !IsText(text)) {
            throw Failure(WrongUsage, Quoted(text) + " holds what no settings file can hold");
        }
    }
    return PropertyData::Create(type, text);
}

void Save(std::string const& file, Quarn::PropertyCollection const& settings)
{
    if (!Quarn::Win32::XMLPropPersist(file).Persist(&settings)) {
        throw Failure(CannotWrite, Printable(file) + ": could not be saved, and is as it was");
    }
}

void Report(bool json, char const* change, std::string const& address, PropertyData const* before,
            PropertyData const* after)
{
    if (!json) {
        std::string text = std::string(change) + ' ' + Printable(address);
        if (before != nullptr) {
            text += (after != nullptr ? " from " : ", which was ") + ShownValue(*before);
        }
        if (after != nullptr) {
            text += (before != nullptr ? " to " : " = ") + ShownValue(*after);
        }
        PropertyData const& last = after != nullptr ? *after : *before;
        Print(text + " (" + last.GetTypename() + ")\n");
        return;
    }
    Json object;
    object.Object();
    object.Text("change", change);
    object.Text("address", address);
    for (auto const& [name, data] : {std::pair("old", before), std::pair("new", after)}) {
        if (data != nullptr) {
            object.Object(name);
            AddData(object, *data);
            object.End();
        }
    }
    object.End();
}

} // namespace

ExitCode SetSetting(std::string const& file, std::string const& address, std::string const& value,
                    std::string const& type, bool json)
{
    Quarn::PropertyCollection settings;
    LoadWhole(file, settings);
    Place place = FindPlace(settings, address);
    std::string wanted = type;
    if (wanted.empty()) {
        wanted = place.value != nullptr ? place.value->GetDatatypeName() : "string";
    }
    if (wanted == "unknown") {
        throw Failure(WrongUsage, Printable(address) + " is of no known type; give it one with --type");
    }
    PropertyData const data = MakeData(wanted, value);
    if (place.value != nullptr) {
        PropertyData const before = place.value->GetData();
        place.value->SetData(data);
        Save(file, settings);
        Report(json, "changed", AddressOf(place.path, *place.value), &before, &data);
        return Done;
    }
    if (place.key == nullptr) {
        place.key = settings.AddSubKey(place.path.c_str());
    }
    Quarn::PropertyValue const& added = *place.key->SetValue(place.name, data, true);
    Save(file, settings);
    Report(json, "added", AddressOf(place.path, added), nullptr, &data);
    return Done;
}

ExitCode UnsetSetting(std::string const& file, std::string const& address, bool json)
{
    Quarn::PropertyCollection settings;
    LoadWhole(file, settings);
    Place const place = FindPlace(settings, address);
    if (place.value == nullptr) {
        Warn(Printable(file) + ": there is no value " + Printable(address));
        return Differs;
    }
    PropertyData const before = place.value->GetData();
    std::string const found = AddressOf(place.path, *place.value);
    place.key->RemoveValue(place.name);
    Save(file, settings);
    Report(json, "removed", found, &before, nullptr);
    return Done;
}

} // namespace tool
