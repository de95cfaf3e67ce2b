// Quarn::Stream::HeaderBlock: what opens every stored record: what follows, in which version of its layout.
// On the stream: id, then version, 32 bits each, little-endian. A plain value, for one thread at a time.
#pragma once

#include <cstdint>

namespace Quarn::Stream {

struct HeaderBlock
{
    std::uint32_t id = 0; // the kind of record, a tag of its owner's choice; messages show it in hexadecimal
    std::uint32_t version = 0; // the layout that the writer used
};

} // namespace Quarn::Stream
