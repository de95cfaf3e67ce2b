// Formats of times. The first eight bytes are the time's words, the rest is the format: whatever the format
// is, the text ends within its bound; whether it is accepted is compared with a plain reading of the rule;
// and the text of a format is that of its parts, which may be made by other means.
#include "quarn/time/time.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

namespace {

// The text of 255 characters at most, and the format up to its first zero byte; the runtime reads the file of
// the time zone, a few KiB.
constexpr fuzz::MemoryBound Bound = {"time_format", 16 * 1024, 2};

constexpr std::size_t Longest = 255;

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

// At the first and the last place that divides the format into two that are accepted.
void CheckParts(Quarn::Time const& time, std::string const& format, std::string const& text)
{
    auto const divides = [&](std::size_t at) {
        return IsAccepted(format.substr(0, at)) && IsAccepted(format.substr(at));
    };
    for (bool const isFirst : {true, false}) {
        std::size_t at = isFirst ? 1 : format.size() - 1;
        while (at > 0 && at < format.size() && !divides(at)) {
            at += isFirst ? 1 : -1;
        }
        if (at > 0 && at < format.size()) {
            Quarn::string const first = time.Format(format.substr(0, at));
            Quarn::string const second = time.Format(format.substr(at));
            // An empty part is one that did not fit, or one of nothing but empty fields.
            if (!first.empty() && !second.empty()) {
                bool const fits = first.size() + second.size() <= Longest;
                fuzz::Check(text == (fits ? first + second : ""), "a format is not its parts");
            }
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
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
    if (text.size() > Longest || text.Contains('\0')) {
        std::abort();
    }
    std::string const upToZero = format.c_str();
    if (isAccepted && upToZero.size() > 1 && upToZero.size() < 300) {
        CheckParts(Quarn::Time(words), upToZero, text);
    }
    return 0;
}
