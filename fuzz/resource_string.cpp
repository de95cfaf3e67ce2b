// The texts of string tables in the notes of modules, beside a plain reading of the table. Whatever the notes
// are, a text lies whole in its table, and of each id there is one.
//
// Input: one byte for the alignment, then the notes.
#include "quarn/platform/posix/resource_image.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace Quarn::detail;

// The notes lie in memory; of each text there is one copy.
constexpr fuzz::MemoryBound Bound = {"resource_string", 64, 1};

// All texts of a table up to the first that is not whole.
std::vector<std::u16string> Texts(std::uint8_t const* table, std::size_t size)
{
    std::vector<std::u16string> texts;
    for (std::size_t at = 0; at + 2 <= size && texts.size() < 16;) {
        std::size_t const units = table[at] | table[at + 1] << 8;
        at += 2;
        if (units > (size - at) / 2) {
            break;
        }
        std::u16string text;
        for (std::size_t i = 0; i < units; ++i, at += 2) {
            text += static_cast<char16_t>(table[at] | table[at + 1] << 8);
        }
        texts.push_back(text);
    }
    return texts;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    std::uint8_t const* const bytes = data + 1;
    MemorySource notes({bytes, size - 1});
    // The tables of the library's own texts, and one more.
    for (std::uint16_t name = 1; name <= 8; ++name) {
        std::optional<ByteRange> table;
        fuzz::Watch(Bound, 0, [&] { table = LocateResourceInNotes(notes, data[0], StringTableType, name); });
        if (!table) {
            continue;
        }
        fuzz::Check(table->offset <= size - 1 && table->size <= size - 1 - table->offset,
                    "a table outside the notes");
        std::vector<std::u16string> const texts = Texts(bytes + table->offset, table->size);
        for (unsigned index = 0; index < 16; ++index) {
            std::u16string text;
            fuzz::Watch(Bound, size, [&] { text = ReadTableText(notes, *table, index); });
            fuzz::Check(text == (index < texts.size() ? texts[index] : std::u16string()), "another text");
        }
    }
    return 0;
}
