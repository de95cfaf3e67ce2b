// Modules on POSIX.
#include "quarn/platform/posix/modules.h"

#include "quarn/platform/posix/errors.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <dlfcn.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

std::string ExecutableFile()
{
    char path[PATH_MAX];
    ::ssize_t const length = ::readlink("/proc/self/exe", path, sizeof path);
    return std::string(path, static_cast<std::size_t>(std::max<::ssize_t>(length, 0)));
}

// The file that the memory at this address is mapped from; empty where there is none.
std::string MappedFile(void const* address)
{
    auto const close = [](std::FILE* file) { std::fclose(file); };
    std::unique_ptr<std::FILE, decltype(close)> const maps(std::fopen("/proc/self/maps", "re"), close);
    char line[PATH_MAX + 128];
    while (maps != nullptr && std::fgets(line, sizeof line, maps.get()) != nullptr) {
        char* at = line;
        std::uintptr_t const begin = std::strtoull(at, &at, 16);
        std::uintptr_t const end = *at == '-' ? std::strtoull(at + 1, &at, 16) : 0;
        auto const wanted = reinterpret_cast<std::uintptr_t>(address);
        if (begin <= wanted && wanted < end) {
            char const* const path = std::strchr(at, '/');
            return path != nullptr ? std::string(path, std::strcspn(path, "\n")) : std::string();
        }
    }
    return {};
}

std::string ModuleFile(HMODULE module)
{
    // The executable has no name in the loader's list.
    if (module == nullptr || *LinkMap(module)->l_name == '\0') {
        return ExecutableFile();
    }
    // A relative name was meant for the current directory of that time.
    char const* const name = LinkMap(module)->l_name;
    return *name == '/' ? name : MappedFile(LinkMap(module)->l_ld);
}

// Null after a failure; `exists` tells whether the file was there at least.
HMODULE Load(std::string const& path, bool& exists)
{
    void* const module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    exists = exists || (path.find('/') != path.npos && ::access(path.c_str(), F_OK) == 0);
    return static_cast<HMODULE>(module);
}

HMODULE LoadFromPath(std::string const& name, bool& exists)
{
    char const* const path = std::getenv("PATH");
    std::string_view folders = path != nullptr ? path : "";
    HMODULE module = nullptr;
    while (module == nullptr && !folders.empty()) {
        std::string_view const folder = folders.substr(0, folders.find(':'));
        folders.remove_prefix(std::min(folder.size() + 1, folders.size()));
        if (!folder.empty()) {
            module = Load(std::string(folder) + "/" + name, exists);
        }
    }
    return module;
}

HMODULE FindAndLoad(std::string name, bool& exists)
{
    std::size_t const slash = name.find_last_of('/');
    if (name.find('.', slash == name.npos ? 0 : slash) == name.npos) {
        name += ".so";
    }
    if (slash != name.npos) {
        return Load(name, exists);
    }
    std::string const executable = ExecutableFile();
    HMODULE module = Load(executable.substr(0, executable.find_last_of('/') + 1) + name, exists);
    if (module == nullptr) {
        module = Load(name, exists);
    }
    if (module == nullptr) {
        module = Load("./" + name, exists);
    }
    return module != nullptr ? module : LoadFromPath(name, exists);
}

} // namespace

HMODULE ModuleOf(void const* address)
{
    ::Dl_info info;
    ::link_map* map = nullptr;
    int const found = ::dladdr1(address, &info, reinterpret_cast<void**>(&map), RTLD_DL_LINKMAP);
    return found != 0 ? reinterpret_cast<HMODULE>(map) : nullptr;
}

} // namespace Quarn::detail

using namespace Quarn::detail;

HMODULE GetModuleHandleA(char const* name)
{
    if (name != nullptr) {
        Fail(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    // One reference more to the program does not matter: it is never unloaded.
    return static_cast<HMODULE>(::dlopen(nullptr, RTLD_LAZY));
}

DWORD GetModuleFileNameA(HMODULE module, char* buffer, DWORD size)
{
    return Guarded(DWORD{0}, [&]() -> DWORD {
        std::string const path = ModuleFile(module);
        if (path.empty()) {
            return static_cast<DWORD>(Fail(ERROR_MOD_NOT_FOUND));
        }
        if (path.size() < size) {
            std::memcpy(buffer, path.c_str(), path.size() + 1);
            return static_cast<DWORD>(path.size());
        }
        if (size > 0) {
            buffer[path.copy(buffer, size - 1)] = '\0';
        }
        Fail(ERROR_INSUFFICIENT_BUFFER);
        return size;
    });
}

HMODULE LoadLibraryA(char const* path)
{
    return Guarded(HMODULE{nullptr}, [&]() -> HMODULE {
        if (path == nullptr || *path == '\0') {
            Fail(path == nullptr ? ERROR_INVALID_PARAMETER : ERROR_MOD_NOT_FOUND);
            return nullptr;
        }
        bool exists = false;
        HMODULE const module = FindAndLoad(path, exists);
        if (module == nullptr) {
            Fail(exists ? ERROR_BAD_EXE_FORMAT : ERROR_MOD_NOT_FOUND);
        }
        return module;
    });
}

FARPROC GetProcAddress(HMODULE module, char const* name)
{
    constexpr std::uintptr_t OrdinalsEnd = 0x10000;
    if (reinterpret_cast<std::uintptr_t>(name) < OrdinalsEnd) {
        Fail(ERROR_INVALID_ORDINAL);
        return nullptr;
    }
    // What the loader brought in for another module has no list to be searched until it is opened itself.
    void* const opened =
        module != nullptr ? ::dlopen(LinkMap(module)->l_name, RTLD_LAZY | RTLD_NOLOAD) : nullptr;
    if (opened == nullptr) {
        Fail(ERROR_MOD_NOT_FOUND);
        return nullptr;
    }
    void* const function = ::dlsym(opened, name);
    ::dlclose(opened);
    // The modules that this one needs have been searched too.
    if (function == nullptr || ModuleOf(function) != module) {
        Fail(ERROR_PROC_NOT_FOUND);
        return nullptr;
    }
    return reinterpret_cast<FARPROC>(function);
}
