#include "quarn/platform/posix/resource_image.h"

#include <algorithm>
#include <string_view>

namespace Quarn::detail {

namespace {

constexpr std::string_view NoteName{"QuarnUtil\0", 10};

constexpr std::uint64_t AlignUp(std::uint64_t value, std::uint64_t alignment)
{
    return (value + alignment - 1) / alignment * alignment;
}

bool Holds(ByteSource const& image, ByteRange range)
{
    return range.offset <= image.Size() && range.size <= image.Size() - range.offset;
}

// Keeps the best of the languages that are offered, the first of equals.
class LanguageChoice
{
public:
    // Whether this one is better than those before.
    bool Offer(std::uint32_t language)
    {
        int const rank = language == 0 ? 0 : language == 0x0409 ? 1 : language == 0x0009 ? 2 : 3;
        return rank < m_best ? (m_best = rank, true) : false;
    }

private:
    int m_best = 4;
};

// An ELF module.
class Elf
{
public:
    Elf(ByteSource& image, std::uint16_t type, std::uint16_t name)
        : m_image(image),
          m_type(NumberField(type)),
          m_name(NumberField(name))
    {}

    std::optional<ByteRange> Find()
    {
        constexpr std::uint32_t NoteSegment = 4;
        constexpr std::uint64_t ProgramHeaderSize = 56;
        auto const classAndOrder = m_image.Get<std::uint16_t>(4);
        auto const table = m_image.Get<std::uint64_t>(0x20);
        auto const entrySize = m_image.Get<std::uint16_t>(0x36);
        auto const count = m_image.Get<std::uint16_t>(0x38);
        if (classAndOrder != 0x0102 || !table || *table > m_image.Size() || !entrySize ||
            *entrySize < ProgramHeaderSize || !count) {
            return std::nullopt;
        }
        std::optional<ByteRange> found;
        for (std::uint64_t i = 0; i < *count && !found && Step(); ++i) {
            std::uint64_t const header = *table + i * *entrySize;
            auto const segment = m_image.Get<std::uint32_t>(header);
            auto const offset = m_image.Get<std::uint64_t>(header + 0x08);
            auto const size = m_image.Get<std::uint64_t>(header + 0x20);
            auto const alignment = m_image.Get<std::uint64_t>(header + 0x30);
            if (!segment || !offset || !size || !alignment) {
                break;
            }
            if (*segment == NoteSegment) {
                found = FindInNotes({*offset, *size}, *alignment);
            }
        }
        return found;
    }

    std::optional<ByteRange> FindInNotes(ByteRange notes, std::uint64_t alignment)
    {
        constexpr std::uint64_t HeaderSize = 12;
        constexpr std::uint32_t ResourceNote = 1;
        if (!Holds(m_image, notes)) {
            return std::nullopt;
        }
        std::uint64_t const padding = alignment == 8 ? 8 : 4;
        std::uint64_t const end = notes.offset + notes.size;
        std::optional<ByteRange> found;
        for (std::uint64_t at = notes.offset; !found && end - at >= HeaderSize && Step();) {
            auto const nameSize = m_image.Get<std::uint32_t>(at);
            auto const dataSize = m_image.Get<std::uint32_t>(at + 4);
            auto const kind = m_image.Get<std::uint32_t>(at + 8);
            if (!nameSize || !dataSize || !kind) {
                break;
            }
            std::uint64_t const dataOffset = AlignUp(HeaderSize + *nameSize, padding);
            if (dataOffset > end - at || *dataSize > end - at - dataOffset) {
                break;
            }
            char noteName[NoteName.size()];
            if (*kind == ResourceNote && *nameSize == NoteName.size() &&
                m_image.Read(at + HeaderSize, noteName, sizeof noteName) &&
                std::string_view(noteName, sizeof noteName) == NoteName) {
                found = FindInResourceFile({at + dataOffset, *dataSize});
            }
            at = std::min(end, at + AlignUp(dataOffset + *dataSize, padding));
        }
        return found;
    }

private:
    // A number where a resource's type or name may be a text, too.
    static constexpr std::uint32_t NumberField(std::uint16_t number) { return 0xFFFFU | number << 16U; }

