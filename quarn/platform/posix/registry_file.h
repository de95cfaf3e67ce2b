// (private) A registry file: an SQLite data base with a table of keys and a table of values. Not for several
// threads at once, and not to be open while the process forks.
#pragma once

#include "quarn/platform/posix/registry_failure.h"

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace Quarn::detail {

// How a file is shared.
enum class RegistryJournal
{
    WriteAhead, // one user's: fast; reaches the disk when the system finds time, as on Windows
    Rollback    // everybody's: also for readers that may not write into its folder
};

// The statements, in the order of their texts in registry_file.cpp.
enum class RegistryStatement
{
    Begin,
    Commit,
    Rollback,
    DataVersion, // changes when another process has changed the file
    HasKey,
    FindKey,
    ParentOfKey,
    AddKey,
    HasSubKeys,
    RemoveValues,
    RemoveKey,
    ListKeys,
    KeyRow,
    FindValue,
    PutValue,
    RemoveValue,
    ListValues,
    ValueRow,
    Count
};

class RegistryFile;
class RegistrySideFiles;

// One use of a statement. What it gives out is valid until its next step or its end. Everything throws
// RegistryFailure.
class RegistryQuery
{
public:
    RegistryQuery(RegistryFile& file, sqlite3_stmt* statement) : m_file(&file), m_statement(statement) {}
    RegistryQuery(RegistryQuery const&) = delete;
    RegistryQuery& operator=(RegistryQuery const&) = delete;
    RegistryQuery(RegistryQuery&& other) noexcept;
    RegistryQuery& operator=(RegistryQuery&& other) noexcept;
    ~RegistryQuery();

    // The next parameter. Texts must stay until the last step.
    RegistryQuery& Number(std::int64_t number);
    RegistryQuery& Text(std::string_view text);
    RegistryQuery& Bytes(std::string_view bytes);

    // True for a row, false at the end.
    bool Step();
    std::int64_t NumberAt(int column) const;
    std::string_view BytesAt(int column) const;

private:
    RegistryFile* m_file;
    sqlite3_stmt* m_statement;
    int m_parameters = 0;
};

class RegistryFile
{
public:
    // Null when there is no file and `create` is not set. Throws RegistryFailure.
    static std::unique_ptr<RegistryFile> Open(std::string const& path, RegistryJournal journal, bool create);
    RegistryFile(RegistryFile const&) = delete;
    RegistryFile& operator=(RegistryFile const&) = delete;
    ~RegistryFile();

    RegistryQuery Query(RegistryStatement statement);
    // The statement as a whole.
    void Run(RegistryStatement statement) { Query(statement).Step(); }

    bool IsWritable() const;
    // How many rows the last statement changed, and the number of the row that it added; 0 for none.
    int Changes() const;
    void ForgetLastRow();
    std::int64_t LastRow() const;

    // In a transaction that could not be undone, or opened for reading alone where there was hope of more:
    // the file has to be opened anew.
    bool IsStuck() const { return m_isStuck; }

    // Makes the end quick: the log stays beside the file, and the next process to open it has the rest of the
    // work.
    void CloseInHaste() { BringLogHome(false); }

private:
    friend class RegistryQuery;
    friend class RegistryTransaction;
    RegistryFile();

    // False for an empty file that cannot be filled.
    bool Prepare(RegistryJournal journal);
    void MakeTables();
    // Refuses a file whose tables are not these.
    void CheckTables();
    void Execute(char const* sql);
    // The number in the last row; 0 for none.
    std::int64_t Ask(char const* sql);
    template<typename Row>
    void Visit(char const* sql, Row visit);
    // Whether closing writes into the file what is in its log.
    void BringLogHome(bool atTheEnd);
    // Called by the data base at its work; other than 0 ends it.
    static int CountSteps(void* file);

    std::unique_ptr<RegistrySideFiles> m_sideFiles;
    sqlite3* m_database = nullptr;
    bool m_isStuck = false;
    std::int64_t m_steps = 0; // of the statement at work
    std::array<sqlite3_stmt*, static_cast<std::size_t>(RegistryStatement::Count)> m_statements{};
};

// All or nothing: what is not committed is undone. No other process writes meanwhile.
class RegistryTransaction
{
public:
    explicit RegistryTransaction(RegistryFile& file);
    RegistryTransaction(RegistryTransaction const&) = delete;
    RegistryTransaction& operator=(RegistryTransaction const&) = delete;
    ~RegistryTransaction();

    void Commit();

private:
    RegistryFile& m_file;
    bool m_open = true;
};

} // namespace Quarn::detail
