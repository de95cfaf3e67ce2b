#include "settings.h"

#include "quarn/platform/win32_api.h"
#include "quarn/registry/registry_key.h"
#include "quarn/registry/registry_value.h"

#include <filesystem>
#include <functional>
#include <set>

namespace station {

namespace {

namespace fs = std::filesystem;

constexpr char seedKey[] = R"(SOFTWARE\Tessary\Station)";
constexpr char lastBackup[] = "Backup:Last";

// The file's backups, the newest first.
std::set<std::string, std::greater<>> FindBackups(fs::path const& file)
{
    std::set<std::string, std::greater<>> backups;
    std::string const begin = file.stem().string() + "_";
    for (fs::directory_entry const& entry : fs::directory_iterator(fs::absolute(file).parent_path())) {
        if (entry.path().filename().string().rfind(begin, 0) == 0 &&
            entry.path().extension() == file.extension()) {
            backups.insert(entry.path().string());
        }
    }
    return backups;
}

} // namespace

bool Commission(Quarn::string const& name, unsigned long freeDiskPercent)
{
    Win32Quarn::LocalMachineKey identity(seedKey);
    Win32Quarn::LocalMachineKey limits(seedKey);
    return identity.Open("Identity") && Win32Quarn::RegistryValue(identity, "Name").Write(name) &&
           limits.Open("Limits") &&
           Win32Quarn::RegistryValue(limits, "FreeDiskPercent").Write(freeDiskPercent);
}

Quarn::Win32::QuarnProperties MakeSettings()
{
    return Quarn::Win32::QuarnProperties("Station.xml", "Station", HKEY_LOCAL_MACHINE, seedKey);
}

std::string Load(Quarn::Win32::QuarnProperties& settings)
{
    bool const isNew = !fs::exists(settings.GetXMLFilePath().c_str());
    if (settings.Populate()) {
        return isNew ? "new, seeded from the registry" : "loaded";
    }
    if (isNew) {
        return "new";
    }
    for (std::string const& backup : FindBackups(settings.GetXMLFilePath().c_str())) {
        if (settings.RestoreXML(backup)) {
            return "could not be read; restored from " + backup;
        }
    }
    return "could not be read; the file will be kept under a second name";
}

std::string BackUp(Quarn::Win32::QuarnProperties& settings)
{
    char backup[MAX_PATH];
    if (!settings.PopulatedOK() || !settings.BackupXML(backup)) {
        return {};
    }
    std::error_code ignored;
    fs::remove(settings.GetValueString(lastBackup, "").c_str(), ignored);
    settings.SetValueString(Quarn::string(lastBackup) + "=" + backup, true);
    return backup;
}

} // namespace station
