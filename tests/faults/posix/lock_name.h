// The name of the lock that the savers of a settings file share.
#pragma once

#include "tests/faults/name_hash.h"

#include <cstdio>
#include <filesystem>
#include <string>

inline std::string SettingsLockName(std::filesystem::path const& settingsFile)
{
    std::filesystem::path const folder = std::filesystem::canonical(settingsFile.parent_path());
    std::uint64_t const hash = NameHash((folder / settingsFile.filename()).string());
    char name[32];
    std::snprintf(name, sizeof name, "settings-%016llx", static_cast<unsigned long long>(hash));
    return name;
}
