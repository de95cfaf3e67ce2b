// (private) The version block (VS_VERSIONINFO) as the seam hands it to its callers: the resource as it stands
// in the module, a tree of nodes whose texts are UTF-16, and behind it its texts converted to the process
// code page. The resource may be damaged on purpose: no node reaches out of its parent.
#pragma once

#include <cstdint>
#include <span>

namespace Quarn::detail {

// A node's length is a 16-bit number; what a resource has beyond cannot be reached.
constexpr std::uint32_t MaxVersionResource = 0xFFFF;

// How many bytes the block of a resource of this many bytes takes.
std::uint32_t VersionBlockSize(std::uint32_t resourceSize);

// Makes a block of the resource at its beginning; `block` has VersionBlockSize(resourceSize) bytes at least.
void CompleteVersionBlock(std::span<unsigned char> block, std::uint32_t resourceSize);

// The value of the node that the path leads to, keys compared without case: a converted text with a
// terminator behind it, or bytes. False where there is no such node; `size` is then 0.
bool QueryVersionBlock(unsigned char const* block, char const* path, void const*& value, std::uint32_t& size);

} // namespace Quarn::detail
