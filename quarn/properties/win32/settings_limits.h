// The bounds of a settings document, for the reader and the writer alike: what is written can be read. They
// lie far beyond any real settings file and keep a hostile one from taking the machine.
#pragma once

#include <cstddef>

namespace Quarn::detail {

// Bytes of the whole document.
constexpr std::size_t MaxDocumentSize = std::size_t{256} << 20;
// Characters of a name of a key or a value.
constexpr std::size_t MaxNameSize = std::size_t{16} << 20;
// Levels of keys, the collection's own key being the first.
constexpr std::size_t MaxTreeDepth = 1000;
// Nested elements, those included that leave nothing in the tree.
constexpr std::size_t MaxElementDepth = 10000;
// Bytes that the XML library may hold while it reads.
constexpr std::size_t MaxParserMemory = std::size_t{512} << 20;

} // namespace Quarn::detail
