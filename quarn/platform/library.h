// Quarn::Library: a companion library, a module that a program loads while it runs; and the list through
// which all parts of the process share one object per name.
//
//     Quarn::Library* plot = Quarn::Library::Create("Plot", Win32Quarn::Win32LibFactory);
//     if (plot != nullptr && plot->Load()) {
//         auto const draw = reinterpret_cast<int (*)(int)>(plot->GetFunction("Draw"));
//         ...
//     }
//     Quarn::Library::Release(plot);
//
// Create and Release take no lock: one thread at a time calls them, whatever the name. What holds for the
// objects, their class says; win32_library.h has the one for the system's modules.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <cstdint>
#include <list>

namespace Quarn {

class LibraryFactory;

class QUARN_API Library
{
public:
    // The library of this name, compared without the case of ASCII letters. Where the list has none, the
    // factory makes one, with an empty language; it must outlive that library. Where the list has one, the
    // factory does not matter. Nothing is loaded.
    //
    // The result, null where the factory's is, belongs to the list; each call is matched by one Release. What
    // the factory throws passes through, and the list stays as it was.
    static Library* Create(string const& name, LibraryFactory const& factory);
    // Gives back what one Create gave. The last one for a name deletes the library, through the factory that
    // made it, and returns true. Every other returns false, deliberately; a pointer that Create did not give
    // changes nothing. Where a factory has given the same pointer for several names, all of them count down.
    static bool Release(Library* library);

    virtual ~Library();

    // Makes the module's functions callable; true when they are. Once loaded it stays so.
    virtual bool Load() = 0;
    // Says that the functions are no longer needed; true when they could be called.
    virtual bool Unload() = 0;
    // The function with this number or name, to be cast to its own type; null where there is none or the
    // module is not loaded.
    virtual void (*GetFunction(int ordinal) const)() = 0;
    virtual void (*GetFunction(string const& name) const)() = 0;
    // Whether the functions are callable.
    virtual bool IsLoaded() const = 0;

    // The name given when the library was made.
    string GetLibName() const;
    // The language tag given when the library was made; empty from Create.
    string const& GetLanguage() const;

protected:
    // Puts the library into no list: Create does.
    Library(string const& name, string const& language);
    Library(Library const& other) = default;
    Library& operator=(Library const& other) = default;

private:
    struct LoadedLibInfo
    {
        Library* library;
        string name; // in lower case
        std::uint32_t referenceCount;
        LibraryFactory const* factory;
    };

    // In the order of creation. Never destroyed: libraries may be released while the process ends.
    static std::list<LoadedLibInfo>& m_libs;

    string m_name;
    string m_language;
};

// Makes and deletes the libraries of one kind. It must outlive the libraries that it made.
class QUARN_API LibraryFactory
{
public:
    LibraryFactory() = default;
    LibraryFactory(LibraryFactory const& other) = default;
    LibraryFactory& operator=(LibraryFactory const& other) = default;

    // A new library; null where there can be none.
    virtual Library* MakeLibrary(string const& name, string const& language) const = 0;
    // Deletes what MakeLibrary returned; null is no library.
    virtual void DeleteLibrary(Library* library) const = 0;

    virtual ~LibraryFactory();
};

} // namespace Quarn
