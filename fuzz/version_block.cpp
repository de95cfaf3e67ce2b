// The readers of modules (Windows files, ELF modules with compiled resources) and of version blocks. The
// first byte of the input says whether the rest is a module's file or a version resource by itself; the
// committed seeds of modules begin with their own first letter.
#include "quarn/platform/posix/version_block.h"

#include "quarn/platform/posix/resource_image.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>

using namespace Quarn::detail;

namespace {

void Check(bool condition)
{
    if (!condition) {
        std::abort();
    }
}

// A block of exactly its size, asked for everything; each answer lies inside, a text with its terminator.
void ReadBlock(ByteSource& source, ByteRange range)
{
    auto const size = static_cast<std::uint32_t>(std::min<std::uint64_t>(range.size, MaxVersionResource));
    std::uint32_t const blockSize = VersionBlockSize(size);
    auto const block = std::make_unique<unsigned char[]>(blockSize);
    Check(source.Read(range.offset, block.get(), size));
    CompleteVersionBlock({block.get(), blockSize}, size);
    for (char const* const path :
         {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo", "\\StringFileInfo\\040904b0\\CompanyName",
          "\\StringFileInfo\\040904b0\\Comments", "\\StringFileInfo\\040904b0\\ProductName",
          "\\a\\b\\c\\d"}) {
        void const* value = nullptr;
        std::uint32_t valueSize = 0;
        if (QueryVersionBlock(block.get(), path, value, valueSize)) {
            auto const* const begin = static_cast<unsigned char const*>(value);
            unsigned char const* const end = block.get() + blockSize;
            Check(begin >= block.get() && begin <= end && valueSize <= static_cast<std::size_t>(end - begin));
            Check(std::memchr(begin, 0, static_cast<std::size_t>(end - begin)) != nullptr);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(unsigned char const* data, std::size_t size)
{
    if (size > 0 && data[0] == 'V') {
        MemorySource resource({data + 1, size - 1});
        ReadBlock(resource, {0, size - 1});
        return 0;
    }
    MemorySource image({data, size});
    if (auto const range = LocateResource(image, VersionType, VersionName)) {
        ReadBlock(image, *range);
    }
    if (auto const range = LocateResource(image, StringTableType, 7)) {
        Check(range->offset <= size && range->size <= size - range->offset);
    }
    return 0;
}
