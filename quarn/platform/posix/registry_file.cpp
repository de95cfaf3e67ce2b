#include "quarn/platform/posix/registry_file.h"

#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"
#include "quarn/platform/posix/registry_side_files.h"

#include <algorithm>
#include <cerrno>
#include <iterator>
#include <utility>

#include <fcntl.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <time.h>

namespace Quarn::detail {

namespace {

// How long another process may hold a file, in waits of a millisecond. They do not grow: many a writer gives
// the file free for moments alone, and a rare look would miss them all.
constexpr int BusyWaits = 30000;

// "Qreg", and the version of the tables and of the folded names in them.
constexpr std::int64_t ApplicationId = 0x51726567;
constexpr std::int64_t FormatVersion = 1;

// Keys 1 and 2 are the roots. Numbers of keys are never used again, so an open key that was removed stays
// removed.
constexpr char const* KeyTable = R"(CREATE TABLE registry_key(
  id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, name TEXT NOT NULL, fold BLOB NOT NULL,
  UNIQUE(parent, fold)))";
constexpr char const* ValueTable = R"(CREATE TABLE registry_value(
  id INTEGER PRIMARY KEY, key_id INTEGER NOT NULL, name TEXT NOT NULL, fold BLOB NOT NULL,
  type INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key_id, fold)))";
constexpr char const* Beginning = R"(
INSERT INTO registry_key VALUES (1, 0, 'root 1', x'01'), (2, 0, 'root 2', x'02');
PRAGMA application_id = 1366451559;
PRAGMA user_version = 1;
)";
static_assert(ApplicationId == 1366451559 && FormatVersion == 1);

// What SQLite keeps of the tables. Whatever else is in a file (a view in a table's place, a trigger, a column
// that is computed) is somebody's trap.
struct SchemaRow
{
    std::string_view type;
    std::string_view name;
    std::string_view table;
    std::string_view sql;

    bool operator==(SchemaRow const& other) const = default;
};
constexpr SchemaRow Schema[] = {
    {"table", "registry_key", "registry_key", KeyTable},
    {"index", "sqlite_autoindex_registry_key_1", "registry_key", {}},
    {"table", "sqlite_sequence", "sqlite_sequence", "CREATE TABLE sqlite_sequence(name,seq)"},
    {"table", "registry_value", "registry_value", ValueTable},
    {"index", "sqlite_autoindex_registry_value_1", "registry_value", {}},
};

// A statement takes a few of the data base's steps for a row, and a row has more bytes. One that takes more
// steps than that goes round in a damaged file.
constexpr int StepsPerLook = 20'000;
constexpr std::int64_t LeastSteps = 50'000;
constexpr std::int64_t StepsPerByte = 4;
// Of a file with holes, what is no hole counts; a file system that compresses makes it so much smaller at
// most, and for one that does not tell so many bytes are believed.
constexpr std::int64_t MostCompressed = 8;
constexpr std::int64_t BytesBelieved = std::int64_t{16} << 20;

constexpr char const* StatementTexts[] = {
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "PRAGMA data_version",
    "SELECT 1 FROM registry_key WHERE id = ?1",
    // The row is asked, too: an index that leads elsewhere could make a loop of keys.
    R"(SELECT k.id FROM registry_key AS i CROSS JOIN registry_key AS k ON k.id = i.id
       WHERE i.parent = ?1 AND i.fold = ?2 AND k.parent = ?1 AND k.fold = ?2)",
    "SELECT parent FROM registry_key WHERE id = ?1",
    "INSERT INTO registry_key(parent, name, fold) VALUES (?1, ?2, ?3)",
    "SELECT 1 FROM registry_key WHERE parent = ?1 LIMIT 1",
    "DELETE FROM registry_value WHERE key_id = ?1",
    "DELETE FROM registry_key WHERE id = ?1",
    "SELECT id FROM registry_key WHERE parent = ?1 ORDER BY fold",
    // And the index: whoever removes what is listed, by its name, would never come to an end.
    R"(SELECT name, fold FROM registry_key AS k WHERE id = ?1 AND parent = ?2 AND EXISTS
       (SELECT 1 FROM registry_key AS i WHERE i.parent = ?2 AND i.fold = k.fold AND +i.id = ?1))",
    "SELECT type, data FROM registry_value WHERE key_id = ?1 AND fold = ?2",
    R"(INSERT INTO registry_value(key_id, name, fold, type, data)
       SELECT id, ?2, ?3, ?4, ?5 FROM registry_key WHERE id = ?1
       ON CONFLICT(key_id, fold) DO UPDATE SET type = excluded.type, data = excluded.data)",
    "DELETE FROM registry_value WHERE key_id = ?1 AND fold = ?2 RETURNING id",
    "SELECT id FROM registry_value WHERE key_id = ?1 ORDER BY +id",
    "SELECT name, type, data FROM registry_value WHERE id = ?1 AND key_id = ?2",
};
static_assert(std::size(StatementTexts) == static_cast<std::size_t>(RegistryStatement::Count));

