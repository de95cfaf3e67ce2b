// (private) The bytes of a file, read through a small window.
#pragma once

#include "quarn/platform/posix/byte_source.h"
#include "quarn/platform/posix/files.h"

#include <memory>

namespace Quarn::detail {

class FileSource final : public ByteSource
{
public:
    // Null after a failure, with the error set. Only regular files are read: a folder is
    // ERROR_ACCESS_DENIED, and so is everything else.
    static std::unique_ptr<FileSource> Open(char const* path);

private:
    FileSource(Descriptor descriptor, std::uint64_t size);
    bool DoRead(std::uint64_t offset, void* data, std::size_t size) override;

    Descriptor m_descriptor;
    std::uint64_t m_windowBegin = 0;
    std::uint64_t m_windowEnd = 0;
    unsigned char m_window[4096];
};

} // namespace Quarn::detail
