#include "json.h"
#include "settings_commands.h"
#include "settings_tree.h"

#include <algorithm>

namespace tool {

namespace {

struct Row
{
    std::string address;
    std::string type;
    std::string value;
};

// Columns as wide as their widest cell, but no wider than this.
constexpr std::size_t MaxColumn = 48;

std::string Padded(std::string const& text, std::size_t width)
{
    return text + std::string(text.size() < width ? width - text.size() : 0, ' ') + "  ";
}

void PrintRows(std::vector<Row> const& rows)
{
    std::size_t address = 7;
    for (Row const& row : rows) {
        address = std::max(address, std::min(row.address.size(), MaxColumn));
    }
    constexpr std::size_t Type = 7; // "unknown"
    Print(Paint(Colour::Strong, Padded("ADDRESS", address) + Padded("TYPE", Type) + "VALUE") + '\n');
    for (Row const& row : rows) {
        Print(Padded(row.address, address) + Padded(row.type, Type) + row.value + '\n');
    }
}

void PrintTable(Quarn::PropertyCollection const& settings, Quarn::PropertyKey const& key,
                std::string const& prefix)
{
    std::vector<Row> rows;
    WalkKeys(key, [&](std::string const& below, Quarn::PropertyKey const& found) {
        std::string const path = JoinPath(prefix, below);
        for (std::uint64_t i = 0; i < found.GetValueCount(); ++i) {
            Quarn::PropertyValue const& value = *found.GetValue(i);
            rows.push_back(
                {Printable(AddressOf(path, value)), value.GetDatatypeName(), ShownValue(value.GetData())});
        }
        if (found.GetValueCount() == 0 && found.GetKeyCount() == 0) {
            rows.push_back({Printable(path) + '\\', "", "(an empty key)"});
        }
    });
    Print(Printable(settings.GetDocumentDescription()) + ", " + Printable(settings.GetName()) + '\n');
    PrintRows(rows);
}

void PrintJson(std::string const& file, bool whole, Quarn::PropertyCollection const& settings,
               Quarn::PropertyKey const& key, std::string const& prefix)
{
    Json json;
    json.Object();
    json.Text("file", file);
    json.Bool("complete", whole);
    json.Text("document", settings.GetDocumentDescription());
    json.Text("name", settings.GetName());
    json.Array("keys");
    WalkKeys(key, [&](std::string const& below, Quarn::PropertyKey const& found) {
        std::string const path = JoinPath(prefix, below);
        json.Object();
        json.Text("path", path);
        json.Array("values");
        for (std::uint64_t i = 0; i < found.GetValueCount(); ++i) {
            Quarn::PropertyValue const& value = *found.GetValue(i);
            json.Object();
            json.Text("address", AddressOf(path, value));
            json.Text("name", value.GetName());
            AddData(json, value.GetData());
            json.End();
        }
        json.End();
        json.End();
    });
    json.End();
    json.End();
}

} // namespace

ExitCode ShowSettings(std::string const& file, std::string const& key, bool json)
{
    Quarn::PropertyCollection settings;
    bool const whole = LoadForReading(file, settings);
    Quarn::PropertyKey const* const top = settings.GetSubKey(Quarn::string(key), false);
    if (top == nullptr) {
        Warn(Printable(file) + ": there is no key " + Printable(key));
        return Differs;
    }
    if (json) {
        PrintJson(file, whole, settings, *top, key);
    } else {
        PrintTable(settings, *top, key);
    }
    return Done;
}

ExitCode GetSetting(std::string const& file, std::string const& address, bool json)
{
    Quarn::PropertyCollection settings;
    LoadForReading(file, settings);
    Place const place = FindPlace(settings, address);
    if (place.value == nullptr) {
        Warn(Printable(file) + ": there is no value " + Printable(address));
        return Differs;
    }
    if (json) {
        Json object;
        object.Object();
        object.Text("address", AddressOf(place.path, *place.value));
        AddData(object, place.value->GetData());
        object.End();
    } else {
        Print(place.value->GetValueString() + '\n');
    }
    return Done;
}

} // namespace tool
