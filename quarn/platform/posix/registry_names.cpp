#include "quarn/platform/posix/registry_names.h"

#include "quarn/platform/posix/registry_failure.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <iterator>

namespace Quarn::detail {

namespace {

// Every `step`-th unit from `first` to `last` is a lower-case letter whose upper case is `distance` away.
struct LowerRange
{
    char16_t first;
    char16_t last;
    int step;
    int distance;
};

// The simple case mapping of Unicode for the letters of living scripts. What has its upper case in ASCII is
// left out: names in ASCII equal no others.
constexpr LowerRange LowerRanges[] = {
    {0x00E0, 0x00F6, 1, -32},  {0x00F8, 0x00FE, 1, -32},  {0x00FF, 0x00FF, 1, 121},
    {0x0101, 0x012F, 2, -1},   {0x0133, 0x0137, 2, -1},   {0x013A, 0x0148, 2, -1},
    {0x014B, 0x0177, 2, -1},   {0x017A, 0x017E, 2, -1},   {0x01A1, 0x01A5, 2, -1},
    {0x01B0, 0x01B0, 1, -1},   {0x01CE, 0x01DC, 2, -1},   {0x01DD, 0x01DD, 1, -79},
    {0x01DF, 0x01EF, 2, -1},   {0x01F9, 0x021F, 2, -1},   {0x0223, 0x0233, 2, -1},
    {0x0253, 0x0253, 1, -210}, {0x0254, 0x0254, 1, -206}, {0x0256, 0x0257, 1, -205},
    {0x0259, 0x0259, 1, -202}, {0x025B, 0x025B, 1, -203}, {0x03AC, 0x03AC, 1, -38},
    {0x03AD, 0x03AF, 1, -37},  {0x03B1, 0x03C1, 1, -32},  {0x03C2, 0x03C2, 1, -31},
    {0x03C3, 0x03CB, 1, -32},  {0x03CC, 0x03CC, 1, -64},  {0x03CD, 0x03CE, 1, -63},
    {0x03D9, 0x03EF, 2, -1},   {0x0430, 0x044F, 1, -32},  {0x0450, 0x045F, 1, -80},
    {0x0461, 0x0481, 2, -1},   {0x048B, 0x04BF, 2, -1},   {0x04C2, 0x04CE, 2, -1},
    {0x04CF, 0x04CF, 1, -15},  {0x04D1, 0x052F, 2, -1},   {0x0561, 0x0586, 1, -48},
    {0x1E01, 0x1E95, 2, -1},   {0x1EA1, 0x1EFF, 2, -1},   {0x1F00, 0x1F07, 1, 8},
    {0x1F10, 0x1F15, 1, 8},    {0x1F20, 0x1F27, 1, 8},    {0x1F30, 0x1F37, 1, 8},
    {0x1F40, 0x1F45, 1, 8},    {0x1F51, 0x1F57, 2, 8},    {0x1F60, 0x1F67, 1, 8},
    {0x1F70, 0x1F71, 1, 74},   {0x1F72, 0x1F75, 1, 86},   {0x1F76, 0x1F77, 1, 100},
    {0x1F78, 0x1F79, 1, 128},  {0x1F7A, 0x1F7B, 1, 112},  {0x1F7C, 0x1F7D, 1, 126},
    {0x2170, 0x217F, 1, -16},  {0x24D0, 0x24E9, 1, -26},  {0x2D00, 0x2D25, 1, -7264},
    {0xFF41, 0xFF5A, 1, -32},
};

char UpperAscii(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - ('a' - 'A')) : c;
}

char16_t Upper(char16_t unit)
{
    auto const* const range = std::lower_bound(std::begin(LowerRanges), std::end(LowerRanges), unit,
                                               [](LowerRange const& a, char16_t b) { return a.last < b; });
    bool const isLower =
        range != std::end(LowerRanges) && unit >= range->first && (unit - range->first) % range->step == 0;
    return isLower ? static_cast<char16_t>(unit + range->distance) : unit;
}

void AppendUnit(std::string& folded, unsigned unit)
{
    folded += static_cast<char>(unit >> 8);
    folded += static_cast<char>(unit & 0xFF);
}

// Takes the first character off the text. A byte that begins none gives a lone surrogate, which no character
// has.
char32_t TakeCharacter(std::string_view& text)
{
    auto const byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    unsigned const first = byte(0);
    std::size_t const length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    char32_t character = first & (0x7FU >> length);
    bool valid = first >= 0xC2 && first < 0xF5 && text.size() >= length;
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr char32_t smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    valid = valid && character >= smallest[length] && character <= 0x10FFFF &&
            (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(valid ? length : 1);
    return valid ? character : 0xDC00 + first;
}

} // namespace

std::string FoldName(std::string_view name)
{
    std::string folded;
    folded.reserve(name.size() * 2);
    while (!name.empty()) {
        if ((name.front() & 0x80) == 0) {
            AppendUnit(folded, static_cast<unsigned char>(UpperAscii(name.front())));
            name.remove_prefix(1);
            continue;
        }
        char32_t const character = TakeCharacter(name);
        if (character >= 0x10000) {
            AppendUnit(folded, 0xD800 + ((character - 0x10000) >> 10));
            AppendUnit(folded, 0xDC00 + ((character - 0x10000) & 0x3FF));
        } else {
            AppendUnit(folded, Upper(static_cast<char16_t>(character)));
        }
    }
    return folded;
}

std::vector<std::string_view> SplitKeyPath(char const* path)
{
    std::vector<std::string_view> names;
    std::string_view rest = path != nullptr ? path : "";
    if (rest.starts_with('\\')) {
        throw RegistryFailure{ERROR_BAD_PATHNAME};
    }
    while (!rest.empty()) {
        std::string_view const name = rest.substr(0, rest.find('\\'));
        names.push_back(name);
        rest.remove_prefix(name.size());
        rest.remove_prefix(std::min(rest.find_first_not_of('\\'), rest.size()));
    }
    return names;
}

} // namespace Quarn::detail
