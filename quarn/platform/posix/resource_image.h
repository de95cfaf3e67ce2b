// (private) Finds resources in the image of a module, without loading it: in files of Windows (PE32, PE32+;
// Microsoft PE and COFF specification, ".rsrc") and in 64-bit ELF modules, which carry a compiled resource
// file (.res) in a note named "QuarnUtil". The images may be damaged on purpose: every number is checked, and
// the work is bounded whatever they claim.
#pragma once

#include "quarn/platform/posix/byte_source.h"

#include <cstdint>
#include <optional>
#include <string>

namespace Quarn::detail {

struct ByteRange
{
    std::uint64_t offset;
    std::uint64_t size;
};

constexpr std::uint16_t StringTableType = 6;
constexpr std::uint16_t VersionType = 16;
constexpr std::uint16_t VersionName = 1;

// Where the resource of this type and name lies in the image; nothing where it has none, or is no image.
// Among several languages: neutral, US English, neutral English, else the first.
std::optional<ByteRange> LocateResource(ByteSource& image, std::uint16_t type, std::uint16_t name);

// The same in the notes of an ELF module, the bytes of a PT_NOTE segment of this alignment.
std::optional<ByteRange> LocateResourceInNotes(ByteSource& notes, std::uint64_t alignment, std::uint16_t type,
                                               std::uint16_t name);

// The text at `index`, below 16, of a string table: sixteen texts with the same id / 16, each a length in
// UTF-16 units and the units. Empty where the table has no such text whole.
std::u16string ReadTableText(ByteSource& image, ByteRange table, unsigned index);

} // namespace Quarn::detail
