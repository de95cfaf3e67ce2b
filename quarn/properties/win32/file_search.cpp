#include "quarn/properties/win32/file_search.h"

#include "quarn/platform/win32_api.h"

namespace Quarn::detail {

namespace {

// An open search, closed with its owner.
class Search
{
public:
    explicit Search(string const& pattern) : m_handle(::FindFirstFileA(pattern.c_str(), &m_found)) {}
    Search(Search const&) = delete;
    Search& operator=(Search const&) = delete;
    ~Search()
    {
        if (IsOpen()) {
            ::FindClose(m_handle);
        }
    }

    bool IsOpen() const { return m_handle != INVALID_HANDLE_VALUE; }
    bool Next() { return ::FindNextFileA(m_handle, &m_found) != FALSE; }
    WIN32_FIND_DATAA const& Found() const { return m_found; }

private:
    WIN32_FIND_DATAA m_found;
    HANDLE m_handle;
};

} // namespace

std::vector<string> FindFiles(string const& pattern)
{
    std::vector<string> names;
    Search search(pattern);
    for (bool more = search.IsOpen(); more; more = search.Next()) {
        if ((search.Found().dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            names.emplace_back(search.Found().cFileName);
        }
    }
    return names;
}

} // namespace Quarn::detail
