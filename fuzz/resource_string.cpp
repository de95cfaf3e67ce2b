// The texts of string tables in the notes of modules, beside a plain reading of the table. Whatever the notes
// are, a text lies whole in its table, and of each id there is one. Its conversion to bytes, and that of any
// bytes to a text, comes back unless something had to be replaced.
//
// Input: one byte for the alignment, then the notes.
#include "quarn/platform/posix/resource_image.h"
#include "quarn/platform/win32_api.h"

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

// There and back; in both directions the length that is asked for is that which is written.
std::string Narrow(std::u16string const& text, bool& replaced)
{
    BOOL usedDefault = FALSE;
    auto const size = static_cast<int>(text.size());
    int const length = ::WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, &usedDefault);
    std::string bytes(static_cast<std::size_t>(length), '\0');
    fuzz::Check(::WideCharToMultiByte(CP_ACP, 0, text.data(), size, bytes.data(), length, nullptr, nullptr) ==
                    length,
                "another length");
    replaced = usedDefault != FALSE;
    return bytes;
}

std::u16string Widen(std::string const& bytes)
{
    auto const size = static_cast<int>(bytes.size());
    int const length = ::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, nullptr, 0);
    std::u16string text(static_cast<std::size_t>(length), u'\0');
    fuzz::Check(::MultiByteToWideChar(CP_ACP, 0, bytes.data(), size, text.data(), length) == length,
                "another length");
    return text;
}

void CheckConversions(std::u16string const& text)
{
    if (!text.empty()) {
        bool replaced = false;
        std::string const bytes = Narrow(text, replaced);
        fuzz::Check((Widen(bytes) == text) != replaced, "another text comes back");
    }
}

void CheckConversions(std::string const& bytes)
{
    if (!bytes.empty()) {
        bool const isText = ::MultiByteToWideChar(CP_ACP, MB_ERR_INVALID_CHARS, bytes.data(),
                                                  static_cast<int>(bytes.size()), nullptr, 0) != 0;
        bool replaced = true;
        std::string const back = Narrow(Widen(bytes), replaced);
        fuzz::Check(!replaced && (back == bytes) == isText, "other bytes come back");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    if (size == 0) {
        return 0;
    }
    std::uint8_t const* const bytes = data + 1;
    CheckConversions(std::string(reinterpret_cast<char const*>(bytes), size - 1));
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
            CheckConversions(text);
            fuzz::Check(text == (index < texts.size() ? texts[index] : std::u16string()), "another text");
        }
    }
    return 0;
}
