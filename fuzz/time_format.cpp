// Formats of times. The first eight bytes are the time's words, the rest is the format: whatever the format
// is, the text ends within its bound; whether it is accepted is compared with a plain reading of the rule.
#include "quarn/time/time.h"

#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// The text of 255 characters at most, and the format up to its first zero byte; the runtime reads the file of
// the time zone.
constexpr fuzz::MemoryBound Bound = {"time_format", 6 * 1024, 2};

bool IsAccepted(std::string const& format)
{
    for (std::size_t i = 0; i < format.size(); ++i) {
        if (format[i] == '%') {
            bool const hasLetter = i + 1 < format.size() && format[i + 1] != '\0' &&
                                   std::strchr("dHmMyYpSbBaA%cIjUwWxXzZ", format[i + 1]) != nullptr;
            if (!hasLetter) {
                return false;
            }
        }
    }
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    constexpr std::size_t longest = 255;
    Quarn::TIME words{};
    if (size < sizeof words) {
        return 0;
    }
    std::memcpy(&words, data, sizeof words);
    Quarn::string const format(reinterpret_cast<char const*>(data) + sizeof words, size - sizeof words);
    bool isAccepted = false;
    Quarn::string text;
    fuzz::Watch(Bound, size, [&] {
        isAccepted = Quarn::Time::VerifyFormatString(format);
        text = Quarn::Time(words).Format(format);
    });
    if (isAccepted != IsAccepted(format)) {
        std::abort();
    }
    if (text.size() > longest || text.Contains('\0')) {
        std::abort();
    }
    return 0;
}
