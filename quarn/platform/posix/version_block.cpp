#include "quarn/platform/posix/version_block.h"

#include "quarn/platform/win32_api.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

namespace Quarn::detail {

namespace {

using Wide = std::basic_string<WCHAR>;
using WideView = std::basic_string_view<WCHAR>;

// The root, a kind of information, a language, a text.
constexpr int MaxDepth = 4;
constexpr WCHAR Backslash = '\\';
// Length, length of the value, type.
constexpr std::size_t NodeHeader = 6;

constexpr std::size_t AlignUp(std::size_t offset)
{
    return (offset + 3) & ~std::size_t{3};
}

std::uint16_t Word(unsigned char const* block, std::size_t offset)
{
    return static_cast<std::uint16_t>(block[offset] | block[offset + 1] << 8);
}

// Offsets from the start of the block.
struct Node
{
    std::size_t key;
    std::size_t keyEnd;
    std::size_t end;
    std::size_t value;
    std::size_t valueEnd;
    std::size_t children;
    std::size_t next; // the sibling
    bool isText;
};

// The node at `at`, cut off at `limit`; nothing where there is none.
std::optional<Node> ReadNode(unsigned char const* block, std::size_t at, std::size_t limit)
{
    if (at + NodeHeader > limit) {
        return std::nullopt;
    }
    std::size_t const length = Word(block, at);
    std::size_t const valueLength = Word(block, at + 2);
    Node node;
    node.isText = Word(block, at + 4) != 0;
    node.end = std::min(at + length, limit);
    node.key = at + NodeHeader;
    node.keyEnd = node.key;
    for (;; node.keyEnd += 2) {
        if (node.keyEnd + 2 > node.end) {
            return std::nullopt;
        }
        if (Word(block, node.keyEnd) == 0) {
            break;
        }
    }
    std::size_t const value = AlignUp(node.keyEnd + 2);
    std::size_t const valueEnd = value + (node.isText ? 2 * valueLength : valueLength);
    node.value = std::min(value, node.end);
    node.valueEnd = std::min(valueEnd, node.end);
    node.children = AlignUp(valueEnd);
    node.next = AlignUp(at + length);
    return node;
}

// Where the text of a value stands in its converted form: three bytes at most for each two before it, and no
// two values overlap.
std::size_t ConvertedText(std::size_t rootEnd, std::size_t value)
{
    return AlignUp(rootEnd) + value / 2 * 3;
}

// NOLINTNEXTLINE(misc-no-recursion): the depth is bounded
void ConvertTexts(std::span<unsigned char> block, std::size_t rootEnd, Node const& node, int depth)
{
    std::size_t const units = (node.valueEnd - node.value) / 2;
    if (node.isText && units > 0) {
        Wide text;
        text.reserve(units);
        for (std::size_t i = 0; i < units; ++i) {
            text += static_cast<WCHAR>(Word(block.data(), node.value + 2 * i));
        }
        auto* const converted = reinterpret_cast<char*>(&block[ConvertedText(rootEnd, node.value)]);
        ::WideCharToMultiByte(CP_ACP, 0, text.data(), static_cast<int>(units), converted,
                              static_cast<int>(units * 3), nullptr, nullptr);
    }
    if (depth == MaxDepth) {
        return;
    }
    for (std::size_t at = node.children; at < node.end;) {
        std::optional<Node> const child = ReadNode(block.data(), at, node.end);
        if (!child) {
            break;
        }
        ConvertTexts(block, rootEnd, *child, depth + 1);
        at = child->next;
    }
}

constexpr WCHAR FoldAscii(WCHAR unit)
{
    return unit >= 'A' && unit <= 'Z' ? static_cast<WCHAR>(unit + ('a' - 'A')) : unit;
}

bool HasKey(unsigned char const* block, Node const& node, WideView key)
{
    if (node.keyEnd - node.key != 2 * key.size()) {
        return false;
    }
    std::size_t at = node.key;
    return std::all_of(key.begin(), key.end(), [&](WCHAR unit) {
        bool const isSame = FoldAscii(static_cast<WCHAR>(Word(block, at))) == FoldAscii(unit);
        at += 2;
        return isSame;
    });
}

std::optional<Node> FindChild(unsigned char const* block, Node const& node, WideView key)
{
    for (std::size_t at = node.children; at < node.end;) {
        std::optional<Node> child = ReadNode(block, at, node.end);
        if (!child || HasKey(block, *child, key)) {
            return child;
        }
        at = child->next;
    }
    return std::nullopt;
}

Wide ToUtf16(char const* text)
{
    int const size = ::MultiByteToWideChar(CP_ACP, 0, text, -1, nullptr, 0);
    Wide wide(static_cast<std::size_t>(size), WCHAR{});
    ::MultiByteToWideChar(CP_ACP, 0, text, -1, wide.data(), size);
    wide.resize(wide.empty() ? 0 : wide.size() - 1);
    return wide;
}

} // namespace

std::uint32_t VersionBlockSize(std::uint32_t resourceSize)
{
    return static_cast<std::uint32_t>(ConvertedText(resourceSize, resourceSize)) + 4;
}

void CompleteVersionBlock(std::span<unsigned char> block, std::uint32_t resourceSize)
{
    std::size_t const length =
        resourceSize < NodeHeader ? 0 : std::min<std::size_t>(Word(block.data(), 0), resourceSize);
    std::fill(block.begin() + static_cast<std::ptrdiff_t>(length), block.end(),
              static_cast<unsigned char>(0));
    // From here on the root's length can be relied on.
    block[0] = static_cast<unsigned char>(length);
    block[1] = static_cast<unsigned char>(length >> 8);
    if (std::optional<Node> const root = ReadNode(block.data(), 0, length)) {
        ConvertTexts(block, length, *root, 1);
    }
}

bool QueryVersionBlock(unsigned char const* block, char const* path, void const*& value, std::uint32_t& size)
{
    size = 0;
    std::size_t const rootEnd = Word(block, 0);
    Wide const names = ToUtf16(path);
    WideView left = names;
    std::optional<Node> node = ReadNode(block, 0, rootEnd);
    for (int depth = 1; node; ++depth) {
        left.remove_prefix(std::min(left.find_first_not_of(Backslash), left.size()));
        if (left.empty()) {
            break;
        }
        WideView const key = left.substr(0, left.find(Backslash));
        left.remove_prefix(key.size());
        node = depth < MaxDepth ? FindChild(block, *node, key) : std::nullopt;
    }
    if (!node) {
        return false;
    }
    if (node->isText) {
        unsigned char const* const text = block + ConvertedText(rootEnd, node->value);
        value = text;
        if (node->valueEnd - node->value >= 2) {
            size = static_cast<std::uint32_t>(std::strlen(reinterpret_cast<char const*>(text))) + 1;
        }
    } else {
        value = block + node->value;
        size = static_cast<std::uint32_t>(node->valueEnd - node->value);
    }
    return true;
}

} // namespace Quarn::detail
