// Runs the fuzz targets without libFuzzer, over the committed seeds as a test, or over one finding under a
// debugger.
//
//   fuzz_replay READER FILE-OR-FOLDER...   every file, and what the readings took of memory
//   fuzz_replay --greedy                   a reader that takes too much, which must be noticed
#include "fuzz/memory_bound.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string_view>
#include <vector>

#define QUARN_READER(name) extern "C" int Fuzz_##name(std::uint8_t const* data, std::size_t size);
#include "readers.h"
#undef QUARN_READER

namespace {

using Target = int(std::uint8_t const*, std::size_t);

struct Reader
{
    std::string_view name;
    Target* target;
};

constexpr Reader Readers[] = {
#define QUARN_READER(name) {#name, &Fuzz_##name},
#include "readers.h"
#undef QUARN_READER
};

bool Replay(Target* target, std::filesystem::path const& path)
{
    std::ifstream file(path, std::ios::binary);
    std::vector<char> const bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path.string().c_str());
        return false;
    }
    std::printf("%s\n", path.string().c_str());
    std::fflush(stdout);
    // A block of exactly this size: the address sanitizer sees a read of one byte more.
    auto const block = std::make_unique<std::uint8_t[]>(bytes.size());
    std::copy(bytes.begin(), bytes.end(), block.get());
    target(block.get(), bytes.size());
    return true;
}

int Greedy()
{
    fuzz::Watch({"greedy", 1000, 2}, 100, [] { std::vector<char> const within(600); });
    fuzz::Watch({"greedy", 1000, 2}, 100, [] {
        // As much again is live at the same time as the bound allows.
        std::vector<char> const first(1200);
        std::vector<char> const second(1200);
    });
    return 0;
}

} // namespace

int main(int count, char** arguments)
{
    std::string_view const name = count > 1 ? arguments[1] : "";
    if (name == "--greedy") {
        return Greedy();
    }
    auto const* const reader =
        std::find_if(std::begin(Readers), std::end(Readers), [&](Reader const& r) { return r.name == name; });
    if (reader == std::end(Readers)) {
        std::fprintf(stderr, "no such reader: %s\n", count > 1 ? arguments[1] : "");
        return 1;
    }
    int replayed = 0;
    for (int i = 2; i < count; ++i) {
        std::filesystem::path const path = arguments[i];
        std::vector<std::filesystem::path> files = {path};
        if (std::filesystem::is_directory(path)) {
            files.assign(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator());
        }
        for (std::filesystem::path const& file : files) {
            if (!Replay(reader->target, file)) {
                return 1;
            }
            ++replayed;
        }
    }
    fuzz::PrintPeaks();
    std::printf("%d inputs\n", replayed);
    return replayed == 0 ? 1 : 0;
}
