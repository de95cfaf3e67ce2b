// A file beside the registry's: a write-ahead log, a journal, the memory that processes share. Whatever it
// is, every function ends, in bounded memory and with a documented code. One that is no part of a sound
// registry changes nothing: all values are there, and others can be written. What is refused because of its
// log stays as it is.
//
// Input: one byte for the kind, the registry, the data base and the checksums; then the side file, or, where
// the data base comes from the input too, its length in two bytes, the data base and the side file.
#include "quarn/platform/posix/registry_store.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/registry_persist.h"

#include "fuzz/memory_bound.h"
#include "fuzz/registry_folder.h"
#include "tests/platform/posix/side_files.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace {

using fuzz::Check;
using fuzz::Documented;
using fuzz::RegistryFolder;
using Quarn::detail::RegistryStore;

// As for the registry's file, and of each page of the log its place.
constexpr fuzz::MemoryBound Bound = {"registry_side_file", std::size_t{7} << 19, 64};

constexpr char const* Suffixes[] = {"-wal", "-journal", "-shm"};
enum Kind : unsigned
{
    Log,
    Journal,
    Shared
};
constexpr unsigned KindBits = 3;
constexpr unsigned MachineBit = 4;
constexpr unsigned OwnFileBit = 8;
constexpr unsigned SignBit = 16;

struct Registry
{
    HKEY root;
    std::string path;
    std::string file; // a sound one's bytes
    std::string values;
};

// The values of two keys.
std::string Values(HKEY root)
{
    std::string values = fuzz::ValuesOf(root);
    HKEY key = nullptr;
    long const code = Documented(::RegOpenKeyExA(root, "Software\\Fuzz", 0, KEY_READ, &key));
    values += std::to_string(code) + ';';
    if (code == 0) {
        values += fuzz::ValuesOf(key);
        ::RegCloseKey(key);
    }
    return values;
}

// A registry in pages as small as there are, so that side files are small, too.
Registry Make(HKEY root, std::string path, char const* journal)
{
    HKEY key = nullptr;
    ::RegCreateKeyExA(root, "Software\\Fuzz", 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                      &key, nullptr);
    BYTE const data[300] = "data";
    for (char const* const name : {"a", "b", "c"}) {
        Check(::RegSetValueExA(key, name, 0, REG_BINARY, data, sizeof data) == 0, "no registry can be made");
    }
    ::RegCloseKey(key);
    RegistryStore::CloseFiles();
    std::string const commands =
        std::string("PRAGMA journal_mode = DELETE; PRAGMA page_size = 512; VACUUM; PRAGMA journal_mode = ") +
        journal;
    sqlite3* database = nullptr;
    bool const isMade = ::sqlite3_open(path.c_str(), &database) == SQLITE_OK &&
                        ::sqlite3_exec(database, commands.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK;
    ::sqlite3_close(database);
    Check(isMade, "no registry can be made small");
    Registry registry{root, std::move(path), {}, Values(root)};
    RegistryStore::CloseFiles();
    registry.file = RegistryFolder::Content(registry.path);
    return registry;
}

bool IsPart(Kind kind, bool isMachine, std::string_view content)
{
    switch (kind) {
    case Log:
        return !isMachine && SideFiles::Counts(content);
    case Journal:
        return isMachine && content.starts_with(SideFiles::JournalMagic);
    default:
        return false;
    }
}

void Use(HKEY root, bool isSound)
{
    Quarn::PropertyCollection tree;
    Quarn::Win32::RegistryPropPersist(root).Populate(&tree);
    fuzz::WriteAndRemove(root, isSound);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static RegistryFolder const folder;
    static Registry const user = Make(HKEY_CURRENT_USER, folder.UserFile(), "WAL");
    static Registry const machine = Make(HKEY_LOCAL_MACHINE, folder.MachineFile(), "DELETE");
    if (size == 0 || size > 65536) {
        return 0;
    }
    unsigned const mode = data[0];
    auto const kind = static_cast<Kind>((mode & KindBits) % 3);
    bool const isMachine = (mode & MachineBit) != 0;
    Registry const& registry = isMachine ? machine : user;
    std::string beside(reinterpret_cast<char const*>(data) + 1, size - 1);
    std::string file = registry.file;
    if ((mode & OwnFileBit) != 0 && beside.size() >= 2) {
        std::size_t const fileSize = SideFiles::Number(std::string(2, '\0') + beside.substr(0, 2), 0);
        file = beside.substr(2, fileSize);
        beside.erase(0, 2 + fileSize);
    }
    if (kind == Log && (mode & SignBit) != 0) {
        SideFiles::Sign(beside);
    }
    bool const isSound = file == registry.file && !IsPart(kind, isMachine, beside);

    RegistryFolder::Clear(registry.path);
    RegistryFolder::Fill(registry.path, file);
    RegistryFolder::Fill(registry.path + Suffixes[kind], beside);
    fuzz::Watch(Bound, file.size() + beside.size(), [&] {
        HKEY key = nullptr;
        long const first = Documented(::RegOpenKeyExA(registry.root, "Software", 0, KEY_READ, &key));
        if (first == 0) {
            ::RegCloseKey(key);
        }
        std::string const values = Values(registry.root);
        Check(Values(registry.root) == values, "another reading brings other values");
        Check(!isSound || values == registry.values, "a file that is no part of a registry changes it");
        Use(registry.root, isSound);
        RegistryStore::CloseFiles();
        Check(!isSound || Values(registry.root) == registry.values, "a registry changes when it is closed");
        RegistryStore::CloseFiles();
        if (fuzz::IsDamage(first) && kind != Journal) {
            Check(RegistryFolder::Content(registry.path) == file, "a file that was refused has changed");
        }
    });
    RegistryFolder::Clear(registry.path);
    return 0;
}
