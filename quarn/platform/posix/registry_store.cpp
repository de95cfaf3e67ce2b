#include "quarn/platform/posix/registry_store.h"

#include "quarn/platform/posix/registry_names.h"

#include <algorithm>

#include <pthread.h>

namespace Quarn::detail {

namespace {

constexpr unsigned MaxKeyDepth = 512;
constexpr std::size_t MaxListings = 8;

std::string FolderPath(int folder)
{
    char path[MAX_PATH];
    HRESULT const result = ::SHGetFolderPathA(nullptr, folder, nullptr, 0, path);
    if (result == E_OUTOFMEMORY) {
        throw std::bad_alloc();
    }
    return SUCCEEDED(result) ? path : "";
}

} // namespace

struct RegistryStore::Stores
{
    RegistryStore user{false};
    RegistryStore machine{true};

    void Lock()
    {
        user.m_lock.lock();
        machine.m_lock.lock();
    }
    void Unlock()
    {
        machine.m_lock.unlock();
        user.m_lock.unlock();
    }
    void Close(bool inHaste)
    {
        for (RegistryStore* const store : {&user, &machine}) {
            if (store->m_file && inHaste) {
                store->m_file->CloseInHaste();
            }
            store->m_file.reset();
            store->m_listings.clear();
        }
    }
};

RegistryStore::Stores& RegistryStore::All()
{
    // Never destroyed: the registry may be used at exit.
    static Stores& stores = *[] {
        auto* const made = new Stores;
        // The locks of an open file are the process's: a child that had it open would believe to hold them.
        ::pthread_atfork(
            [] {
                All().Lock();
                All().Close(true);
            },
            [] { All().Unlock(); }, [] { All().Unlock(); });
        return made;
    }();
    // A file that is closed is one file, and not three.
    static struct AtExit
    {
        AtExit() = default;
        AtExit(AtExit const&) = delete;
        AtExit& operator=(AtExit const&) = delete;
        ~AtExit() { CloseFiles(); }
    } const atExit;
    return stores;
}

RegistryStore& RegistryStore::User()
{
    return All().user;
}

RegistryStore& RegistryStore::Machine()
{
    return All().machine;
}

void RegistryStore::CloseFiles()
{
    All().Lock();
    All().Close(false);
    All().Unlock();
}

void RegistryStore::FindPath()
{
    if (m_isMachine) {
        std::string const folder = FolderPath(CSIDL_COMMON_APPDATA);
        if (!folder.empty()) {
            m_path = folder + "/registry.db";
            m_journal = RegistryJournal::Rollback;
            return;
        }
    }
    std::string const folder = FolderPath(CSIDL_LOCAL_APPDATA);
    if (folder.empty()) {
        Refuse(ERROR_PATH_NOT_FOUND);
    }
    m_path = folder + (m_isMachine ? "/quarnutil/machine.db" : "/quarnutil/registry.db");
}

RegistryFile* RegistryStore::File(bool create)
{
    // A file that could not be written may be writable by now.
    if (m_file && (m_file->IsStuck() || (create && !m_file->IsWritable()))) {
        m_file.reset();
    }
    if (!m_file) {
        if (m_path.empty()) {
            FindPath();
        }
        m_file = RegistryFile::Open(m_path, m_journal, create);
        m_listings.clear();
    }
    return m_file.get();
}

bool RegistryStore::Exists(RegistryKeyPlace key)
{
    if (key.depth == 0) {
        return true;
    }
    RegistryFile* const file = File(false);
    return file != nullptr && file->Query(RegistryStatement::HasKey).Number(key.id).Step();
}

std::optional<RegistryKeyPlace> RegistryStore::Walk(RegistryKeyPlace from,
                                                    std::vector<std::string_view> const& names)
{
    RegistryFile* const file = File(false);
    if (names.empty()) {
        return Exists(from) ? std::optional(from) : std::nullopt;
    }
    for (std::string_view const name : names) {
        if (file == nullptr) {
            return std::nullopt;
        }
        std::string const folded = FoldName(name);
        RegistryQuery query = file->Query(RegistryStatement::FindKey);
        if (!query.Number(from.id).Bytes(folded).Step()) {
            return std::nullopt;
        }
        if (from.depth == MaxKeyDepth) {
            Refuse(ERROR_REGISTRY_CORRUPT); // none is made there
        }
        from = {query.NumberAt(0), from.depth + 1};
    }
    return from;
}

RegistryKeyPlace RegistryStore::OpenKey(RegistryKeyPlace from, char const* path, bool forWriting)
{
    std::vector<std::string_view> const names = SplitKeyPath(path);
    std::lock_guard const guard(m_lock);
    std::optional<RegistryKeyPlace> const found = Walk(from, names);
    if (!found) {
        Refuse(Exists(from) ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED);
    }
    if (forWriting && !File(true)->IsWritable()) {
        Refuse(ERROR_ACCESS_DENIED);
    }
    return *found;
}

RegistryKeyPlace RegistryStore::CreateKey(RegistryKeyPlace from, char const* path, bool& created)
{
    std::vector<std::string_view> const names = SplitKeyPath(path);
    std::lock_guard const guard(m_lock);
    created = false;
    if (std::optional<RegistryKeyPlace> const found = Walk(from, names)) {
        return *found;
    }
    RegistryFile& file = *File(true);
    RegistryTransaction transaction(file);
    if (!Exists(from)) {
        Refuse(ERROR_KEY_DELETED);
    }
    std::int64_t parentOfFirst = 0;
    for (std::string_view const name : names) {
        std::string const folded = FoldName(name);
        RegistryQuery query = file.Query(RegistryStatement::FindKey);
        if (query.Number(from.id).Bytes(folded).Step()) {
            from = {query.NumberAt(0), from.depth + 1};
            continue;
        }
        if (FoldedLength(folded) > MaxKeyName || from.depth == MaxKeyDepth) {
            Refuse(ERROR_INVALID_PARAMETER);
        }
        if (!created) {
            parentOfFirst = from.id;
        }
        created = true;
        file.Query(RegistryStatement::AddKey).Number(from.id).Text(name).Bytes(folded).Step();
        from = {file.LastRow(), from.depth + 1};
    }
    transaction.Commit();
    DropListing(RegistryStatement::ListKeys, parentOfFirst);
    return from;
}

void RegistryStore::DeleteKey(RegistryKeyPlace from, char const* path)
{
    std::vector<std::string_view> const names = SplitKeyPath(path);
    std::lock_guard const guard(m_lock);
    if (!Walk(from, names)) {
        Refuse(Exists(from) ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED);
    }
    RegistryFile& file = *File(true);
    RegistryTransaction transaction(file);
    std::optional<RegistryKeyPlace> const key = Walk(from, names); // now nobody changes it any more
    if (!key) {
        Refuse(ERROR_FILE_NOT_FOUND);
    }
    if (key->depth == 0 || file.Query(RegistryStatement::HasSubKeys).Number(key->id).Step()) {
        Refuse(ERROR_ACCESS_DENIED);
    }
    std::int64_t const parent = [&] {
        RegistryQuery query = file.Query(RegistryStatement::ParentOfKey);
        return query.Number(key->id).Step() ? query.NumberAt(0) : 0;
    }();
    file.Query(RegistryStatement::RemoveValues).Number(key->id).Step();
    file.Query(RegistryStatement::RemoveKey).Number(key->id).Step();
    transaction.Commit();
    DropListing(RegistryStatement::ListKeys, key->id);
    DropListing(RegistryStatement::ListValues, key->id);
    RemoveFromListing(RegistryStatement::ListKeys, parent, key->id);
}

RegistryRow RegistryStore::SubKeyAt(RegistryKeyPlace key, std::size_t index)
{
    constexpr std::string_view NoNamesCharacters("\\\0", 2);
    RegistryRow row = RowAt(RegistryStatement::ListKeys, RegistryStatement::KeyRow, key, index);
    // A damaged name that leads to another key would lead whoever follows it in circles.
    if (row && (row.name.empty() || row.name.find_first_of(NoNamesCharacters) != row.name.npos ||
                FoldName(row.name) != row.query->BytesAt(1))) {
        Refuse(ERROR_REGISTRY_CORRUPT);
    }
    return row;
}

RegistryRow RegistryStore::ValueAt(RegistryKeyPlace key, std::size_t index)
{
    RegistryRow row = RowAt(RegistryStatement::ListValues, RegistryStatement::ValueRow, key, index);
    if (row) {
        row.type = static_cast<DWORD>(row.query->NumberAt(1));
        row.data = row.query->BytesAt(2);
    }
    return row;
}

RegistryRow RegistryStore::FindValue(RegistryKeyPlace key, std::string_view name)
{
    std::string const folded = FoldName(name);
    RegistryRow row;
    row.lock = std::unique_lock(m_lock);
    if (RegistryFile* const file = File(false)) {
        RegistryQuery query = file->Query(RegistryStatement::FindValue);
        if (query.Number(key.id).Bytes(folded).Step()) {
            row.type = static_cast<DWORD>(query.NumberAt(0));
            row.data = query.BytesAt(1);
            row.query = std::move(query);
            return row;
        }
    }
    if (!Exists(key)) {
        Refuse(ERROR_KEY_DELETED);
    }
    return row;
}

void RegistryStore::SetValue(RegistryKeyPlace key, std::string_view name, DWORD type, std::string_view data)
{
    std::string const folded = FoldName(name);
    if (FoldedLength(folded) > MaxValueName) {
        Refuse(ERROR_INVALID_PARAMETER);
    }
    std::lock_guard const guard(m_lock);
    if (key.depth != 0 && File(false) == nullptr) {
        Refuse(ERROR_KEY_DELETED);
    }
    RegistryFile& file = *File(true);
    file.ForgetLastRow();
    file.Query(RegistryStatement::PutValue)
        .Number(key.id)
        .Text(name)
        .Bytes(folded)
        .Number(type)
        .Bytes(data)
        .Step();
    if (file.Changes() == 0) {
        Refuse(ERROR_KEY_DELETED);
    }
    if (Listing* const listing = FindListing(RegistryStatement::ListValues, key.id);
        listing != nullptr && file.LastRow() != 0) {
        try {
            listing->rows.push_back(file.LastRow());
        } catch (std::bad_alloc const&) { // the value is there; it is listed anew
            DropListing(RegistryStatement::ListValues, key.id);
        }
    }
}

void RegistryStore::DeleteValue(RegistryKeyPlace key, std::string_view name)
{
    std::string const folded = FoldName(name);
    std::lock_guard const guard(m_lock);
    if (RegistryFile* const file = File(false)) {
        RegistryQuery query = file->Query(RegistryStatement::RemoveValue);
        if (query.Number(key.id).Bytes(folded).Step()) {
            std::int64_t const row = query.NumberAt(0);
            query.Step();
            RemoveFromListing(RegistryStatement::ListValues, key.id, row);
            return;
        }
    }
    Refuse(Exists(key) ? ERROR_FILE_NOT_FOUND : ERROR_KEY_DELETED);
}

RegistryRow RegistryStore::RowAt(RegistryStatement list, RegistryStatement row, RegistryKeyPlace key,
                                 std::size_t index)
{
    RegistryRow found;
    found.lock = std::unique_lock(m_lock);
    while (RegistryFile* const file = File(false)) {
        CheckListings();
        std::int64_t const version = m_dataVersion;
        Listing* const known = FindListing(list, key.id);
        Listing const& listing = known != nullptr ? *known : MakeListing(list, key.id);
        if (index >= listing.rows.size()) {
            break;
        }
        RegistryQuery query = file->Query(row);
        if (query.Number(listing.rows[index]).Number(key.id).Step()) {
            found.name = query.BytesAt(0);
            found.query = std::move(query);
            return found;
        }
        CheckListings();
        if (m_dataVersion == version) { // nobody has removed it in between
            Refuse(ERROR_REGISTRY_CORRUPT);
        }
    }
    if (!Exists(key)) {
        Refuse(ERROR_KEY_DELETED);
    }
    return found;
}

void RegistryStore::CheckListings()
{
    RegistryQuery query = m_file->Query(RegistryStatement::DataVersion);
    query.Step();
    std::int64_t const version = query.NumberAt(0);
    if (version != m_dataVersion) {
        m_listings.clear();
        m_dataVersion = version;
    }
}

RegistryStore::Listing* RegistryStore::FindListing(RegistryStatement query, std::int64_t key)
{
    auto const found = std::find_if(m_listings.begin(), m_listings.end(), [&](Listing const& listing) {
        return listing.query == query && listing.key == key;
    });
    if (found == m_listings.end()) {
        return nullptr;
    }
    std::rotate(m_listings.begin(), found, found + 1);
    return &m_listings.front();
}

RegistryStore::Listing& RegistryStore::MakeListing(RegistryStatement query, std::int64_t key)
{
    Listing listing{query, key, {}};
    RegistryQuery rows = m_file->Query(query);
    rows.Number(key);
    while (rows.Step()) {
        listing.rows.push_back(rows.NumberAt(0));
    }
    // A key that is there twice would be walked through twice, and so would those below it.
    std::vector<std::int64_t> sorted = listing.rows;
    std::sort(sorted.begin(), sorted.end());
    if (std::adjacent_find(sorted.begin(), sorted.end()) != sorted.end()) {
        Refuse(ERROR_REGISTRY_CORRUPT);
    }
    if (m_listings.size() == MaxListings) {
        m_listings.pop_back();
    }
    return *m_listings.insert(m_listings.begin(), std::move(listing));
}

void RegistryStore::DropListing(RegistryStatement query, std::int64_t key)
{
    std::erase_if(m_listings,
                  [&](Listing const& listing) { return listing.query == query && listing.key == key; });
}

void RegistryStore::RemoveFromListing(RegistryStatement query, std::int64_t key, std::int64_t row)
{
    if (Listing* const listing = FindListing(query, key)) {
        auto const found = std::find(listing->rows.begin(), listing->rows.end(), row);
        if (found != listing->rows.end()) {
            listing->rows.erase(found);
        }
    }
}

} // namespace Quarn::detail
