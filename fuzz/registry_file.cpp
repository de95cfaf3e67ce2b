// The registry's file, opened by the registry itself. Whatever the file is, every function ends, in bounded
// memory and with a documented code; what is refused stays as it is; two readings bring the same; and where
// the data base by itself finds the file sound, what is written is read back and a key that was moved is
// gone.
//
// Input: the file.
#include "quarn/platform/posix/registry_store.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/registry_persist.h"
#include "quarn/registry/registry_enum.h"
#include "quarn/registry/registry_value.h"

#include "fuzz/memory_bound.h"
#include "fuzz/registry_folder.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <sqlite3.h>

namespace {

// The data base keeps up to 2,000 KiB of pages and some for itself; a key of a tree takes some hundred bytes,
// in the file a tenth.
constexpr fuzz::MemoryBound Bound = {"registry_file", std::size_t{7} << 19, 64};

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

// What is in the file behind its header, which says how it is written, too: with a log from its opening on.
std::string_view Tables(std::string_view content)
{
    constexpr std::size_t HeaderSize = 100;
    return content.substr(std::min(HeaderSize, content.size()));
}

// The values through the classes: a text is the value's bytes up to the first zero.
void ReadValues()
{
    Win32Quarn::CurrentUserKey key;
    if (!key.OpenRead("")) {
        return;
    }
    Quarn::StringList names;
    Win32Quarn::RegistryValueEnum(key).Read(names);
    for (Quarn::string const& name : names) {
        Win32Quarn::RegistryValue value(key, name);
        DWORD size = 0;
        ::RegQueryValueExA(HKEY_CURRENT_USER, name.c_str(), nullptr, nullptr, nullptr, &size);
        std::string bytes(size, '\0');
        long const code = ::RegQueryValueExA(HKEY_CURRENT_USER, name.c_str(), nullptr, nullptr,
                                             reinterpret_cast<BYTE*>(bytes.data()), &size);
        Quarn::string text;
        bool const isRead = value.Read(text, nullptr);
        fuzz::Check(isRead == (code == 0) && value.Exists() == (isRead && size != 0) &&
                        (!isRead || text == bytes.substr(0, bytes.find('\0'))),
                    "another text");
        unsigned long number = 0;
        fuzz::Check(value.Read(&number) == (isRead && size <= 4), "a number of another size");
        int first = 0;
        Quarn::string second;
        fuzz::Check(isRead || !value.Readf("it", &first, &second), "a record of no value");
    }
}

// A copy of a key with all below it, and a move.
void CopyAndMove(bool isSound)
{
    Win32Quarn::CurrentUserKey from("Software");
    Win32Quarn::CurrentUserKey copy("Copied");
    if (from.OpenRead("")) {
        fuzz::Check(!from.Copy(copy, false), "a copy deliberately never succeeds");
    }
    bool const isMoved = Win32Quarn::CurrentUserKey("Software").Rename("Moved");
    HKEY key = nullptr;
    if (fuzz::Documented(::RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key)) == 0) {
        ::RegCloseKey(key);
        fuzz::Check(!isSound || !isMoved, "a key that was moved is still there");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static fuzz::RegistryFolder const folder;
    if (size > 65536) {
        return 0;
    }
    std::string const content(reinterpret_cast<char const*>(data), size);
    fuzz::RegistryFolder::Clear(folder.UserFile());
    fuzz::RegistryFolder::Fill(folder.UserFile(), content);
    bool const isSound = IsSound(folder.UserFile());
    fuzz::Watch(Bound, size, [&] {
        HKEY key = nullptr;
        long const first =
            fuzz::Documented(::RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key));
        if (first == 0) {
            ::RegCloseKey(key);
        }
        std::string const values = fuzz::ValuesOf(HKEY_CURRENT_USER);
        fuzz::Check(fuzz::ValuesOf(HKEY_CURRENT_USER) == values, "another reading brings other values");
        Quarn::PropertyCollection tree;
        Quarn::Win32::RegistryPropPersist(HKEY_CURRENT_USER).Populate(&tree);
        ReadValues();
        fuzz::WriteAndRemove(HKEY_CURRENT_USER, isSound && !fuzz::IsDamage(first));
        if (!fuzz::IsDamage(first)) {
            CopyAndMove(isSound);
        }
        Quarn::detail::RegistryStore::CloseFiles();
        if (fuzz::IsDamage(first)) {
            fuzz::Check(Tables(fuzz::RegistryFolder::Content(folder.UserFile())) == Tables(content),
                        "a file that was refused has changed");
        }
    });
    fuzz::RegistryFolder::Clear(folder.UserFile());
    return 0;
}
