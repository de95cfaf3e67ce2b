// Companion libraries as modules of the system: DLLs on Windows, shared objects elsewhere. Everything that
// loads a module or looks into one does so under the mutex "Win32LibraryMutex", for all of its duration and
// without a limit to the wait: one thread of all the processes that use this library at a time. The mutex is
// recursive, so a module may load others while it starts. Where it cannot be made, the work is done without.
//
// Elsewhere than on Windows '/' separates and PATH is joined with ':'; a colon or a backslash in a name is an
// ordinary character; a name without a dot gets ".so", and none gets a "lib" in front.
#pragma once

#include "quarn/export.h"
#include "quarn/platform/library.h"
#include "quarn/platform/win32_types.h"
#include "quarn/text/string.h"

#include <cstdint>

namespace Win32Quarn {

// The library's name is the module's file name, for LoadLib. A module that was loaded stays so until the
// process ends, whatever becomes of the objects. Different threads may load and look up at once, through one
// object too; the error of a lookup is for one thread at a time. Copies share the module.
class QUARN_API Win32Library : public Quarn::Library
{
public:
    // "bin": the part of the common directory where modules would be.
    static Quarn::string const LibrarySubdir;

    // Loads nothing.
    Win32Library(Quarn::string const& name, Quarn::string const& language);
    Win32Library(Win32Library const& other) = default;
    Win32Library& operator=(Win32Library const& other) = default;
    ~Win32Library() override;

    // Loads the module, the first time; true when it is loaded. The thread's ::GetLastError() tells why it is
    // not. Throws Quarn::QuarnException where an object counts a load but has no module, which a derived
    // class alone can bring about.
    bool Load() override;
    // Whether the module is loaded. It stays so, deliberately, and nothing changes.
    bool Unload() override;
    // The function that the module exports under this ordinal, 1 to 65,535. There are ordinals on Windows
    // alone. A failure leaves GetLastError() as it is.
    void (*GetFunction(int ordinal) const)() override;
    // The function that the module exports under this name; case counts.
    void (*GetFunction(Quarn::string const& name) const)() override;
    // Whether this object has its module.
    bool IsLoaded() const override;

    // The module, null until it is loaded.
    operator HINSTANCE() const;
    // The number of loads that count: 1 once the module is loaded, else 0.
    unsigned long GetRefCount() const;
    // The system's code of the last lookup by name that failed in a loaded module; 0 before. A success leaves
    // it.
    unsigned long GetLastError() const;

protected:
    // NOLINTBEGIN(misc-non-private-member-variables-in-classes): for classes that find their modules
    // otherwise
    HINSTANCE m_hMod = nullptr;            // the module, null until it is loaded
    std::uint32_t m_refCount = 0;          // as GetRefCount()
    mutable std::uint32_t m_lastError = 0; // as GetLastError()
    // NOLINTEND(misc-non-private-member-variables-in-classes)
};

// Makes Win32Library objects; null where there is no memory for one.
class QUARN_API Win32LibraryFactory : public Quarn::LibraryFactory
{
public:
    Quarn::Library* MakeLibrary(Quarn::string const& name, Quarn::string const& language) const override;
    void DeleteLibrary(Quarn::Library* library) const override;
};

// Never destroyed: libraries may be released while the process ends.
extern QUARN_API Win32LibraryFactory const& Win32LibFactory;

// Finds and loads a module; null on failure, with the reason of the last attempt in ::GetLastError(), and for
// an empty name. It is never unloaded.
//
// A name with a colon, or with a separator in front, is taken as it is. Every other is looked for in the
// current directory, in the common directory, and then by the system; the first file that can be loaded
// counts. Names end at their first zero byte.
//
// The first call with a name appends the common directory to the process's PATH, unless PATH holds its text
// already; further calls leave PATH alone. A PATH that is missing counts as empty. No other thread may use
// the environment during that first call.
QUARN_API HINSTANCE LoadLib(Quarn::string const& fileName);

// The directory that all programs of a company share: the system's folder for programs ("C:\Program Files",
// "/opt") and in it the company name of the executable's version block, as CVersionInfo gives it. Without a
// separator at the end; it need not exist. Empty where the system has no such folder. `subdir` is ignored,
// deliberately. Any thread may call it.
QUARN_API Quarn::string GetCommonDirectory(Quarn::string const& subdir);

} // namespace Win32Quarn
