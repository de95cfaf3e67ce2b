// (private) The trees of one registry file: keys and values by name and by place. Any thread may use it. A
// forked process opens the file anew.
#pragma once

#include "quarn/platform/posix/registry_file.h"

#include <mutex>
#include <optional>
#include <vector>

namespace Quarn::detail {

struct RegistryKeyPlace
{
    std::int64_t id;
    unsigned depth; // a root's is 0
};

constexpr RegistryKeyPlace FirstRegistryRoot = {1, 0};
constexpr RegistryKeyPlace SecondRegistryRoot = {2, 0};

// A value or a key's name inside the store, which is locked as long as this lives.
struct RegistryRow
{
    std::unique_lock<std::mutex> lock;
    std::optional<RegistryQuery> query;
    std::string_view name; // where it was looked for by place
    DWORD type = REG_NONE;
    std::string_view data;

    explicit operator bool() const { return query.has_value(); }
};

// Everything throws RegistryFailure: ERROR_KEY_DELETED when the key that is given has been removed,
// ERROR_FILE_NOT_FOUND for a missing key.
class RegistryStore
{
public:
    static RegistryStore& User();
    static RegistryStore& Machine();
    // Closes both files; the next use opens them again.
    static void CloseFiles();

    RegistryStore(RegistryStore const&) = delete;
    RegistryStore& operator=(RegistryStore const&) = delete;
    ~RegistryStore() = default;

    RegistryKeyPlace OpenKey(RegistryKeyPlace from, char const* path, bool forWriting);
    // Makes what is missing of the path, or nothing.
    RegistryKeyPlace CreateKey(RegistryKeyPlace from, char const* path, bool& created);
    // Removes a key and its values. ERROR_ACCESS_DENIED when it has sub-keys or is a root.
    void DeleteKey(RegistryKeyPlace from, char const* path);
    // The name of a sub-key; an empty row behind the last.
    RegistryRow SubKeyAt(RegistryKeyPlace key, std::size_t index);

    // An empty row when there is no such value.
    RegistryRow FindValue(RegistryKeyPlace key, std::string_view name);
    void SetValue(RegistryKeyPlace key, std::string_view name, DWORD type, std::string_view data);
    void DeleteValue(RegistryKeyPlace key, std::string_view name);
    RegistryRow ValueAt(RegistryKeyPlace key, std::size_t index);

private:
    struct Stores;
    // The rows below a key, in the order in which they enumerate.
    struct Listing
    {
        RegistryStatement query;
        std::int64_t key;
        std::vector<std::int64_t> rows;
    };

    explicit RegistryStore(bool isMachine) : m_isMachine(isMachine) {}
    static Stores& All();

    // The open file; null while there is none and `create` is not set.
    RegistryFile* File(bool create);
    void FindPath();
    bool Exists(RegistryKeyPlace key);
    std::optional<RegistryKeyPlace> Walk(RegistryKeyPlace from, std::vector<std::string_view> const& names);
    RegistryRow RowAt(RegistryStatement list, RegistryStatement row, RegistryKeyPlace key, std::size_t index);
    // Brings the listings up to date with other processes.
    void CheckListings();
    Listing* FindListing(RegistryStatement query, std::int64_t key);
    Listing& MakeListing(RegistryStatement query, std::int64_t key);
    void DropListing(RegistryStatement query, std::int64_t key);
    void RemoveFromListing(RegistryStatement query, std::int64_t key, std::int64_t row);

    bool const m_isMachine;
    std::mutex m_lock; // for all below
    std::string m_path;
    RegistryJournal m_journal = RegistryJournal::WriteAhead;
    std::unique_ptr<RegistryFile> m_file;
    // The listings used last, the latest first. They follow what this process changes; a change by another
    // one ends them.
    std::vector<Listing> m_listings;
    std::int64_t m_dataVersion = 0;
};

} // namespace Quarn::detail
