#include "quarn/platform/library.h"

namespace Quarn {

std::list<Library::LoadedLibInfo>& Library::m_libs = *new std::list<LoadedLibInfo>;

Library::Library(string const& name, string const& language) : m_name(name), m_language(language) {}

Library::~Library() = default;

LibraryFactory::~LibraryFactory() = default;

Library* Library::Create(string const& name, LibraryFactory const& factory)
{
    string const key = name.Lower();
    for (LoadedLibInfo& entry : m_libs) {
        if (entry.name == key) {
            ++entry.referenceCount;
            return entry.library;
        }
    }
    // Made before the library, which would be lost if there were no memory for its entry.
    std::list<LoadedLibInfo> made(1, LoadedLibInfo{nullptr, key, 1, &factory});
    made.front().library = factory.MakeLibrary(name, string());
    m_libs.splice(m_libs.end(), made);
    return m_libs.back().library;
}

bool Library::Release(Library* library)
{
    for (auto entry = m_libs.begin(); entry != m_libs.end(); ++entry) {
        if (entry->library == library && --entry->referenceCount == 0) {
            // The factory may come back here, for this name too: the entry is gone by then.
            std::list<LoadedLibInfo> last;
            last.splice(last.end(), m_libs, entry);
            last.front().factory->DeleteLibrary(library);
            return true;
        }
    }
    return false;
}

string Library::GetLibName() const
{
    return m_name;
}

string const& Library::GetLanguage() const
{
    return m_language;
}

} // namespace Quarn