    // Far more steps than a real module takes end the walk through a damaged one.
    bool Step() { return m_stepsLeft-- > 0; }

    // A compiled resource file: entries, each of its sizes, type, name and language, then its bytes.
    std::optional<ByteRange> FindInResourceFile(ByteRange file)
    {
        constexpr std::uint64_t MinHeader = 32;
        std::uint64_t const end = file.offset + file.size;
        std::optional<ByteRange> found;
        LanguageChoice choice;
        for (std::uint64_t at = file.offset; end - at >= MinHeader && Step();) {
            auto const dataSize = m_image.Get<std::uint32_t>(at);
            auto const headerSize = m_image.Get<std::uint32_t>(at + 4);
            auto const type = m_image.Get<std::uint32_t>(at + 8);
            auto const name = m_image.Get<std::uint32_t>(at + 12);
            auto const language = m_image.Get<std::uint16_t>(at + 22);
            if (!dataSize || !headerSize || !language || *headerSize < MinHeader || *headerSize > end - at ||
                *dataSize > end - at - *headerSize) {
                break;
            }
            if (type == m_type && name == m_name && choice.Offer(*language)) {
                found = ByteRange{at + *headerSize, *dataSize};
            }
            at = std::min(end, at + AlignUp(std::uint64_t{*headerSize} + *dataSize, 4));
        }
        return found;
    }

    ByteSource& m_image;
    std::uint32_t m_type;
    std::uint32_t m_name;
    int m_stepsLeft = 50'000;
};

// The resource section of a Windows file.
class PortableExecutable
{
public:
    explicit PortableExecutable(ByteSource& image) : m_image(image) {}

    std::optional<ByteRange> Find(std::uint16_t type, std::uint16_t name)
    {
        if (!ReadHeaders()) {
            return std::nullopt;
        }
        auto const names = FindEntry(m_resources, type);
        auto const languages = names ? FindEntry(*names, name) : std::nullopt;
        auto const entry = languages ? FindLanguage(*languages) : std::nullopt;
        return entry ? ReadEntry(*entry) : std::nullopt;
    }

private:
    // Of the offset of a directory entry: it leads to a directory.
    static constexpr std::uint32_t DirectoryFlag = 0x8000'0000;

    bool ReadHeaders()
    {
        auto const start = m_image.Get<std::uint32_t>(0x3C);
        if (!start || m_image.Get<std::uint32_t>(*start) != 0x4550U) {
            return false;
        }
        std::uint64_t const header = *start + 4;
        auto const sections = m_image.Get<std::uint16_t>(header + 2);
        auto const optionalSize = m_image.Get<std::uint16_t>(header + 16);
        std::uint64_t const optional = header + 20;
        auto const magic = m_image.Get<std::uint16_t>(optional);
        // NOLINTNEXTLINE(misc-redundant-expression): two different numbers
        if (!sections || !optionalSize || (magic != 0x10B && magic != 0x20B)) {
            return false;
        }
        std::uint64_t const directories = optional + (magic == 0x20B ? 112 : 96);
        auto const directoryCount = m_image.Get<std::uint32_t>(directories - 4);
        auto const address = m_image.Get<std::uint32_t>(directories + 16);
        if (!directoryCount || *directoryCount <= 2 || !address || *address == 0) {
            return false;
        }
        m_sections = optional + *optionalSize;
        m_sectionCount = *sections;
        auto const offset = FileOffset(*address);
        if (!offset) {
            return false;
        }
        m_resources = *offset;
        return true;
    }

    std::optional<std::uint64_t> FileOffset(std::uint32_t address)
    {
        for (std::uint64_t i = 0; i < m_sectionCount; ++i) {
            std::uint64_t const header = m_sections + i * 40;
            auto const start = m_image.Get<std::uint32_t>(header + 12);
            auto const size = m_image.Get<std::uint32_t>(header + 16);
            auto const offset = m_image.Get<std::uint32_t>(header + 20);
            if (!start || !size || !offset) {
                break;
            }
            if (address >= *start && address - *start < *size) {
                return std::uint64_t{*offset} + (address - *start);
            }
        }
        return std::nullopt;
    }

