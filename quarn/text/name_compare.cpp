#include "quarn/text/name_compare.h"

#include "quarn/text/ascii.h"

#include <algorithm>
#include <chrono>
#include <cstddef>

#include <locale.h>
#include <string.h>
#include <wchar.h>
#include <wctype.h>

namespace Quarn::detail {

namespace {

using Word = std::uint64_t;

constexpr Word Ones = 0x0101010101010101;
constexpr Word HighBits = 0x80 * Ones;

template<typename T>
Word Load(char const* bytes)
{
    T value;
    ::memcpy(&value, bytes, sizeof value);
    return value;
}

// The first eight bytes of a name, of which there is at least one; the missing ones are 0. Short names are
// put together from pieces that may overlap.
Word LoadWord(char const* bytes, std::size_t count)
{
    if (count >= 8) {
        return Load<std::uint64_t>(bytes);
    }
    if (count >= 4) {
        return Load<std::uint32_t>(bytes) | Load<std::uint32_t>(bytes + count - 4) << (8 * (count - 4));
    }
    std::size_t const middle = count / 2;
    return Load<std::uint8_t>(bytes) | Load<std::uint8_t>(bytes + middle) << (8 * middle) |
           Load<std::uint8_t>(bytes + count - 1) << (8 * (count - 1));
}

// LowerAscii on each byte of a word without high bits: an upper-case letter gets its bit 0x20.
Word LowerWord(Word word)
{
    Word const atLeastA = word + (0x80 - 'A') * Ones;
    Word const aboveZ = word + (0x7f - 'Z') * Ones;
    return word | (((atLeastA ^ aboveZ) & HighBits) >> 2);
}

enum class Comparison
{
    Equal,
    Different,
    Undecided // a character outside ASCII decides
};

Comparison CompareAscii(std::string_view a, std::string_view b)
{
    for (std::size_t i = 0, size = std::min(a.size(), b.size()); i < size; i += sizeof(Word)) {
        Word const wordA = LoadWord(a.data() + i, a.size() - i);
        Word const wordB = LoadWord(b.data() + i, b.size() - i);
        if (((wordA | wordB) & HighBits) != 0) {
            return Comparison::Undecided;
        }
        if (LowerWord(wordA) != LowerWord(wordB)) {
            return Comparison::Different;
        }
    }
    return a.size() == b.size() ? Comparison::Equal : Comparison::Different;
}

// Takes a name apart into its folded characters.
class FoldedReader
{
public:
    explicit FoldedReader(std::string_view name) : m_rest(name) {}

    bool AtEnd() const { return m_rest.empty(); }

    // The next character, folded; a byte that the locale does not decode is marked, so that it equals no
    // character.
    Word Next()
    {
        if ((m_rest.front() & 0x80) == 0) {
            Word const c = static_cast<unsigned char>(LowerAscii(m_rest.front()));
            m_rest.remove_prefix(1);
            return c;
        }
        wchar_t wide = 0;
        std::mbstate_t state{};
        std::size_t const length = ::mbrtowc(&wide, m_rest.data(), m_rest.size(), &state);
        if (length == 0 || length > m_rest.size()) {
            constexpr Word undecoded = Word{1} << 32;
            Word const byte = static_cast<unsigned char>(m_rest.front());
            m_rest.remove_prefix(1);
            return undecoded | byte;
        }
        m_rest.remove_prefix(length);
        Word const lower = static_cast<Word>(::towlower(static_cast<wint_t>(wide)));
        return lower >= 0x80 ? lower : static_cast<Word>(wide);
    }

private:
    std::string_view m_rest;
};

bool EqualFolded(std::string_view a, std::string_view b)
{
    FoldedReader readerA(a);
    FoldedReader readerB(b);
    while (!readerA.AtEnd() && !readerB.AtEnd()) {
        if (readerA.Next() != readerB.Next()) {
            return false;
        }
    }
    return readerA.AtEnd() && readerB.AtEnd();
}

Word Mix(Word hash, Word word)
{
    hash = (hash ^ word) * 0x9e3779b97f4a7c15;
    return hash ^ (hash >> 32);
}

// Differs from process to process, so that no file can be made whose names all collide.
Word HashSeed()
{
    static Word const seed =
        static_cast<Word>(std::chrono::high_resolution_clock::now().time_since_epoch().count());
    return Mix(seed, static_cast<Word>(reinterpret_cast<std::uintptr_t>(&seed)));
}

} // namespace

bool EqualNames(std::string_view a, std::string_view b) noexcept
{
    if (a == b) {
        return true;
    }
    Comparison const comparison = CompareAscii(a, b);
    return comparison == Comparison::Undecided ? EqualFolded(a, b) : comparison == Comparison::Equal;
}

NameHash HashName(std::string_view name) noexcept
{
    Word hash = HashSeed();
    for (std::size_t i = 0; i < name.size(); i += sizeof(Word)) {
        Word const word = LoadWord(name.data() + i, name.size() - i);
        if ((word & HighBits) != 0) {
            hash = HashSeed();
            for (FoldedReader reader(name); !reader.AtEnd();) {
                hash = Mix(hash, reader.Next());
            }
            return {Mix(hash, 0), false};
        }
        hash = Mix(hash, LowerWord(word));
    }
    return {Mix(hash, name.size()), true};
}

char const* NameLocale() noexcept
{
    char const* const name = ::setlocale(LC_CTYPE, nullptr);
    return name != nullptr ? name : "";
}

} // namespace Quarn::detail
