// Runs a fuzz target over every file of a folder, without libFuzzer: the committed seeds as a test, or one
// finding under a debugger.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size);

namespace {

bool Replay(std::filesystem::path const& path)
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
    LLVMFuzzerTestOneInput(block.get(), bytes.size());
    return true;
}

} // namespace

int main(int count, char** arguments)
{
    int replayed = 0;
    for (int i = 1; i < count; ++i) {
        std::filesystem::path const path = arguments[i];
        if (!std::filesystem::is_directory(path)) {
            if (!Replay(path)) {
                return 1;
            }
            ++replayed;
            continue;
        }
        for (auto const& entry : std::filesystem::directory_iterator(path)) {
            if (!Replay(entry.path())) {
                return 1;
            }
            ++replayed;
        }
    }
    std::printf("%d inputs\n", replayed);
    return replayed == 0 ? 1 : 0;
}
