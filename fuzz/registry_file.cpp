// The registry's file, opened by the registry itself. Whatever the file is, every function ends, in bounded
// memory and with a documented code; what is refused stays as it is; two readings bring the same; and where
// the data base by itself finds the file sound, what is written is read back.
//
// Input: the file.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/registry_persist.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

// The data base keeps up to 2,000 KiB of pages and some for itself; a key of a tree takes some hundred bytes,
// in the file a tenth.
constexpr fuzz::MemoryBound Bound = {"registry_file", std::size_t{7} << 19, 64};

// A folder with a registry of its own.
class Folder
{
public:
    Folder()
    {
        std::filesystem::path const path = std::filesystem::absolute("fuzz." + std::to_string(::getpid()));
        m_path = path;
        std::filesystem::create_directories(path / "quarnutil");
        ::setenv("XDG_DATA_HOME", path.c_str(), 1);
        ::setenv("QUARNUTIL_MACHINE_DIR", (path / "none").c_str(), 1);
    }
    Folder(Folder const&) = delete;
    Folder& operator=(Folder const&) = delete;
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }

    std::string File() const { return m_path / "quarnutil" / "registry.db"; }

    void Fill(std::string const& content) const
    {
        Clear();
        std::ofstream(File(), std::ios_base::binary) << content;
    }
    std::string Content() const
    {
        std::ifstream file(File(), std::ios_base::binary);
        return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    }
    void Clear() const
    {
        for (char const* const suffix : {"", "-wal", "-shm", "-journal"}) {
            ::unlink((File() + suffix).c_str());
        }
    }

private:
    std::filesystem::path m_path;
};

// A process that forks closes its registry, and opens the file anew.
void CloseRegistry()
{
    ::pid_t const child = ::fork();
    if (child == 0) {
        ::_exit(0);
    }
    ::waitpid(child, nullptr, 0);
}

// Whether the data base by itself finds nothing wrong.
bool IsSound(std::string const& path)
{
    sqlite3* database = nullptr;
    bool isSound = ::sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr) == SQLITE_OK;
    sqlite3_stmt* statement = nullptr;
    isSound =
        isSound &&
        ::sqlite3_prepare_v2(database, "PRAGMA integrity_check", -1, &statement, nullptr) == SQLITE_OK &&
        ::sqlite3_step(statement) == SQLITE_ROW &&
        std::string("ok") == reinterpret_cast<char const*>(::sqlite3_column_text(statement, 0));
    ::sqlite3_finalize(statement);
    ::sqlite3_close(database);
    return isSound;
}

long Documented(long code)
{
    static constexpr DWORD Codes[] = {ERROR_SUCCESS,     ERROR_FILE_NOT_FOUND,   ERROR_ACCESS_DENIED,
                                      ERROR_MORE_DATA,   ERROR_NO_MORE_ITEMS,    ERROR_INVALID_PARAMETER,
                                      ERROR_KEY_DELETED, ERROR_REGISTRY_CORRUPT, ERROR_NOT_REGISTRY_FILE};
    bool const isDocumented =
        std::find(std::begin(Codes), std::end(Codes), static_cast<DWORD>(code)) != std::end(Codes);
    if (!isDocumented) {
        std::fprintf(stderr, "code %ld\n", code);
    }
    fuzz::Check(isDocumented, "an undocumented code");
    return code;
}

bool IsDamage(long code)
{
    return code == long{ERROR_REGISTRY_CORRUPT} || code == long{ERROR_NOT_REGISTRY_FILE};
}

// All values of a key, with their codes; and each by its name.
std::string Values(HKEY key)
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

void Write(bool isSound)
{
    HKEY key = nullptr;
    if (Documented(::RegCreateKeyExA(HKEY_CURRENT_USER, "Software\\Fuzz", 0, nullptr, REG_OPTION_NON_VOLATILE,
                                     KEY_ALL_ACCESS, nullptr, &key, nullptr)) != 0) {
        return;
    }
    BYTE const text[] = "written";
    if (Documented(::RegSetValueExA(key, "v", 0, REG_SZ, text, sizeof text)) == 0) {
        BYTE found[sizeof text] = {};
        DWORD size = sizeof found;
        long const code = Documented(::RegQueryValueExA(key, "v", nullptr, nullptr, found, &size));
        fuzz::Check(!isSound || (code == 0 && std::equal(std::begin(text), std::end(text), found)),
                    "what was written is not read");
    }
    Documented(::RegDeleteValueA(key, "v"));
    ::RegCloseKey(key);
    Documented(::RegDeleteKeyA(HKEY_CURRENT_USER, "Software\\Fuzz"));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static Folder const folder;
    if (size > 65536) {
        return 0;
    }
    std::string const content(reinterpret_cast<char const*>(data), size);
    folder.Fill(content);
    bool const isSound = IsSound(folder.File());
    fuzz::Watch(Bound, size, [&] {
        HKEY key = nullptr;
        long const first = Documented(::RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key));
        if (first == 0) {
            ::RegCloseKey(key);
        }
        std::string const values = Values(HKEY_CURRENT_USER);
        fuzz::Check(Values(HKEY_CURRENT_USER) == values, "another reading brings other values");
        Quarn::PropertyCollection tree;
        Quarn::Win32::RegistryPropPersist(HKEY_CURRENT_USER).Populate(&tree);
        Write(isSound);
        CloseRegistry();
        if (IsDamage(first)) {
            fuzz::Check(folder.Content() == content, "a file that was refused has changed");
        }
    });
    folder.Clear();
    return 0;
}
