#include "quarn/platform/posix/registry_file.h"

#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/files.h"

#include <cerrno>
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
constexpr char const* Tables = R"(
CREATE TABLE registry_key(
  id INTEGER PRIMARY KEY AUTOINCREMENT, parent INTEGER NOT NULL, name TEXT NOT NULL, fold BLOB NOT NULL,
  UNIQUE(parent, fold));
CREATE TABLE registry_value(
  id INTEGER PRIMARY KEY, key_id INTEGER NOT NULL, name TEXT NOT NULL, fold BLOB NOT NULL,
  type INTEGER NOT NULL, data BLOB NOT NULL, UNIQUE(key_id, fold));
INSERT INTO registry_key VALUES (1, 0, 'root 1', x'01'), (2, 0, 'root 2', x'02');
PRAGMA application_id = 1366451559;
PRAGMA user_version = 1;
)";
static_assert(ApplicationId == 1366451559 && FormatVersion == 1);

constexpr char const* StatementTexts[] = {
    "BEGIN IMMEDIATE",
    "COMMIT",
    "ROLLBACK",
    "PRAGMA data_version",
    "SELECT 1 FROM registry_key WHERE id = ?1",
    "SELECT id FROM registry_key WHERE parent = ?1 AND fold = ?2",
    "SELECT parent FROM registry_key WHERE id = ?1",
    "INSERT INTO registry_key(parent, name, fold) VALUES (?1, ?2, ?3)",
    "SELECT 1 FROM registry_key WHERE parent = ?1 LIMIT 1",
    "DELETE FROM registry_value WHERE key_id = ?1",
    "DELETE FROM registry_key WHERE id = ?1",
    "SELECT id FROM registry_key WHERE parent = ?1 ORDER BY fold",
    "SELECT name FROM registry_key WHERE id = ?1",
    "SELECT type, data FROM registry_value WHERE key_id = ?1 AND fold = ?2",
    R"(INSERT INTO registry_value(key_id, name, fold, type, data)
       SELECT id, ?2, ?3, ?4, ?5 FROM registry_key WHERE id = ?1
       ON CONFLICT(key_id, fold) DO UPDATE SET type = excluded.type, data = excluded.data)",
    "DELETE FROM registry_value WHERE key_id = ?1 AND fold = ?2 RETURNING id",
    "SELECT id FROM registry_value WHERE key_id = ?1 ORDER BY +id",
    "SELECT name, type, data FROM registry_value WHERE id = ?1",
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
    : m_statement(std::exchange(other.m_statement, nullptr)),
      m_parameters(other.m_parameters)
{}

RegistryQuery& RegistryQuery::operator=(RegistryQuery&& other) noexcept
{
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
    sqlite3* database = nullptr;
    int const result = ::sqlite3_open_v2(path.c_str(), &database, access | SQLITE_OPEN_NOMUTEX, nullptr);
    if (database == nullptr) {
        Refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    std::unique_ptr<RegistryFile> file(new RegistryFile(database));
    if (result != SQLITE_OK) {
        Throw(database, result);
    }
    ::sqlite3_extended_result_codes(database, 1);
    ::sqlite3_busy_handler(database, &WaitForOthers, nullptr);
    ::sqlite3_db_config(database, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    if (!file->Prepare(journal)) {
        if (create) {
            Refuse(ERROR_ACCESS_DENIED);
        }
        return nullptr;
    }
    return file;
}

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
    bool const isNew = id == 0 && version == 0 && Ask("SELECT count(*) FROM sqlite_schema") == 0;
    Execute("COMMIT");
    if (isNew && !IsWritable()) {
        return false;
    }
    if (isNew) {
        MakeTables();
    } else if (id != ApplicationId || version != FormatVersion) {
        Refuse(ERROR_NOT_REGISTRY_FILE);
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
        Execute(Tables);
    }
    transaction.Commit();
}

void RegistryFile::Execute(char const* sql)
{
    int const result = ::sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr);
    if (result != SQLITE_OK) {
        Throw(m_database, result);
    }
}

std::int64_t RegistryFile::Ask(char const* sql)
{
    sqlite3_stmt* statement = nullptr;
    int const result = ::sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr);
    if (result != SQLITE_OK) {
        Throw(m_database, result);
    }
    std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> const owner(statement, &::sqlite3_finalize);
    RegistryQuery query(statement);
    return query.Step() ? query.NumberAt(0) : 0;
}

RegistryQuery RegistryFile::Query(RegistryStatement statement)
{
    auto const index = static_cast<std::size_t>(statement);
    sqlite3_stmt*& prepared = m_statements[index];
    if (prepared == nullptr) {
        int const result = ::sqlite3_prepare_v3(m_database, StatementTexts[index], -1,
                                                SQLITE_PREPARE_PERSISTENT, &prepared, nullptr);
        if (result != SQLITE_OK) {
            Throw(m_database, result);
        }
    }
    return RegistryQuery(prepared);
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

void RegistryFile::CloseInHaste()
{
    ::sqlite3_db_config(m_database, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, 1, nullptr);
}

RegistryTransaction::RegistryTransaction(RegistryFile& file) : m_file(file)
{
    m_file.Run(RegistryStatement::Begin);
}

RegistryTransaction::~RegistryTransaction()
{
    if (m_open) {
        try {
            m_file.Run(RegistryStatement::Rollback);
        } catch (RegistryFailure const&) { // NOLINT(bugprone-empty-catch): an error may have done it already
        }
    }
}

void RegistryTransaction::Commit()
{
    m_file.Run(RegistryStatement::Commit);
    m_open = false;
}

} // namespace Quarn::detail
