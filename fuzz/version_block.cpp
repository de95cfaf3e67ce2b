// The readers of modules (Windows files, ELF modules with compiled resources) and of version blocks. The
// first byte of the input says whether the rest is a module's file or a version resource by itself; the
// committed seeds of modules begin with their own first letter.
#include "quarn/platform/posix/version_block.h"

#include "quarn/platform/posix/resource_image.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <algorithm>
#include <cstring>
#include <memory>

using namespace Quarn::detail;

namespace {

// The image is read piece by piece, and the block lies in the caller's memory; one text at a time is
// converted.
constexpr fuzz::MemoryBound ImageBound = {"module_image", 0, 0};
constexpr fuzz::MemoryBound BlockBound = {"version_block", 256, 4};

std::optional<ByteRange> Locate(ByteSource& image, std::uint16_t type, std::uint16_t name)
{
    std::optional<ByteRange> found;
    fuzz::Watch(ImageBound, 0, [&] { found = LocateResource(image, type, name); });
    fuzz::Check(!found || (found->offset <= image.Size() && found->size <= image.Size() - found->offset),
                "a resource outside its image");
    return found;
}

// A block of exactly its size, asked for everything; each answer lies inside, a text with its terminator.
void ReadBlock(ByteSource& source, ByteRange range)
{
    auto const size = static_cast<std::uint32_t>(std::min<std::uint64_t>(range.size, MaxVersionResource));
    std::uint32_t const blockSize = VersionBlockSize(size);
    auto const block = std::make_unique<unsigned char[]>(blockSize);
    fuzz::Check(source.Read(range.offset, block.get(), size), "a resource that cannot be read");
    fuzz::Watch(BlockBound, size, [&] { CompleteVersionBlock({block.get(), blockSize}, size); });
    for (char const* const path :
         {"\\", "\\VarFileInfo\\Translation", "\\StringFileInfo", "\\StringFileInfo\\040904b0\\CompanyName",
          "\\StringFileInfo\\040904b0\\Comments", "\\StringFileInfo\\040904b0\\ProductName",
          "\\a\\b\\c\\d"}) {
        void const* value = nullptr;
        std::uint32_t valueSize = 0;
        bool isFound = false;
        fuzz::Watch(BlockBound, size,
                    [&] { isFound = QueryVersionBlock(block.get(), path, value, valueSize); });
        if (isFound) {
            auto const* const begin = static_cast<unsigned char const*>(value);
            unsigned char const* const end = block.get() + blockSize;
            fuzz::Check(begin >= block.get() && begin <= end &&
                            valueSize <= static_cast<std::size_t>(end - begin),
                        "an answer outside the block");
            fuzz::Check(std::memchr(begin, 0, static_cast<std::size_t>(end - begin)) != nullptr,
                        "an answer without its end");
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
    if (auto const range = Locate(image, VersionType, VersionName)) {
        ReadBlock(image, *range);
    }
    Locate(image, StringTableType, 7);
    return 0;
}
