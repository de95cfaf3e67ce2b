// The reader of settings files. What it reads must be written, read again and written alike.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/settings_reader.h"
#include "quarn/properties/win32/settings_writer.h"
#include "quarn/properties/win32/xml_library.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace {

using fuzz::Check;

// The XML library's parser with its buffers, and the system's converters with their tables. The parser keeps
// what it met of every element name, and of every open element, which may take four bytes.
constexpr fuzz::MemoryBound Bound = {"settings_file", 640 * 1024, 224};

std::string Resave(std::string const& document)
{
    using Quarn::detail::ReadResult;
    Quarn::PropertyCollection tree("Fuzz", "Quarn_Properties");
    ReadResult const result = Quarn::detail::ReadSettings(document, tree);
    Check(result == ReadResult::Whole, "what was written is not read whole");
    std::string written;
    Check(Quarn::detail::WriteSettings(tree, written), "what was read is not written again");
    return written;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    using Quarn::detail::ReadResult;
    static Quarn::detail::XmlLibraryUse const library;
    Check(library.Started(), "the XML library does not start");

    std::string_view const document(reinterpret_cast<char const*>(data), size);
    Quarn::PropertyCollection tree("Fuzz", "Quarn_Properties");
    ReadResult result = ReadResult::Refused;
    fuzz::Watch(Bound, size, [&] { result = Quarn::detail::ReadSettings(document, tree); });
    std::string first;
    if (result == ReadResult::Refused || !Quarn::detail::WriteSettings(tree, first)) {
        return 0;
    }

    // A key of empty name is merged into its parent once; from then on every save gives the same bytes.
    std::string const second = Resave(first);
    Check(Resave(second) == second, "a save, a load and a save give other bytes");
    return 0;
}
