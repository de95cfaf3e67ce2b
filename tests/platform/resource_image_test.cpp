// The readers of modules and of version blocks by themselves: damaged images, and Windows' own answers.
#include "quarn/platform/posix/resource_image.h"
#include "quarn/platform/posix/version_block.h"

#include "tests/platform/system_modules.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#if defined(_WIN32)
#include "quarn/platform/fault_guard.h"
#include "quarn/platform/win32_api.h"
#endif

namespace {

using namespace Quarn::detail;
using Bytes = std::vector<unsigned char>;

constexpr char const* Paths[] = {
    "\\",
    "\\VarFileInfo\\Translation",
    "\\StringFileInfo\\040904b0\\Comments",
    "\\StringFileInfo\\040904b0\\CompanyName",
    "\\StringFileInfo\\040904b0\\LegalCopyright",
    "\\StringFileInfo\\040904b0\\FileDescription",
    "\\StringFileInfo\\040904B0\\fileversion",
    "\\StringFileInfo\\040904b0\\InternalName",
    "\\StringFileInfo\\040904b0\\LegalTrademarks",
    "\\StringFileInfo\\040904b0\\OriginalFilename",
    "\\StringFileInfo\\040904b0\\PrivateBuild",
    "\\StringFileInfo\\040904b0\\ProductName",
    "\\StringFileInfo\\040904b0\\ProductVersion",
    "\\StringFileInfo\\040904b0\\SpecialBuild",
    "\\StringFileInfo\\040904e4\\CompanyName",
    "\\StringFileInfo\\\\CompanyName",
    "\\StringFileInfo",
    "\\NoSuchInfo",
};

Bytes ReadFile(std::string const& path)
{
    Bytes bytes(std::filesystem::file_size(path));
    std::ifstream file(path, std::ios::binary);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file) << path;
    return bytes;
}

struct Block
{
    std::unique_ptr<unsigned char[]> data;
    std::uint32_t size = 0;
};

// In memory of exactly its size.
std::optional<Block> ReadBlock(ByteSource& image)
{
    auto const range = LocateResource(image, VersionType, VersionName);
    if (!range || range->size > MaxVersionResource) {
        return std::nullopt;
    }
    auto const size = static_cast<std::uint32_t>(range->size);
    Block block{std::make_unique<unsigned char[]>(VersionBlockSize(size)), VersionBlockSize(size)};
    EXPECT_TRUE(image.Read(range->offset, block.data.get(), size));
    CompleteVersionBlock({block.data.get(), block.size}, size);
    return block;
}

// Every answer lies in the block, a text with its terminator.
void CheckAnswers(Block const& block)
{
    for (char const* const path : Paths) {
        void const* value = nullptr;
        std::uint32_t size = 0;
        if (!QueryVersionBlock(block.data.get(), path, value, size)) {
            EXPECT_EQ(size, 0U);
            continue;
        }
        auto const* const begin = static_cast<unsigned char const*>(value);
        ASSERT_GE(begin, block.data.get());
        ASSERT_LE(begin + size, block.data.get() + block.size);
        ASSERT_NE(std::memchr(begin, 0, static_cast<std::size_t>(block.data.get() + block.size - begin)),
                  nullptr);
    }
}

// Whether it has a block, with all answers sound.
bool Check(Bytes const& bytes)
{
    MemorySource image(bytes);
    auto const block = ReadBlock(image);
    if (block) {
        CheckAnswers(*block);
    }
    return block.has_value();
}

std::vector<Bytes> SampleImages()
{
    std::string const folder = QUARN_VERSION_BLOCK_SEEDS;
    std::vector<Bytes> images;
    for (char const* const name : {"/pe64.dll", "/pe32.dll", "/module.so"}) {
        images.push_back(ReadFile(folder + name));
    }
    return images;
}

TEST(ResourceImage, FindsTheBlockOfEachKindOfModule)
{
    for (Bytes const& bytes : SampleImages()) {
        MemorySource image(bytes);
        auto const block = ReadBlock(image);
        ASSERT_TRUE(block);
        void const* value = nullptr;
        std::uint32_t size = 0;
        ASSERT_TRUE(
            QueryVersionBlock(block->data.get(), "\\StringFileInfo\\040904b0\\ProductName", value, size));
        EXPECT_STREQ(static_cast<char const*>(value), "A product");
        EXPECT_EQ(size, sizeof "A product");
        ASSERT_TRUE(QueryVersionBlock(block->data.get(), "\\", value, size));
        EXPECT_EQ(size, 52U); // VS_FIXEDFILEINFO
    }
}

TEST(ResourceImage, ImagesCutOffAnywhereAreRead)
{
    for (Bytes const& whole : SampleImages()) {
        int found = 0;
        for (std::size_t size = 0; size < whole.size(); ++size) {
            // A copy of exactly this size, so that a byte too many is noticed.
            found += Check(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size))) ? 1 : 0;
        }
        EXPECT_LT(found, static_cast<int>(whole.size()));
    }
}