LONG CodeFor(sqlite3* database, int result)
{
    int const error = ::sqlite3_system_errno(database);
    switch (result & 0xFF) {
    case SQLITE_PERM:
    case SQLITE_READONLY:
        return ERROR_ACCESS_DENIED;
    case SQLITE_CANTOPEN:
        return error != 0 ? static_cast<LONG>(ErrorFromErrno(error)) : LONG{ERROR_ACCESS_DENIED};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
        return ERROR_BUSY;
    case SQLITE_NOMEM:
    case SQLITE_TOOBIG:
        return ERROR_NOT_ENOUGH_MEMORY;
    case SQLITE_FULL:
        return ERROR_DISK_FULL;
    case SQLITE_NOTADB:
        return ERROR_NOT_REGISTRY_FILE;
    case SQLITE_IOERR:
        return error == ENOSPC || error == EDQUOT ? LONG{ERROR_DISK_FULL} : LONG{ERROR_REGISTRY_IO_FAILED};
    default: // the statements are right, so the tables are not
        return ERROR_REGISTRY_CORRUPT;
    }
}

[[noreturn]] void Throw(sqlite3* database, int result)
{
    throw RegistryFailure{CodeFor(database, result)};
}

int WaitForOthers(void* /*context*/, int waits)
{
    timespec const millisecond = {0, 1000000};
    ::nanosleep(&millisecond, nullptr);
    return waits < BusyWaits ? 1 : 0;
}

// How much there is to read.
std::int64_t BytesOf(char const* path)
{
    struct ::stat status;
    if (::stat(path, &status) != 0) {
        return 0;
    }
    std::int64_t const present =
        status.st_blocks != 0 ? MostCompressed * 512 * std::int64_t{status.st_blocks} : BytesBelieved;
    return std::min(std::int64_t{status.st_size}, present);
}

// Makes an empty file, and the last folder of its path for the user alone. One that is there stays.
void CreateFile(std::string const& path, RegistryJournal journal)
{
    ::mkdir(path.substr(0, path.rfind('/')).c_str(), 0700);
    int const mode = journal == RegistryJournal::Rollback ? 0644 : 0600;
    Descriptor const file = Open(path.c_str(), O_RDWR | O_CREAT | O_EXCL, mode);
    // The mode is meant, whatever the process's mask says.
    if (file ? ::fchmod(file.Get(), static_cast<mode_t>(mode)) != 0 : errno != EEXIST) {
        Refuse(ErrorFromErrno(errno));
    }
}

} // namespace

RegistryQuery::RegistryQuery(RegistryQuery&& other) noexcept
    : m_file(other.m_file),
      m_statement(std::exchange(other.m_statement, nullptr)),
      m_parameters(other.m_parameters)
{}

RegistryQuery& RegistryQuery::operator=(RegistryQuery&& other) noexcept
{
    std::swap(m_file, other.m_file);
    std::swap(m_statement, other.m_statement);
    std::swap(m_parameters, other.m_parameters);
    return *this;
}

RegistryQuery::~RegistryQuery()
{
    ::sqlite3_reset(m_statement);
}

RegistryQuery& RegistryQuery::Number(std::int64_t number)
{
    ::sqlite3_bind_int64(m_statement, ++m_parameters, number);
    return *this;
}

RegistryQuery& RegistryQuery::Text(std::string_view text)
{
    char const* const data = text.empty() ? "" : text.data();
    int const result =
        ::sqlite3_bind_text64(m_statement, ++m_parameters, data, text.size(), nullptr, SQLITE_UTF8);
    if (result != SQLITE_OK) {
        Throw(::sqlite3_db_handle(m_statement), result);
    }
    return *this;
}

RegistryQuery& RegistryQuery::Bytes(std::string_view bytes)
{
    char const* const data = bytes.empty() ? "" : bytes.data(); // a null pointer would be no value at all
    int const result = ::sqlite3_bind_blob64(m_statement, ++m_parameters, data, bytes.size(), nullptr);
    if (result != SQLITE_OK) {
        Throw(::sqlite3_db_handle(m_statement), result);
    }
    return *this;
}

