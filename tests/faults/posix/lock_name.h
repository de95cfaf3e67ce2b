// The name of the lock that the savers of a settings file share.
#pragma once

#include <cctype>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <string>

inline std::string SettingsLockName(std::filesystem::path const& settingsFile)
{
    std::uint64_t hash = 0xCBF29CE484222325; // FNV-1a, without case
    for (char const c :
         (std::filesystem::canonical(settingsFile.parent_path()) / settingsFile.filename()).string()) {
        hash = (hash ^ static_cast<unsigned char>(std::tolower(c))) * 0x100000001B3;
    }
    char name[32];
    std::snprintf(name, sizeof name, "settings-%016llx", static_cast<unsigned long long>(hash));
    return name;
}