TEST(ResourceImage, ImagesWithABitFlippedInAnyByteAreRead)
{
    for (Bytes const& whole : SampleImages()) {
        int found = 0;
        int lost = 0;
        Bytes bytes = whole;
        for (unsigned char& byte : bytes) {
            for (unsigned char const mask : {0x01, 0x08, 0x80}) {
                byte ^= mask;
                ++(Check(bytes) ? found : lost);
                byte ^= mask;
            }
        }
        EXPECT_GT(found, 0);
        EXPECT_GT(lost, 0);
    }
}

TEST(ResourceImage, ImagesWithManyBytesReplacedAreRead)
{
    std::mt19937 random(20240305);
    for (Bytes const& whole : SampleImages()) {
        for (int i = 0; i < 2'000; ++i) {
            Bytes bytes = whole;
            for (int change = 0; change < 8; ++change) {
                unsigned char const values[] = {0x00, 0x01, 0x7F,
                                                0x80, 0xFF, static_cast<unsigned char>(random())};
                bytes[random() % bytes.size()] = values[random() % std::size(values)];
            }
            Check(bytes);
        }
    }
}

TEST(ResourceImage, ALoopOfHeadersEndsSoon)
{
    // An ELF header that claims 65,535 segments, each of which is a segment of notes that lie in themselves.
    Bytes bytes(64 * 1024, 0);
    unsigned char const head[] = {0x7F, 'E', 'L', 'F', 2, 1};
    std::copy(std::begin(head), std::end(head), bytes.begin());
    bytes[0x36] = 56;
    bytes[0x38] = bytes[0x39] = 0xFF;
    for (std::size_t header = 0; header + 56 <= bytes.size(); header += 56) {
        if (header > 0x40) {
            bytes[header] = 4;
            bytes[header + 0x22] = 1; // a size of 64 KiB
        }
    }
    EXPECT_FALSE(Check(bytes));
}

#if defined(_WIN32)

class StreamSource final : public ByteSource
{
public:
    explicit StreamSource(std::string const& path)
        : ByteSource(std::filesystem::file_size(path)),
          m_file(path, std::ios::binary)
    {}

private:
    bool DoRead(std::uint64_t offset, void* data, std::size_t size) override
    {
        m_file.clear();
        m_file.seekg(static_cast<std::streamoff>(offset));
        m_file.read(static_cast<char*>(data), static_cast<std::streamsize>(size));
        return m_file.good();
    }

    std::ifstream m_file;
};

TEST(ResourceImage, EveryModuleOfTheSystemIsReadAsTheSystemReadsIt)
{
    int withBlock = 0;
    for (std::string const& path : SystemModules()) {
        SCOPED_TRACE(path);
        StreamSource image(path);
        auto const block = ReadBlock(image);
        DWORD handle = 0;
        DWORD const size = ::GetFileVersionInfoSizeA(path.c_str(), &handle);
        ASSERT_EQ(block.has_value(), size != 0);
        if (!block) {
            continue;
        }
        ++withBlock;
        // The resource itself, UTF-16 as it stands, byte for byte.
        Bytes wide(size);
        ASSERT_TRUE(::GetFileVersionInfoA(path.c_str(), 0, size, wide.data()));
        auto const length = static_cast<std::size_t>(wide[0] | wide[1] << 8);
        ASSERT_LE(length, block->size);
        EXPECT_EQ(std::memcmp(wide.data(), block->data.get(), length), 0);
        for (char const* const query : Paths) {
            void* expected = nullptr;
            UINT expectedSize = 0;
            void const* value = nullptr;
            std::uint32_t valueSize = 0;
            bool const exists = ::VerQueryValueA(wide.data(), query, &expected, &expectedSize) != FALSE;
            ASSERT_EQ(QueryVersionBlock(block->data.get(), query, value, valueSize), exists) << query;
            ASSERT_EQ(valueSize, exists ? expectedSize : 0U) << query;
            EXPECT_TRUE(!exists || std::memcmp(value, expected, valueSize) == 0) << query;
        }
    }
    EXPECT_GT(withBlock, 100);
}

TEST(FaultGuard, LeavesACallThatFaults)
{
    int const volatile* const nowhere = reinterpret_cast<int const*>(std::intptr_t{16});
    int volatile sum = 0;
    EXPECT_FALSE(CallGuarded([&] { sum = *nowhere; }));
    EXPECT_TRUE(CallGuarded([&] { sum = 42; }));
    EXPECT_EQ(sum, 42);
    EXPECT_FALSE(CallGuarded([] {
        void* value = nullptr;
        UINT size = 0;
        ::VerQueryValueA(reinterpret_cast<void*>(std::intptr_t{16}), "\\", &value, &size);
    }));
}

#endif

} // namespace
