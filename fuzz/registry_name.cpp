// Key paths and value names for the registry, beside a plain reading of the rules. Whatever the name: what
// was made is found under it and under names that differ in case alone, is listed once and as it was written,
// and is gone once it is deleted; what is refused has its code and leaves nothing behind.
//
// Input: an asterisk where the text is repeated, in two bytes how often, in two a place in the result, in one
// the bits that make another name there; then the text. Numbers have their high byte first.
#include "fuzz/memory_bound.h"
#include "fuzz/registry_folder.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include <locale.h>
#include <wctype.h>

namespace {

using fuzz::Check;

// The few pages of the data base, which stay; of each level of a path there is a handle, and two bytes of the
// path make one.
constexpr fuzz::MemoryBound Bound = {"registry_name", std::size_t{1} << 20, 64};

constexpr std::size_t HeaderSize = 6;
constexpr std::size_t LongestText = 33000; // two bytes for each unit of a value's name
constexpr std::size_t LongestPath = 2200;  // and more than the deepest key's
constexpr std::size_t LongestKeyName = 255;
constexpr std::size_t LongestValueName = 16383;
constexpr std::size_t DeepestKey = 512;
constexpr char32_t NoCharacter = 0x110000; // and a byte that begins none

// By the table of well-formed byte sequences in the Unicode standard.
std::vector<char32_t> Characters(std::string_view text)
{
    std::vector<char32_t> characters;
    for (std::size_t at = 0; at < text.size();) {
        auto const byte = [&](std::size_t i) {
            return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0U;
        };
        auto const isTail = [&](std::size_t i, unsigned low = 0x80, unsigned high = 0xBF) {
            return byte(i) >= low && byte(i) <= high;
        };
        unsigned const lead = byte(0);
        std::size_t length = 1;
        char32_t character = NoCharacter + lead;
        if (lead < 0x80) {
            character = lead;
        } else if (lead >= 0xC2 && lead <= 0xDF && isTail(1)) {
            length = 2;
            character = (lead & 0x1F) << 6 | (byte(1) & 0x3F);
        } else if (lead >= 0xE0 && lead <= 0xEF && isTail(2) &&
                   isTail(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF)) {
            length = 3;
            character = (lead & 0x0F) << 12 | (byte(1) & 0x3F) << 6 | (byte(2) & 0x3F);
        } else if (lead >= 0xF0 && lead <= 0xF4 && isTail(2) && isTail(3) &&
                   isTail(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF)) {
            length = 4;
            character =
                (lead & 0x07) << 18 | (byte(1) & 0x3F) << 12 | (byte(2) & 0x3F) << 6 | (byte(3) & 0x3F);
        }
        characters.push_back(character);
        at += length;
    }
    return characters;
}

std::size_t Units(std::string_view name)
{
    std::size_t units = 0;
    for (char32_t const character : Characters(name)) {
        units += character >= 0x10000 && character < NoCharacter ? 2 : 1;
    }
    return units;
}

std::string OtherCase(std::string text)
{
    for (char& c : text) {
        bool const isLetter = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
        c = static_cast<char>(isLetter ? c ^ 0x20 : c);
    }
    return text;
}

// Whether nothing but the case of letters differs, as the C library knows them.
bool MayBeEqual(std::string_view first, std::string_view second)
{
    static ::locale_t const locale = ::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    Check(locale != nullptr, "the C library has no Unicode");
    std::vector<char32_t> const a = Characters(first);
    std::vector<char32_t> const b = Characters(second);
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char32_t x, char32_t y) {
        bool const areLetters = (x < 0x80) == (y < 0x80) && x < 0x10000 && y < 0x10000;
        return x == y || (areLetters && ::towupper_l(x, locale) == ::towupper_l(y, locale));
    });
}

// The names of a path: what is between backslashes, if it is anything.
std::vector<std::string> Names(std::string const& path)
{
    std::vector<std::string> names;
    std::string name;
    for (char const c : path + '\\') {
        if (c != '\\') {
            name += c;
        } else if (!name.empty()) {
            names.push_back(std::move(name));
            name.clear();
        }
    }
    return names;
}

