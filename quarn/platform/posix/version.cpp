// Version blocks on POSIX: read from the file of a module, which is neither loaded nor run.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/file_source.h"
#include "quarn/platform/posix/resource_image.h"
#include "quarn/platform/posix/version_block.h"

#include <algorithm>

namespace Quarn::detail {

namespace {

// The version resource of a file, open for reading.
struct VersionResource
{
    std::unique_ptr<FileSource> file; // null after a failure
    std::uint64_t offset = 0;
    std::uint32_t size = 0;
};

VersionResource OpenVersionResource(char const* path)
{
    VersionResource resource;
    if (path == nullptr || *path == '\0') {
        Fail(path == nullptr ? ERROR_INVALID_PARAMETER : ERROR_BAD_PATHNAME);
        return resource;
    }
    std::unique_ptr<FileSource> file = FileSource::Open(path);
    if (file == nullptr) {
        return resource;
    }
    auto const range = LocateResource(*file, VersionType, VersionName);
    if (!range || range->size == 0) {
        Fail(ERROR_RESOURCE_DATA_NOT_FOUND);
        return resource;
    }
    resource.file = std::move(file);
    resource.offset = range->offset;
    resource.size = static_cast<std::uint32_t>(std::min<std::uint64_t>(range->size, MaxVersionResource));
    return resource;
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

DWORD GetFileVersionInfoSizeA(char const* path, DWORD* handle)
{
    if (handle != nullptr) {
        *handle = 0;
    }
    return Guarded(DWORD{0}, [path]() -> DWORD {
        VersionResource const resource = OpenVersionResource(path);
        return resource.file != nullptr ? VersionBlockSize(resource.size) : 0;
    });
}

BOOL GetFileVersionInfoA(char const* path, DWORD /*handle*/, DWORD size, void* block)
{
    if (block == nullptr) {
        return Fail(ERROR_INVALID_DATA);
    }
    return Guarded(FALSE, [&] {
        VersionResource const resource = OpenVersionResource(path);
        if (resource.file == nullptr) {
            return FALSE;
        }
        if (size < VersionBlockSize(resource.size)) {
            return Fail(ERROR_INSUFFICIENT_BUFFER);
        }
        if (!resource.file->Read(resource.offset, block, resource.size)) {
            return Fail(ERROR_RESOURCE_DATA_NOT_FOUND);
        }
        CompleteVersionBlock({static_cast<unsigned char*>(block), size}, resource.size);
        return TRUE;
    });
}

BOOL VerQueryValueA(void const* block, char const* path, void** value, UINT* size)
{
    if (block == nullptr) {
        return FALSE;
    }
    return Guarded(FALSE, [&] {
        void const* found = nullptr;
        UINT foundSize = 0;
        bool const exists = QueryVersionBlock(static_cast<unsigned char const*>(block),
                                              path != nullptr ? path : "", found, foundSize);
        if (size != nullptr) {
            *size = foundSize;
        }
        if (!exists) {
            return Fail(ERROR_RESOURCE_TYPE_NOT_FOUND);
        }
        *value = const_cast<void*>(found);
        return TRUE;
    });
}
