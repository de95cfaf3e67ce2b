// A folder with registries of this program's own, and what their readers may answer.
#pragma once

#include "quarn/platform/win32_api.h"

#include "fuzz/check.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sqlite3.h>
#include <unistd.h>

namespace fuzz {

// SQLite asks for as many bytes as a damaged row claims to have, if they are chosen so that its own check
// overflows, and gives them back at once. It gets none here, and all the rest is counted.
class BoundedDatabase
{
public:
    BoundedDatabase()
    {
        ::sqlite3_config(SQLITE_CONFIG_GETMALLOC, &Methods());
        sqlite3_mem_methods bounded = Methods();
        bounded.xMalloc = [](int size) { return size > Most ? nullptr : Methods().xMalloc(size); };
        bounded.xRealloc = [](void* block, int size) {
            return size > Most ? nullptr : Methods().xRealloc(block, size);
        };
        Check(::sqlite3_config(SQLITE_CONFIG_MALLOC, &bounded) == SQLITE_OK, "SQLite is at work already");
    }

private:
    static constexpr int Most = 1 << 20; // far more than any input is long

    static sqlite3_mem_methods& Methods()
    {
        static sqlite3_mem_methods methods;
        return methods;
    }
};

// In the current folder, or in the one that QUARN_FUZZ_SCRATCH names, say one in memory; gone at the end.
class RegistryFolder
{
public:
    RegistryFolder()
    {
        char const* const scratch = std::getenv("QUARN_FUZZ_SCRATCH");
        std::filesystem::path const base = scratch != nullptr ? scratch : ".";
        m_path = std::filesystem::absolute(base / ("fuzz." + std::to_string(::getpid())));
        std::filesystem::create_directories(m_path / "quarnutil");
        std::filesystem::create_directory(m_path / "machine");
        ::setenv("XDG_DATA_HOME", m_path.c_str(), 1);
        ::setenv("QUARNUTIL_MACHINE_DIR", (m_path / "machine").c_str(), 1);
    }
    RegistryFolder(RegistryFolder const&) = delete;
    RegistryFolder& operator=(RegistryFolder const&) = delete;
    ~RegistryFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string UserFile() const { return m_path / "quarnutil" / "registry.db"; }
    std::string MachineFile() const { return m_path / "machine" / "registry.db"; }

    static void Fill(std::string const& path, std::string const& content)
    {
        std::ofstream(path, std::ios_base::binary) << content;
    }
    static std::string Content(std::string const& path)
    {
        std::ifstream file(path, std::ios_base::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    // Removes a registry with the files beside it.
    static void Clear(std::string const& path)
    {
        for (char const* const suffix : {"", "-wal", "-shm", "-journal"}) {
            ::unlink((path + suffix).c_str());
        }
    }

private:
    BoundedDatabase m_database;
    std::filesystem::path m_path;
};

inline long Documented(long code)
{
    static constexpr DWORD Codes[] = {ERROR_SUCCESS,           ERROR_FILE_NOT_FOUND, ERROR_ACCESS_DENIED,
                                      ERROR_NOT_ENOUGH_MEMORY, ERROR_MORE_DATA,      ERROR_NO_MORE_ITEMS,
                                      ERROR_INVALID_PARAMETER, ERROR_KEY_DELETED,    ERROR_REGISTRY_CORRUPT,
                                      ERROR_NOT_REGISTRY_FILE};
    bool const isDocumented =
        std::find(std::begin(Codes), std::end(Codes), static_cast<DWORD>(code)) != std::end(Codes);
    if (!isDocumented) {
        std::fprintf(stderr, "code %ld\n", code);
    }
    Check(isDocumented, "an undocumented code");
    return code;
}

// Some damage of its own tables ends in a lack of memory: see above.
inline bool IsDamage(long code)
{
    return code == long{ERROR_REGISTRY_CORRUPT} || code == long{ERROR_NOT_REGISTRY_FILE} ||
           code == long{ERROR_NOT_ENOUGH_MEMORY};
}

// All values of a key, with their codes; and each by its name.
inline std::string ValuesOf(HKEY key)
{
    std::string seen;
    for (DWORD index = 0;; ++index) {
        char name[300];
        DWORD nameSize = sizeof name;
        DWORD type = 0;
        BYTE data[2000];
        DWORD size = sizeof data;
        long const code =
            Documented(::RegEnumValueA(key, index, name, &nameSize, nullptr, &type, data, &size));
        seen += std::to_string(code) + ':';
        if (code != 0 && code != long{ERROR_MORE_DATA}) {
            return seen;
        }
        if (code == 0) {
            seen.append(name, nameSize).append(reinterpret_cast<char const*>(data), size);
            size = sizeof data;
            Documented(::RegQueryValueExA(key, name, nullptr, &type, data, &size));
        }
    }
}

// Makes a key and a value in it, and removes both. Where the registry is sound, what was written is read.
inline void WriteAndRemove(HKEY root, bool isSound)
{
    HKEY key = nullptr;
    long code = Documented(::RegCreateKeyExA(root, "Software\\Written", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                             KEY_ALL_ACCESS, nullptr, &key, nullptr));
    if (code == 0) {
        BYTE const text[] = "written";
        code = Documented(::RegSetValueExA(key, "v", 0, REG_SZ, text, sizeof text));
        if (code == 0) {
            BYTE found[sizeof text] = {};
            DWORD size = sizeof found;
            code = Documented(::RegQueryValueExA(key, "v", nullptr, nullptr, found, &size));
            Check(!isSound || (code == 0 && std::equal(std::begin(text), std::end(text), found)),
                  "what was written is not read");
        }
        long const removed = Documented(::RegDeleteValueA(key, "v"));
        code = code != 0 ? code : removed;
        ::RegCloseKey(key);
        long const deleted = Documented(::RegDeleteKeyA(root, "Software\\Written"));
        code = code != 0 ? code : deleted;
    }
    Check(!isSound || code == 0, "a sound registry cannot be written");
}

} // namespace fuzz
