// Lines of hostile text, read from a memory stream of the library's own type and from a derived one, which is
// read byte by byte: both must bring what a simple model brings, and stand where it stands.
#include "quarn/stream/text_reader.h"

#include "fuzz/memory_bound.h"
#include "tests/stream/line_model.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

// The line, while it grows, in its old and its new place; the exception at the end of the data.
constexpr fuzz::MemoryBound Bound = {"line_reader", 512, 3};

template<typename Stream>
void Compare(unsigned char const* data, std::size_t size)
{
    // Exactly sized, so that a read past the end is noticed.
    std::unique_ptr<unsigned char[]> const block(new unsigned char[size]);
    std::memcpy(block.get(), data, size);
    Stream stream(block.get(), static_cast<std::streamoff>(size));
    Quarn::TextStreamReader reader(stream);
    LineModel model(std::string(data, data + size));
    do {
        Quarn::string line;
        std::string expected;
        bool result = false;
        fuzz::Watch(Bound, size, [&] { result = reader.ReadLine(line); });
        if (result != model.ReadLine(expected) || line != expected || stream.gcount() != model.Count() ||
            stream.tellg() != static_cast<std::streamoff>(model.Position())) {
            std::abort();
        }
    } while (model.Count() != 0);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size != 0) { // no bytes have no address to copy from
        Compare<Quarn::memorystream>(data, size);
        Compare<DerivedMemory>(data, size);
    }
    return 0;
}
