// A registry key of its own for each test, removed with all below at the end.
#pragma once

#include "quarn/platform/win32_api.h"

#include <algorithm>
#include <atomic>
#include <string>
#include <vector>

// "v7" and the like.
inline std::string Numbered(std::string prefix, int number)
{
    return prefix.append(std::to_string(number));
}

// The names of a key's sub-keys or values, in the order of their enumeration.
inline std::vector<std::string> SubKeyNames(HKEY key)
{
    std::vector<std::string> names;
    char name[512];
    for (DWORD size = sizeof name; ::RegEnumKeyExA(key, static_cast<DWORD>(names.size()), name, &size,
                                                   nullptr, nullptr, nullptr, nullptr) == 0;
         size = sizeof name) {
        names.emplace_back(name, size);
    }
    return names;
}

inline std::vector<std::string> ValueNames(HKEY key)
{
    std::vector<std::string> names;
    std::vector<char> name(16384);
    for (DWORD size = 16384; ::RegEnumValueA(key, static_cast<DWORD>(names.size()), name.data(), &size,
                                             nullptr, nullptr, nullptr, nullptr) == 0;
         size = 16384) {
        names.emplace_back(name.data(), size);
    }
    return names;
}

// Where the order is the system's own.
inline std::vector<std::string> Sorted(std::vector<std::string> names)
{
    std::sort(names.begin(), names.end());
    return names;
}

inline void RemoveTree(HKEY parent, char const* name)
{
    HKEY key = nullptr;
    if (::RegOpenKeyExA(parent, name, 0, KEY_READ, &key) == 0) {
        for (std::string const& child : SubKeyNames(key)) {
            RemoveTree(key, child.c_str());
        }
        ::RegCloseKey(key);
        ::RegDeleteKeyA(parent, name);
    }
}

class ThrowAwayKey
{
public:
    explicit ThrowAwayKey(HKEY root = HKEY_CURRENT_USER) : m_root(root)
    {
        static std::atomic<int> count = 0;
        m_path = "Software\\QuarnUtilTest.";
        m_path.append(std::to_string(::GetCurrentProcessId())).append(".");
        m_path = Numbered(m_path, ++count);
        RemoveTree(m_root, m_path.c_str()); // of a process with the same number that came to no good end
        ::RegCreateKeyExA(m_root, m_path.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS,
                          nullptr, &m_key, nullptr);
    }
    ThrowAwayKey(ThrowAwayKey const&) = delete;
    ThrowAwayKey& operator=(ThrowAwayKey const&) = delete;
    ~ThrowAwayKey()
    {
        ::RegCloseKey(m_key);
        RemoveTree(m_root, m_path.c_str());
    }

    // Open with all rights.
    operator HKEY() const { return m_key; }
    // Below the root.
    std::string const& Path() const { return m_path; }

private:
    HKEY m_root;
    std::string m_path;
    HKEY m_key = nullptr;
};

// The calls as tests write them: results as plain numbers, the arguments that matter.

inline long OpenKey(HKEY key, char const* path, HKEY& result, REGSAM access = KEY_ALL_ACCESS)
{
    return ::RegOpenKeyExA(key, path, 0, access, &result);
}

inline long CreateKey(HKEY key, char const* path, HKEY& result, unsigned long* disposition = nullptr,
                      REGSAM access = KEY_ALL_ACCESS)
{
    DWORD made = 99;
    long const code =
        ::RegCreateKeyExA(key, path, 0, nullptr, REG_OPTION_NON_VOLATILE, access, nullptr, &result, &made);
    if (disposition != nullptr) {
        *disposition = made;
    }
    return code;
}

// Opens or creates, and closes at once.
inline long TryOpen(HKEY key, char const* path, REGSAM access = KEY_READ)
{
    HKEY result = nullptr;
    long const code = OpenKey(key, path, result, access);
    return code != 0 ? code : ::RegCloseKey(result);
}

inline long MakeKey(HKEY key, std::string const& path)
{
    HKEY result = nullptr;
    long const code = CreateKey(key, path.c_str(), result);
    return code != 0 ? code : ::RegCloseKey(result);
}

inline long SetBytes(HKEY key, char const* name, DWORD type, std::string const& data)
{
    return ::RegSetValueExA(key, name, 0, type, reinterpret_cast<BYTE const*>(data.data()),
                            static_cast<DWORD>(data.size()));
}

// A text with its terminator.
inline long SetText(HKEY key, char const* name, std::string const& text)
{
    return SetBytes(key, name, REG_SZ, std::string(text.c_str(), text.size() + 1));
}

// What a query gives: the untouched bytes of the buffer are '#'.
struct QueryResult
{
    long code = 0;
    unsigned long type = 99;
    unsigned long size = 0;
    std::string buffer;
};

inline QueryResult Query(HKEY key, char const* name, unsigned long capacity)
{
    QueryResult result;
    result.buffer.assign(capacity + 4, '#');
    DWORD type = 99;
    DWORD size = static_cast<DWORD>(capacity);
    result.code =
        ::RegQueryValueExA(key, name, nullptr, &type, reinterpret_cast<BYTE*>(result.buffer.data()), &size);
    result.type = type;
    result.size = size;
    return result;
}

// The data of a value that is there; "(missing)" otherwise.
inline std::string DataOf(HKEY key, char const* name)
{
    DWORD size = 0;
    if (::RegQueryValueExA(key, name, nullptr, nullptr, nullptr, &size) != 0) {
        return "(missing)";
    }
    std::string data(size, '\0');
    ::RegQueryValueExA(key, name, nullptr, nullptr, reinterpret_cast<BYTE*>(data.data()), &size);
    return data;
}
