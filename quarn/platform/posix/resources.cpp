// Resource texts on POSIX: read from the module as it is loaded, so that a newer file in its place does not
// matter.
#include "quarn/platform/posix/errors.h"
#include "quarn/platform/posix/modules.h"
#include "quarn/platform/posix/resource_image.h"

#include <algorithm>
#include <string>

namespace Quarn::detail {

namespace {

// Calls visit(notes, alignment) with each segment of notes of a loaded module until it returns true.
template<typename Visit>
void VisitNotes(HMODULE module, Visit visit)
{
    struct Walk
    {
        ::ElfW(Dyn) const* dynamic;
        Visit& visit;
    } walk{LinkMap(module)->l_ld, visit};
    ::dl_iterate_phdr(
        [](::dl_phdr_info* info, std::size_t, void* context) {
            auto& wanted = *static_cast<Walk*>(context);
            std::span<::ElfW(Phdr) const> const segments(info->dlpi_phdr, info->dlpi_phnum);
            bool const isModule = std::any_of(segments.begin(), segments.end(), [&](auto const& segment) {
                return segment.p_type == PT_DYNAMIC &&
                       info->dlpi_addr + segment.p_vaddr == reinterpret_cast<std::uintptr_t>(wanted.dynamic);
            });
            if (!isModule) {
                return 0;
            }
            for (auto const& segment : segments) {
                if (segment.p_type == PT_NOTE) {
                    auto const* const begin =
                        reinterpret_cast<unsigned char const*>(info->dlpi_addr + segment.p_vaddr);
                    MemorySource notes({begin, segment.p_memsz});
                    if (wanted.visit(notes, segment.p_align)) {
                        break;
                    }
                }
            }
            return 1;
        },
        &walk);
}

// Empty where the module has no such text.
std::u16string FindText(HMODULE module, UINT id)
{
    std::u16string text;
    // Ids have 16 bits.
    auto const name = static_cast<std::uint16_t>((id & 0xFFFF) / 16 + 1);
    VisitNotes(module, [&](ByteSource& notes, std::uint64_t alignment) {
        auto const table = LocateResourceInNotes(notes, alignment, StringTableType, name);
        if (table) {
            text = ReadTableText(notes, *table, id % 16);
        }
        return table.has_value();
    });
    return text;
}

std::string ToText(std::u16string const& wide)
{
    int const length = static_cast<int>(wide.size());
    std::string text(wide.size() * 3, '\0');
    int const size = static_cast<int>(text.size());
    text.resize(static_cast<std::size_t>(
        ::WideCharToMultiByte(CP_ACP, 0, wide.data(), length, text.data(), size, nullptr, nullptr)));
    return text;
}

} // namespace

} // namespace Quarn::detail

using namespace Quarn::detail;

int LoadStringA(HINSTANCE module, UINT id, char* buffer, int size)
{
    if (buffer == nullptr || size <= 0) {
        return size == 0 ? -1 : 0;
    }
    return Guarded(0, [&] {
        *buffer = '\0';
        std::u16string const wide = FindText(module != nullptr ? module : ::GetModuleHandleA(nullptr), id);
        if (wide.empty()) {
            return Fail(ERROR_RESOURCE_NAME_NOT_FOUND);
        }
        std::string const text = ToText(wide);
        std::size_t length = std::min(text.size(), static_cast<std::size_t>(size) - 1);
        // No part of a character: a byte that continues one would come next.
        while (length < text.size() && length > 0 && (text[length] & 0xC0) == 0x80) {
            --length;
        }
        text.copy(buffer, length);
        buffer[length] = '\0';
        return static_cast<int>(length);
    });
}
