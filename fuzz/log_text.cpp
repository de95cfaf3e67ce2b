// Texts for the log, which reads them as formats without arguments. Whatever the text is, what comes out is
// bounded, stays the same without conversions, and is the text again once its percent signs are doubled.
#include "quarn/text/format_without_arguments.h"

#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

namespace {

// One conversion at a time, with its padding.
constexpr fuzz::MemoryBound Bound = {"log_text", 12 * 1024, 0};

// From a block of exactly the text's size.
std::string Rendered(std::string const& text)
{
    std::unique_ptr<char[]> const exact(new char[text.size() + 1]);
    std::memcpy(exact.get(), text.c_str(), text.size() + 1);
    std::size_t length = 0;
    fuzz::Watch(Bound, text.size(), [&] {
        Quarn::detail::FormatWithoutArguments(exact.get(), [&](char const* /*piece*/, std::size_t size) {
            length += size;
            return true;
        });
    });
    std::string rendered;
    bool const isWhole =
        Quarn::detail::FormatWithoutArguments(exact.get(), [&](char const* piece, std::size_t size) {
            rendered.append(piece, size);
            return rendered.size() <= length;
        });
    if (!isWhole || rendered.size() != length) {
        std::abort();
    }
    return rendered;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr std::size_t longest = 4095 + 16; // of one conversion
    std::string text(reinterpret_cast<char const*>(data), size);
    text.resize(std::strlen(text.c_str()));
    std::string doubled;
    std::size_t percents = 0;
    for (char const c : text) {
        doubled.append(c == '%' ? 2 : 1, c);
        percents += c == '%' ? 1 : 0;
    }
    std::string const rendered = Rendered(text);
    if (rendered.size() > text.size() + percents * longest || Rendered(doubled) != text ||
        (percents == 0 && rendered != text)) {
        std::abort();
    }
    return 0;
}
