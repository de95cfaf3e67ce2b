#include "quarn/platform/posix/registry_side_files.h"

#include "quarn/platform/posix/files.h"
#include "quarn/platform/posix/registry_failure.h"

#include <cerrno>
#include <cstdint>
#include <cstring>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Quarn::detail {

namespace {

// The data base's header: which version of the format writes it, and which reads it.
constexpr int WriteVersionAt = 18;
constexpr int ReadVersionAt = 19;
constexpr int JournalVersion = 1;
constexpr int LogVersion = 2;

// A journal's header: how many pages of which size the file had. High bytes first.
constexpr std::size_t PagesAt = 16;
constexpr std::size_t PageSizeAt = 24;
constexpr std::size_t JournalHeaderSize = 28;

// What a transaction takes from a file's end is in its journal: with one that says more, the file would grow.
bool Grows(char const* journal, std::int64_t size, sqlite3_file* file)
{
    Descriptor const descriptor = Open(journal, O_RDONLY | O_NONBLOCK);
    unsigned char header[JournalHeaderSize];
    sqlite3_int64 fileSize = 0;
    if (!descriptor || ReadAll(descriptor.Get(), header, sizeof header) != long{sizeof header} ||
        file->pMethods->xFileSize(file, &fileSize) != SQLITE_OK) {
        return false; // as the data base will see
    }
    auto const number = [&header](std::size_t at) {
        return std::uint64_t{header[at]} << 24 | header[at + 1] << 16 | header[at + 2] << 8 | header[at + 3];
    };
    return number(PagesAt) * number(PageSizeAt) > static_cast<std::uint64_t>(fileSize + size);
}

} // namespace

RegistrySideFiles::RegistrySideFiles() : sqlite3_vfs()
{
    sqlite3_vfs const* const system = ::sqlite3_vfs_find(nullptr);
    if (system == nullptr) {
        Refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
    static_cast<sqlite3_vfs&>(*this) = *system;
    m_open = system->xOpen;
    // Another copy of the library in this process may have its own.
    m_name = "quarnutil-" + std::to_string(reinterpret_cast<std::uintptr_t>(this));
    zName = m_name.c_str();
    xOpen = &RegistrySideFiles::OpenFile;
    xAccess = &RegistrySideFiles::AccessFile;
    if (::sqlite3_vfs_register(this, 0) != SQLITE_OK) {
        Refuse(ERROR_NOT_ENOUGH_MEMORY);
    }
}

RegistrySideFiles::~RegistrySideFiles()
{
    ::sqlite3_vfs_unregister(this);
}

void RegistrySideFiles::SetDatabase(sqlite3* database)
{
    char const* const path = ::sqlite3_db_filename(database, "main");
    m_journal = ::sqlite3_filename_journal(path);
    m_log = ::sqlite3_filename_wal(path);
    ::sqlite3_file_control(database, "main", SQLITE_FCNTL_FILE_POINTER, &m_file);
}

void RegistrySideFiles::RemoveStrayJournal()
{
    if (m_hasStrayJournal) {
        ::unlink(m_journal);
        m_hasStrayJournal = false;
    }
}

RegistrySideFiles& RegistrySideFiles::Of(sqlite3_vfs* files)
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-static-cast-downcast): SQLite's structure has no type to ask
    return *static_cast<RegistrySideFiles*>(files);
}

// A pipe would keep who opens it waiting.
int RegistrySideFiles::OpenFile(sqlite3_vfs* files, char const* path, sqlite3_file* file, int flags,
                                int* outFlags)
{
    RegistrySideFiles const& self = Of(files);
    struct ::stat status;
    if (path != nullptr && ::stat(path, &status) == 0 && !S_ISREG(status.st_mode)) {
        file->pMethods = nullptr;
        errno = EACCES;
        return SQLITE_CANTOPEN;
    }
    return self.m_open(files, path, file, flags, outFlags);
}

// Asked for a journal or a log while the registry file is locked for reading, so its header stays; and for
// the file that a journal names.
int RegistrySideFiles::AccessFile(sqlite3_vfs* files, char const* path, int /*flags*/, int* result)
{
    RegistrySideFiles& self = Of(files);
    *result = 0;
    bool const isLog = std::strcmp(path, self.m_log) == 0;
    bool const isJournal = std::strcmp(path, self.m_journal) == 0;
    struct ::stat status;
    if ((!isLog && !isJournal) || ::stat(path, &status) != 0 || !S_ISREG(status.st_mode) ||
        status.st_size == 0) {
        return SQLITE_OK;
    }
    unsigned char header[ReadVersionAt + 1] = {};
    int const read = self.m_file->pMethods->xRead(self.m_file, header, sizeof header, 0);
    if (read != SQLITE_OK && read != SQLITE_IOERR_SHORT_READ) {
        return read;
    }
    // A header that is damaged decides nothing: what lies there may be what mends it.
    int const stray = isLog ? JournalVersion : LogVersion;
    bool const isStray = header[WriteVersionAt] == stray && header[ReadVersionAt] == stray;
    self.m_hasStrayJournal |= isJournal && isStray;
    *result = isStray || (isJournal && Grows(path, status.st_size, self.m_file)) ? 0 : 1;
    return SQLITE_OK;
}

} // namespace Quarn::detail
