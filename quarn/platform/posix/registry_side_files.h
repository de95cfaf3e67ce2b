// (private) Which files beside a registry file are part of it. The data base by itself takes every -journal
// and every -wal that lies there for its own, and a journal may name any file to be removed. Here the header
// of the registry file decides: one that has a write-ahead log has no journal, one that has a journal has no
// log, and nothing but a regular file is opened.
#pragma once

#include <string>

#include <sqlite3.h>

namespace Quarn::detail {

// The system's files as the data base sees them. One for each registry file; it lives longer than the data
// base's connection.
class RegistrySideFiles : private sqlite3_vfs
{
public:
    // Throws RegistryFailure.
    RegistrySideFiles();
    RegistrySideFiles(RegistrySideFiles const&) = delete;
    RegistrySideFiles& operator=(RegistrySideFiles const&) = delete;
    ~RegistrySideFiles();

    // By which the data base is opened.
    char const* Name() const { return m_name.c_str(); }
    // To be called once it is open, before anything is read.
    void SetDatabase(sqlite3* database);
    // Removes a journal that is none of the file's: another program could take it for one. Only in a
    // transaction, when nobody is about to change to a log.
    void RemoveStrayJournal();

private:
    static RegistrySideFiles& Of(sqlite3_vfs* files);
    static int OpenFile(sqlite3_vfs* files, char const* path, sqlite3_file* file, int flags, int* outFlags);
    static int AccessFile(sqlite3_vfs* files, char const* path, int flags, int* result);

    std::string m_name;
    decltype(sqlite3_vfs::xOpen) m_open = nullptr; // the system's own
    sqlite3_file* m_file = nullptr;
    char const* m_journal = "";
    char const* m_log = "";
    bool m_hasStrayJournal = false;
};

} // namespace Quarn::detail