long Open(HKEY key, std::string const& path, HKEY& result)
{
    return ::RegOpenKeyExA(key, path.c_str(), 0, KEY_ALL_ACCESS, &result);
}

long TryOpen(HKEY key, std::string const& path)
{
    HKEY result = nullptr;
    long const code = Open(key, path, result);
    Check(code != 0 || ::RegCloseKey(result) == 0, "a key cannot be closed");
    return code;
}

// The only name that is listed, of keys or of values.
template<typename Enumerate>
std::string OnlyName(Enumerate enumerate)
{
    static std::array<char, LongestText> name;
    DWORD size = name.size();
    Check(enumerate(DWORD{0}, name.data(), &size) == 0, "what was made is not listed");
    std::string const found(name.data(), size);
    size = name.size();
    Check(enumerate(DWORD{1}, name.data(), &size) == long{ERROR_NO_MORE_ITEMS}, "something else is listed");
    return found;
}

std::string OnlySubKey(HKEY key)
{
    return OnlyName([key](DWORD index, char* name, DWORD* size) {
        return ::RegEnumKeyExA(key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
}

std::string OnlyValue(HKEY key)
{
    return OnlyName([key](DWORD index, char* name, DWORD* size) {
        return ::RegEnumValueA(key, index, name, size, nullptr, nullptr, nullptr, nullptr);
    });
}

void CheckEmpty(HKEY key)
{
    char name[8];
    DWORD size = sizeof name;
    Check(::RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) ==
              long{ERROR_NO_MORE_ITEMS},
          "a key is left behind");
    Check(::RegEnumValueA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) ==
              long{ERROR_NO_MORE_ITEMS},
          "a value is left behind");
}

// Down the only sub-keys, which must have these names, and up again, deleting each.
void WalkAndDelete(HKEY base, std::vector<std::string> const& names)
{
    std::vector<HKEY> keys = {base};
    for (std::string const& name : names) {
        Check(OnlySubKey(keys.back()) == name, "a key is listed by another name");
        HKEY key = nullptr;
        Check(Open(keys.back(), name, key) == 0, "a key that is listed is not found");
        keys.push_back(key);
    }
    for (std::size_t level = names.size(); level > 0; --level) {
        std::string const name = OtherCase(names[level - 1]);
        Check(level == 1 ||
                  ::RegDeleteKeyA(keys[level - 2], names[level - 2].c_str()) == long{ERROR_ACCESS_DENIED},
              "a key that has sub-keys is deleted");
        Check(::RegDeleteKeyA(keys[level - 1], name.c_str()) == 0, "a key cannot be deleted");
        Check(::RegDeleteKeyA(keys[level - 1], name.c_str()) == long{ERROR_FILE_NOT_FOUND},
              "a key is deleted twice");
        Check(TryOpen(keys[level], "") == long{ERROR_KEY_DELETED}, "a key is there and is deleted");
        Check(::RegCloseKey(keys[level]) == 0, "a deleted key cannot be closed");
    }
}

void TryKey(HKEY base, std::string const& path, std::string const& other)
{
    std::vector<std::string> const names = Names(path);
    bool const isBad = path.starts_with('\\');
    bool isLong = names.size() + 1 > DeepestKey; // the base is one level
    for (std::string const& name : names) {
        isLong = isLong || Units(name) > LongestKeyName;
    }
    long const missing = isBad           ? long{ERROR_BAD_PATHNAME}
                         : names.empty() ? long{ERROR_SUCCESS}
                                         : long{ERROR_FILE_NOT_FOUND};
    Check(TryOpen(base, path) == missing, "a key that was not made is found");
    HKEY key = nullptr;
    DWORD made = 0;
    long const code = ::RegCreateKeyExA(base, path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                        KEY_ALL_ACCESS, nullptr, &key, &made);
    Check(code == (isBad    ? long{ERROR_BAD_PATHNAME}
                   : isLong ? long{ERROR_INVALID_PARAMETER}
                            : long{ERROR_SUCCESS}),
          "a key is made that has no right name, or refused one that has");
    if (code == 0) {
        Check(::RegCloseKey(key) == 0, "a new key cannot be closed");
        Check(made == (names.empty() ? REG_OPENED_EXISTING_KEY : REG_CREATED_NEW_KEY), "another disposition");
        for (std::string const& same : {path, OtherCase(path), path + "\\\\"}) {
            Check(same.starts_with('\\') || TryOpen(base, same) == 0, "a key is not found again");
        }
        Check(::RegCreateKeyExA(base, OtherCase(path).c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE,
                                KEY_ALL_ACCESS, nullptr, &key, &made) == 0 &&
                  made == REG_OPENED_EXISTING_KEY && ::RegCloseKey(key) == 0,
              "a key is made twice");
        // A part of the path is a path, too.
        std::vector<std::string> const others = Names(other);
        bool isAlike = !other.starts_with('\\') && others.size() <= names.size();
        for (std::size_t i = 0; isAlike && i < others.size(); ++i) {
            isAlike = MayBeEqual(names[i], others[i]);
        }
        Check(isAlike || TryOpen(base, other) != 0, "a key is found under another name");
        WalkAndDelete(base, names);
    }
    Check(TryOpen(base, path) == missing, "a key is found that was deleted");
    CheckEmpty(base);
}

void TryValue(HKEY base, std::string const& name, std::string const& other)
{
    auto const query = [base](std::string const& wanted) {
        BYTE data[8] = {};
        DWORD size = sizeof data;
        long const code = ::RegQueryValueExA(base, wanted.c_str(), nullptr, nullptr, data, &size);
        Check(code != 0 || (size == 4 && std::equal(data, data + 4, "data")), "other data");
        return code;
    };
    Check(query(name) == long{ERROR_FILE_NOT_FOUND}, "a value that was not made is found");
    BYTE const data[4] = {'d', 'a', 't', 'a'};
    long const code = ::RegSetValueExA(base, name.c_str(), 0, REG_BINARY, data, sizeof data);
    Check(code == (Units(name) > LongestValueName ? long{ERROR_INVALID_PARAMETER} : long{ERROR_SUCCESS}),
          "a value is made that has no right name, or refused one that has");
    if (code == 0) {
        std::string const same = OtherCase(name);
        Check(query(name) == 0 && query(same) == 0, "a value is not found again");
        Check(::RegSetValueExA(base, same.c_str(), 0, REG_BINARY, data, sizeof data) == 0,
              "a value cannot be set again");
        Check(OnlyValue(base) == name, "a value is listed by another name");
        Check(MayBeEqual(name, other) || query(other) != 0, "a value is found under another name");
        Check(::RegDeleteValueA(base, same.c_str()) == 0, "a value cannot be deleted");
        Check(::RegDeleteValueA(base, name.c_str()) == long{ERROR_FILE_NOT_FOUND},
              "a value is deleted twice");
    }
    CheckEmpty(base);
}

// The registry stays open: opening it anew is not what is tried here.
HKEY MakeBase()
{
    static fuzz::RegistryFolder const folder;
    HKEY base = nullptr;
    Check(::RegCreateKeyExA(HKEY_CURRENT_USER, "base", 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                            nullptr, &base, nullptr) == 0,
          "no registry can be made");
    return base;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    static HKEY const base = MakeBase();
    if (size < HeaderSize) {
        return 0;
    }
    std::string once(reinterpret_cast<char const*>(data) + HeaderSize, size - HeaderSize);
    once.resize(std::min(once.find('\0'), once.size()));
    std::size_t const times = data[0] == '*' ? std::size_t{data[1]} << 8 | data[2] : 0;
    std::string text = once;
    for (std::size_t i = 0; i < times && text.size() + once.size() <= LongestText && !once.empty(); ++i) {
        text += once;
    }
    std::string other = text;
    if (!text.empty()) {
        other[(std::size_t{data[3]} << 8 | data[4]) % text.size()] ^= static_cast<char>(data[5]);
        other.resize(std::min(other.find('\0'), other.size()));
    }
    fuzz::Watch(Bound, text.size(), [&] {
        if (text.size() <= LongestPath) {
            TryKey(base, text, other);
        }
        TryValue(base, text, other);
    });
    return 0;
}
