// The registry beside the bare prepared statements of SQLite that do the same, with the same settings.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/registry_persist.h"

#include <cstdlib>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>
#include <sqlite3.h>

namespace {

constexpr int largeCount = 10000;

// The key of this name, made with `count` values and as many sub-keys.
HKEY MakeKey(char const* name, int count)
{
    HKEY key = nullptr;
    DWORD disposition = 0;
    ::RegCreateKeyExA(HKEY_CURRENT_USER, name, 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                      &key, &disposition);
    for (int i = 0; disposition == REG_CREATED_NEW_KEY && i < count; ++i) {
        std::string const item = std::to_string(i);
        DWORD const number = static_cast<DWORD>(i);
        ::RegSetValueExA(key, item.c_str(), 0, REG_DWORD, reinterpret_cast<BYTE const*>(&number), 4);
        HKEY sub = nullptr;
        ::RegCreateKeyExA(key, item.c_str(), 0, nullptr, REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr,
                          &sub, nullptr);
        ::RegCloseKey(sub);
    }
    return key;
}

void QuarnRead(benchmark::State& state)
{
    HKEY const key = MakeKey("Small", 1000);
    for (auto _ : state) {
        DWORD number = 0;
        DWORD size = 4;
        ::RegQueryValueExA(key, "500", nullptr, nullptr, reinterpret_cast<BYTE*>(&number), &size);
        benchmark::DoNotOptimize(number);
    }
    ::RegCloseKey(key);
}

void QuarnWrite(benchmark::State& state)
{
    HKEY const key = MakeKey("Small", 1000);
    DWORD number = 0;
    for (auto _ : state) {
        ++number;
        ::RegSetValueExA(key, "500", 0, REG_DWORD, reinterpret_cast<BYTE*>(&number), 4);
    }
    ::RegCloseKey(key);
}

constexpr DWORD nameSize = 16;

bool HasValue(HKEY key, DWORD index, char* name)
{
    DWORD size = nameSize;
    return ::RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
}

bool HasSubKey(HKEY key, DWORD index, char* name)
{
    DWORD size = nameSize;
    return ::RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) == 0;
}

template<int Count, bool (*Has)(HKEY key, DWORD index, char* name)>
void QuarnList(benchmark::State& state)
{
    HKEY const key = MakeKey(Count == largeCount ? "Large" : "Small", Count);
    for (auto _ : state) {
        char name[nameSize];
        DWORD index = 0;
        while (Has(key, index, name)) {
            ++index;
        }
        if (index != Count) {
            state.SkipWithError("not all were listed");
        }
    }
    ::RegCloseKey(key);
}

void QuarnSeed(benchmark::State& state)
{
    HKEY const key = MakeKey("Large", largeCount);
    for (auto _ : state) {
        Quarn::PropertyCollection tree;
        if (!Quarn::Win32::RegistryPropPersist(key).Populate(&tree)) {
            state.SkipWithError("not all was read");
        }
    }
    ::RegCloseKey(key);
}

// A table with the rows of a registry of one key.
class Table
{
public:
    Table()
    {
        std::filesystem::path const file = std::filesystem::path(std::getenv("XDG_DATA_HOME")) / "peer.db";
        std::filesystem::create_directories(file.parent_path());
        ::sqlite3_open(file.c_str(), &m_database);
        Execute(
            "PRAGMA journal_mode = WAL; PRAGMA synchronous = NORMAL;"
            "CREATE TABLE IF NOT EXISTS v(k INTEGER, name TEXT, type INTEGER, data BLOB, UNIQUE(k, name))");
        Execute("BEGIN");
        for (int i = 0; i < largeCount; ++i) {
            Execute(
                ("INSERT OR IGNORE INTO v VALUES(1, '" + std::to_string(i) + "', 4, x'00000000')").c_str());
        }
        Execute("COMMIT");
    }
    Table(Table const&) = delete;
    Table& operator=(Table const&) = delete;
    ~Table() { ::sqlite3_close(m_database); }

    sqlite3_stmt* Prepare(char const* sql)
    {
        sqlite3_stmt* statement = nullptr;
        ::sqlite3_prepare_v2(m_database, sql, -1, &statement, nullptr);
        return statement;
    }

private:
    void Execute(char const* sql) { ::sqlite3_exec(m_database, sql, nullptr, nullptr, nullptr); }

    sqlite3* m_database = nullptr;
};

void SqliteRead(benchmark::State& state)
{
    Table table;
    sqlite3_stmt* const statement = table.Prepare("SELECT type, data FROM v WHERE k = 1 AND name = ?1");
    for (auto _ : state) {
        ::sqlite3_bind_text(statement, 1, "500", 3, SQLITE_STATIC);
        if (::sqlite3_step(statement) != SQLITE_ROW) {
            state.SkipWithError("no row");
        }
        benchmark::DoNotOptimize(::sqlite3_column_int(statement, 0));
        benchmark::DoNotOptimize(::sqlite3_column_blob(statement, 1));
        ::sqlite3_reset(statement);
    }
    ::sqlite3_finalize(statement);
}

void SqliteWrite(benchmark::State& state)
{
    Table table;
    sqlite3_stmt* const statement = table.Prepare("INSERT INTO v VALUES(1, ?1, 4, ?2) ON CONFLICT(k, name) "
                                                  "DO UPDATE SET type = 4, data = excluded.data");
    unsigned number = 0;
    for (auto _ : state) {
        ++number;
        ::sqlite3_bind_text(statement, 1, "500", 3, SQLITE_STATIC);
        ::sqlite3_bind_blob(statement, 2, &number, sizeof number, SQLITE_STATIC);
        if (::sqlite3_step(statement) != SQLITE_DONE) {
            state.SkipWithError("not written");
        }
        ::sqlite3_reset(statement);
    }
    ::sqlite3_finalize(statement);
}

// All rows by one statement, which a list by index cannot be.
void SqliteList(benchmark::State& state)
{
    Table table;
    sqlite3_stmt* const statement = table.Prepare("SELECT name FROM v WHERE k = 1");
    for (auto _ : state) {
        int count = 0;
        while (::sqlite3_step(statement) == SQLITE_ROW) {
            benchmark::DoNotOptimize(::sqlite3_column_text(statement, 0));
            ++count;
        }
        ::sqlite3_reset(statement);
        if (count != largeCount) {
            state.SkipWithError("not all were listed");
        }
    }
    ::sqlite3_finalize(statement);
}

BENCHMARK(QuarnRead)->Name("registry/quarn/read a value");
BENCHMARK(SqliteRead)->Name("registry/bare SELECT/read a value");
BENCHMARK(QuarnWrite)->Name("registry/quarn/write a value");
BENCHMARK(SqliteWrite)->Name("registry/bare upsert/write a value");
BENCHMARK(QuarnList<1000, HasValue>)->Name("registry/quarn/list 1,000 values");
BENCHMARK(QuarnList<largeCount, HasValue>)->Name("registry/quarn/list 10,000 values");
BENCHMARK(SqliteList)->Name("registry/one SELECT/list 10,000 values");
BENCHMARK(QuarnList<1000, HasSubKey>)->Name("registry/quarn/list 1,000 sub-keys");
BENCHMARK(QuarnList<largeCount, HasSubKey>)->Name("registry/quarn/list 10,000 sub-keys");
BENCHMARK(QuarnSeed)->Name("registry/quarn/seed a tree with 10,000 values and keys");

} // namespace
