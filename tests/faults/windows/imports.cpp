#include "tests/faults/windows/imports.h"

#include "quarn/platform/win32_api.h"

#include <algorithm>
#include <cstring>

namespace Faults {

namespace {

constexpr char const* Library = "QuarnUtil.dll";
constexpr char const* StandardLibrary = "libstdc++-6.dll";

struct Placed
{
    std::vector<std::string> names;
    std::vector<std::string> idle;
};

// Made by the first hook, before anything is armed.
Placed& AllHooks()
{
    static Placed hooks;
    return hooks;
}

// Calls visit(the providing module's name, the function's name, its place) for all that the module imports by
// name.
template<typename Visit>
void ForEachImport(char const* moduleName, Visit visit)
{
    auto* const base = reinterpret_cast<char*>(::GetModuleHandleA(moduleName));
    if (base == nullptr) {
        return;
    }
    auto const* const dos = reinterpret_cast<IMAGE_DOS_HEADER const*>(base);
    auto const* const headers = reinterpret_cast<IMAGE_NT_HEADERS const*>(base + dos->e_lfanew);
    DWORD const offset = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress;
    auto const* provider = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR const*>(base + offset);
    for (; provider->Name != 0; ++provider) {
        auto const* name = reinterpret_cast<IMAGE_THUNK_DATA const*>(base + provider->OriginalFirstThunk);
        auto* place = reinterpret_cast<void**>(base + provider->FirstThunk);
        for (; name->u1.AddressOfData != 0; ++name, ++place) {
            if (!IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) {
                visit(base + provider->Name,
                      reinterpret_cast<IMAGE_IMPORT_BY_NAME const*>(base + name->u1.AddressOfData)->Name,
                      place);
            }
        }
    }
}

bool Replace(char const* module, char const* name, void* function)
{
    bool isFound = false;
    ForEachImport(module, [&](char const* /*provider*/, char const* imported, void** place) {
        DWORD access = 0;
        if (std::strcmp(imported, name) == 0 &&
            ::VirtualProtect(place, sizeof *place, PAGE_READWRITE, &access)) {
            *place = function;
            ::VirtualProtect(place, sizeof *place, access, &access);
            isFound = true;
        }
    });
    return isFound;
}

} // namespace

Hook::Hook(char const* name, void* function)
{
    bool const isInLibrary = Replace(Library, name, function);
    bool const isInStandardLibrary = Replace(StandardLibrary, name, function);
    AllHooks().names.emplace_back(name);
    if (!isInLibrary && !isInStandardLibrary) {
        AllHooks().idle.emplace_back(name);
    }
}

std::vector<std::string> IdleHooks()
{
    return AllHooks().idle;
}

std::vector<std::string> UnhookedImports()
{
    std::vector<std::string> unhooked;
    ForEachImport(Library, [&](char const* provider, char const* name, void** /*place*/) {
        // The compiler's are called lib...; of the C library there are the allocations and the files alone.
        bool const isSystem = ::_strnicmp(provider, "lib", 3) != 0 && ::_stricmp(provider, "msvcrt.dll") != 0;
        auto const& names = AllHooks().names;
        if (isSystem && std::find(names.begin(), names.end(), name) == names.end()) {
            unhooked.emplace_back(name);
        }
    });
    return unhooked;
}

} // namespace Faults