bool RegistryQuery::Step()
{
    int const result = ::sqlite3_step(m_statement);
    if (result != SQLITE_ROW && result != SQLITE_DONE) {
        m_file->m_isStuck |= (result & 0xFF) == SQLITE_READONLY;
        if ((result & 0xFF) == SQLITE_CORRUPT) { // perhaps by its log alone
            m_file->BringLogHome(false);
        }
        Throw(::sqlite3_db_handle(m_statement), result);
    }
    return result == SQLITE_ROW;
}

std::int64_t RegistryQuery::NumberAt(int column) const
{
    return ::sqlite3_column_int64(m_statement, column);
}

std::string_view RegistryQuery::BytesAt(int column) const
{
    auto const* const data = static_cast<char const*>(::sqlite3_column_blob(m_statement, column));
    if (data == nullptr) {
        sqlite3* const database = ::sqlite3_db_handle(m_statement);
        if (::sqlite3_errcode(database) == SQLITE_NOMEM) {
            Throw(database, SQLITE_NOMEM);
        }
        return {};
    }
    return {data, static_cast<std::size_t>(::sqlite3_column_bytes(m_statement, column))};
}

std::unique_ptr<RegistryFile> RegistryFile::Open(std::string const& path, RegistryJournal journal,
                                                 bool create)
{
    struct ::stat status;
    if (::stat(path.c_str(), &status) != 0) {
        if (errno != ENOENT) {
            Refuse(ErrorFromErrno(errno));
        }
        if (!create) {
            return nullptr;
        }
        CreateFile(path, journal);
    }
    int const access = IsReadOnlyFile(path.c_str()) ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE;
    std::unique_ptr<RegistryFile> file(new RegistryFile);
    sqlite3*& database = file->m_database;
    int const result =
        ::sqlite3_open_v2(path.c_str(), &database, access | SQLITE_OPEN_NOMUTEX, file->m_sideFiles->Name());
    if (database == nullptr) {
        Refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    if (result != SQLITE_OK) {
        Throw(database, result);
    }
    file->m_sideFiles->SetDatabase(database);
    // A log that makes something else of the file stays beside it.
    file->BringLogHome(false);
    ::sqlite3_extended_result_codes(database, 1);
    ::sqlite3_busy_handler(database, &WaitForOthers, nullptr);
    ::sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    ::sqlite3_progress_handler(database, StepsPerLook, &RegistryFile::CountSteps, file.get());
    if (!file->Prepare(journal)) {
        if (create) {
            Refuse(ERROR_ACCESS_DENIED);
        }
        return nullptr;
    }
    file->BringLogHome(true);
    return file;
}

RegistryFile::RegistryFile() : m_sideFiles(std::make_unique<RegistrySideFiles>()) {}

RegistryFile::~RegistryFile()
{
    for (sqlite3_stmt* const statement : m_statements) {
        ::sqlite3_finalize(statement);
    }
    ::sqlite3_close(m_database);
}

bool RegistryFile::Prepare(RegistryJournal journal)
{
    Execute("PRAGMA trusted_schema = OFF");
    // One view of the file, whatever another process is making of it.
    Execute("BEGIN");
    std::int64_t const id = Ask("PRAGMA application_id");
    std::int64_t const version = Ask("PRAGMA user_version");
    bool const isNew = id == 0 && version == 0 && Ask("SELECT 1 FROM sqlite_schema LIMIT 1") == 0;
    if (!isNew && (id != ApplicationId || version != FormatVersion)) {
        Refuse(ERROR_NOT_REGISTRY_FILE);
    }
    if (!isNew) {
        CheckTables();
    }
    if (IsWritable()) {
        m_sideFiles->RemoveStrayJournal();
    }
    Execute("COMMIT");
    if (isNew && !IsWritable()) {
        return false;
    }
    if (isNew) {
        MakeTables();
    }
    if (journal == RegistryJournal::Rollback) {
        Execute("PRAGMA synchronous = FULL");
        return true;
    }
    Execute("PRAGMA synchronous = NORMAL");
    if (IsWritable()) {
        try {
            Execute("PRAGMA journal_mode = WAL");
        } catch (RegistryFailure const& failure) {
            // Others are at work with a new file, and one of them will succeed.
            if (failure.code != LONG{ERROR_BUSY}) {
                throw;
            }
        }
    }
    return true;
}

void RegistryFile::MakeTables()
{
    RegistryTransaction transaction(*this);
    if (Ask("PRAGMA application_id") == 0) { // nobody was faster
        Execute(KeyTable);
        Execute(ValueTable);
        Execute(Beginning);
    }
    transaction.Commit();
}

void RegistryFile::CheckTables()
{
    std::size_t found = 0;
    Visit("SELECT type, name, tbl_name, sql FROM sqlite_schema LIMIT 6", [&found](RegistryQuery const& row) {
        SchemaRow const have = {row.BytesAt(0), row.BytesAt(1), row.BytesAt(2), row.BytesAt(3)};
        if (std::find(std::begin(Schema), std::end(Schema), have) == std::end(Schema)) {
            Refuse(ERROR_REGISTRY_CORRUPT);
        }
        ++found;
    });
    // The parent of the roots is 0, and no key has that number: from a root down there is a tree.
    std::int64_t roots = 0;
    Visit("SELECT id, parent FROM registry_key WHERE id BETWEEN 0 AND 2", [&roots](RegistryQuery const& row) {
        bool const isRoot = row.NumberAt(0) != 0 && row.NumberAt(1) == 0;
        roots += isRoot ? row.NumberAt(0) : -3;
    });
    if (found != std::size(Schema) || roots != 3) {
        Refuse(ERROR_REGISTRY_CORRUPT);
    }
}

int RegistryFile::CountSteps(void* file)
{
    auto& self = *static_cast<RegistryFile*>(file);
    char const* const path = ::sqlite3_db_filename(self.m_database, "main");
    std::int64_t const size = BytesOf(path) + BytesOf(::sqlite3_filename_wal(path));
    self.m_steps += StepsPerLook;
    return self.m_steps > LeastSteps + StepsPerByte * size ? 1 : 0;
}

void RegistryFile::Execute(char const* sql)
{
    m_steps = 0;
    int const result = ::sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Throw(m_database, result);
    }
}