    // Where a directory's entries begin, and how many there are, those with a name before those with a
    // number.
    struct Entries
    {
        std::uint64_t offset;
        std::uint64_t named;
        std::uint64_t count;
    };

    std::optional<Entries> ReadDirectory(std::uint64_t directory)
    {
        auto const named = m_image.Get<std::uint16_t>(directory + 12);
        auto const numbered = m_image.Get<std::uint16_t>(directory + 14);
        if (!named || !numbered) {
            return std::nullopt;
        }
        return Entries{directory + 16, *named, std::uint64_t{*named} + *numbered};
    }

    // The directory that a directory's entry with this number leads to.
    std::optional<std::uint64_t> FindEntry(std::uint64_t directory, std::uint16_t number)
    {
        auto const entries = ReadDirectory(directory);
        for (std::uint64_t i = entries ? entries->named : 0; entries && i < entries->count; ++i) {
            auto const entry = m_image.Get<std::uint32_t>(entries->offset + i * 8);
            auto const target = m_image.Get<std::uint32_t>(entries->offset + i * 8 + 4);
            if (!entry || !target) {
                break;
            }
            if (*entry == number) {
                return (*target & DirectoryFlag) != 0
                           ? std::optional(m_resources + (*target & ~DirectoryFlag))
                           : std::nullopt;
            }
        }
        return std::nullopt;
    }

    // The data entry of the best language in a directory.
    std::optional<std::uint64_t> FindLanguage(std::uint64_t directory)
    {
        auto const entries = ReadDirectory(directory);
        std::optional<std::uint64_t> found;
        LanguageChoice choice;
        for (std::uint64_t i = entries ? entries->named : 0; entries && i < entries->count; ++i) {
            auto const language = m_image.Get<std::uint32_t>(entries->offset + i * 8);
            auto const target = m_image.Get<std::uint32_t>(entries->offset + i * 8 + 4);
            if (!language || !target) {
                break;
            }
            if ((*target & DirectoryFlag) == 0 && choice.Offer(*language)) {
                found = m_resources + *target;
            }
        }
        return found;
    }

    std::optional<ByteRange> ReadEntry(std::uint64_t entry)
    {
        auto const address = m_image.Get<std::uint32_t>(entry);
        auto const size = m_image.Get<std::uint32_t>(entry + 4);
        auto const offset = address ? FileOffset(*address) : std::nullopt;
        if (!offset || !size || !Holds(m_image, {*offset, *size})) {
            return std::nullopt;
        }
        return ByteRange{*offset, *size};
    }

    ByteSource& m_image;
    std::uint64_t m_sections = 0;
    std::uint64_t m_sectionCount = 0;
    std::uint64_t m_resources = 0;
};

} // namespace

std::u16string ReadTableText(ByteSource& image, ByteRange table, unsigned index)
{
    std::u16string text;
    std::uint64_t at = table.offset;
    std::uint64_t const end = table.offset + table.size;
    for (unsigned i = 0;; ++i) {
        auto const units = image.Get<std::uint16_t>(at);
        if (!units || at + 2 + 2 * std::uint64_t{*units} > end) {
            return text;
        }
        at += 2;
        if (i == index) {
            text.reserve(*units);
            for (std::uint64_t unit = 0; unit < *units; ++unit) {
                text += static_cast<char16_t>(image.Get<std::uint16_t>(at + 2 * unit).value_or(0));
            }
            return text;
        }
        at += 2 * std::uint64_t{*units};
    }
}

std::optional<ByteRange> LocateResourceInNotes(ByteSource& notes, std::uint64_t alignment, std::uint16_t type,
                                               std::uint16_t name)
{
    return Elf(notes, type, name).FindInNotes({0, notes.Size()}, alignment);
}

std::optional<ByteRange> LocateResource(ByteSource& image, std::uint16_t type, std::uint16_t name)
{
    auto const magic = image.Get<std::uint32_t>(0);
    if (magic == 0x464C457FU) {
        return Elf(image, type, name).Find();
    }
    if (magic && (*magic & 0xFFFF) == 0x5A4D) {
        return PortableExecutable(image).Find(type, name);
    }
    return std::nullopt;
}

} // namespace Quarn::detail
