#include "quarn/platform/win32_api.h"
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/registry_persist.h"
#include "quarn/properties/win32/xml_persist.h"

#include "json.h"
#include "little_endian.h"
#include "registry_commands.h"
#include "registry_tree.h"
#include "settings_tree.h"

#include <algorithm>

namespace tool {

namespace {

using Quarn::PropertyData;
using Quarn::Win32::SettingsReport;

struct LeftOut
{
    std::string address;
    std::string reason;
};

ExitCode Report(bool json, std::string const& path, std::string const& file, std::uint64_t count,
                std::vector<LeftOut> const& leftOut)
{
    for (LeftOut const& item : leftOut) {
        Warn(Printable(item.address) + " is left out: " + item.reason);
    }
    if (json) {
        Json object;
        object.Object();
        object.Text("key", path);
        object.Text("file", file);
        object.Number("values", count);
        object.Array("left_out");
        for (LeftOut const& item : leftOut) {
            object.Object();
            object.Text("address", item.address);
            object.Text("reason", item.reason);
            object.End();
        }
        object.End();
        object.End();
    } else {
        Print(std::to_string(count) + (count == 1 ? " value\n" : " values\n"));
    }
    return leftOut.empty() ? Done : Differs;
}

// What stands for a registry value in a settings tree; of unknown type where nothing does.
PropertyData Translate(RegistryData const& data)
{
    switch (data.type) {
    case REG_SZ:
        return PropertyData(Quarn::string(TextOf(data)));
    case REG_BINARY:
        return {reinterpret_cast<unsigned char const*>(data.bytes.data()),
                static_cast<long>(data.bytes.size())};
    case REG_DWORD:
        return PropertyData(static_cast<std::int32_t>(NumberOf(data)));
    default:
        return {};
    }
}

// Why a store that is seeded from the registry does not have this value; empty where it has.
std::string WhyNotSeeded(Quarn::PropertyCollection& settings, std::string const& path,
                         std::string const& name, RegistryData const& data)
{
    PropertyData const wanted = Translate(data);
    if (wanted.GetType() == PropertyData::TypeUnknown) {
        return "settings have no values of type " + RegistryTypeName(data.type);
    }
    Quarn::PropertyKey* const key = settings.GetSubKey(Quarn::string(path), false);
    for (std::uint64_t i = 0; key != nullptr && i < key->GetValueCount(); ++i) {
        Quarn::PropertyValue const& value = *key->GetValue(i);
        if (value == (name.empty() ? Quarn::PropertyValue::DefaultValueName : Quarn::string(name))) {
            bool const isSame =
                value.GetDataType() == wanted.GetType() && value.GetValueString() == wanted.GetDataString();
            return isSame ? "" : "a value of the same place has come over it";
        }
    }
    return "a name of 512 bytes or more, or more than 8192 bytes of data, end the reading of its key";
}

} // namespace

ExitCode ExportRegistry(std::string const& text, std::string const& file, bool json)
{
    RegistryPath const path(text);
    OpenKey key;
    LSTATUS const code = ::RegOpenKeyExA(path.root, path.below.c_str(), 0, KEY_READ, key.Out());
    if (code != ERROR_SUCCESS) {
        throw Failure(CannotRead, Printable(path.Text()) + ": cannot be read: " + SystemText(code));
    }
    bool const exists = ::GetFileAttributesA(file.c_str()) != INVALID_FILE_ATTRIBUTES;
    SettingsReport const old = Quarn::Win32::CheckSettingsFile(file);
    if (exists && old.result != SettingsReport::Loads) {
        throw Failure(CannotRead, ReportText(file, old) + "; it is not replaced");
    }
    std::string const full = path.Text();
    Quarn::PropertyCollection settings(full.substr(full.find_last_of('\\') + 1),
                                       Quarn::Win32::QuarnProperties::m_documentType);
    Quarn::Win32::RegistryPropPersist(key.Get()).Populate(&settings);

    std::uint64_t count = 0;
    std::vector<LeftOut> leftOut;
    RegistryVisitor const visitor{
        [](std::string const&) {},
        [&](std::string const& below, std::string const& name, RegistryData const& data) {
            std::string const reason = WhyNotSeeded(settings, below, name, data);
            if (reason.empty()) {
                ++count;
            } else {
                leftOut.push_back({below + ':' + name, reason});
            }
        }};
    WalkRegistry(path, visitor);
    if (!Quarn::Win32::XMLPropPersist(file).Persist(&settings)) {
        throw Failure(CannotWrite, Printable(file) + ": could not be saved; a text may hold what no settings "
                                                     "file can hold");
    }
    return Report(json, full, file, count, leftOut);
}

ExitCode ImportRegistry(std::string const& text, std::string const& file, bool json)
{
    RegistryPath const path(text);
    Quarn::PropertyCollection settings;
    LoadWhole(file, settings);
    std::uint64_t count = 0;
    std::vector<LeftOut> leftOut;
    WalkKeys(settings, [&](std::string const& below, Quarn::PropertyKey const& found) {
        std::string const full = JoinPath(path.below, below);
        auto const refuse = [&](LSTATUS code) {
            throw Failure(CannotWrite, Printable(path.rootName + '\\' + full) +
                                           ": cannot be written: " + SystemText(code));
        };
        OpenKey key;
        LSTATUS code = ::RegCreateKeyExA(path.root, full.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                         KEY_READ | KEY_WRITE, nullptr, key.Out(), nullptr);
        if (code != ERROR_SUCCESS) {
            refuse(code);
        }
        for (std::uint64_t i = 0; i < found.GetValueCount(); ++i) {
            Quarn::PropertyValue const& value = *found.GetValue(i);
            PropertyData const& data = value.GetData();
            std::string bytes;
            DWORD type = REG_BINARY;
            if (data.GetType() == PropertyData::TypeString) {
                type = REG_SZ;
                bytes = data.GetDataString();
                bytes += '\0';
            } else if (data.GetType() == PropertyData::TypeInt32) {
                type = REG_DWORD;
                bytes = ToLittleEndian(static_cast<std::uint32_t>(data.GetDataInt32()));
            } else if (data.GetType() == PropertyData::TypeBinary) {
                bytes.assign(reinterpret_cast<char const*>(data.GetDataBinary()),
                             static_cast<std::size_t>(data.GetDataSize()));
            } else {
                leftOut.push_back({AddressOf(below, value), "the registry has no values of unknown type"});
                continue;
            }
            char const* const name = value.IsDefaultValue() ? "" : value.GetName().c_str();
            code = ::RegSetValueExA(key.Get(), name, 0, type, reinterpret_cast<BYTE const*>(bytes.data()),
                                    static_cast<DWORD>(bytes.size()));
            if (code != ERROR_SUCCESS) {
                refuse(code);
            }
            ++count;
        }
    });
    return Report(json, path.Text(), file, count, leftOut);
}

} // namespace tool