std::int64_t RegistryFile::Ask(char const* sql)
{
    std::int64_t answer = 0;
    Visit(sql, [&answer](RegistryQuery const& row) { answer = row.NumberAt(0); });
    return answer;
}

template<typename Row>
void RegistryFile::Visit(char const* sql, Row visit)
{
    m_steps = 0;
    sqlite3_stmt* statement = nullptr;
    int const result = ::sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr);
    if (result != SQLITE_OK) {
        Throw(m_database, result);
    }
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> const owner(statement, &::sqlite3_finalize);
    RegistryQuery query(*this, statement);
    while (query.Step()) {
        visit(query);
    }
}

RegistryQuery RegistryFile::Query(RegistryStatement statement)
{
    m_steps = 0;
    auto const index = static_cast<std::size_t>(statement);
    sqlite3_stmt*& prepared = m_statements[index];
    if (prepared == nullptr) {
        int const result = ::sqlite3_prepare_v3(m_database, StatementTexts[index], -1,
                                                SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
        if (result != SQLITE_OK) {
            Throw(m_database, result);
        }
    }
    return {*this, prepared};
}

bool RegistryFile::IsWritable() const
{
    return ::sqlite3_db_readonly(m_database, "main") == 0;
}

int RegistryFile::Changes() const
{
    return ::sqlite3_changes(m_database);
}

void RegistryFile::ForgetLastRow()
{
    ::sqlite3_set_last_insert_rowid(m_database, 0);
}

std::int64_t RegistryFile::LastRow() const
{
    return ::sqlite3_last_insert_rowid(m_database);
}

void RegistryFile::BringLogHome(bool atTheEnd)
{
    ::sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, atTheEnd ? 0 : 1, nullptr);
}

RegistryTransaction::RegistryTransaction(RegistryFile& file) : m_file(file)
{
    m_file.Query(RegistryStatement::Rollback); // made ready while there is memory for it
    m_file.Run(RegistryStatement::Begin);
}

RegistryTransaction::~RegistryTransaction()
{
    if (m_open) {
        try {
            m_file.Run(RegistryStatement::Rollback);
        } catch (RegistryFailure const&) {
            // An error may have done it already; otherwise only closing the file ends the transaction.
            m_file.m_isStuck |= ::sqlite3_get_autocommit(m_file.m_database) == 0;
        }
    }
}

void RegistryTransaction::Commit()
{
    m_file.Run(RegistryStatement::Commit);
    m_open = false;
}

} // namespace Quarn::detail
