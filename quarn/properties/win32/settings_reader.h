// Reading a settings document into a collection. The result is that of a walk over the document's tree, but
// no tree is built: the XML library reports the parts as it meets them.
#pragma once

#include "quarn/text/string.h"

#include <cstdint>
#include <string_view>

namespace Quarn {

class PropertyCollection;

namespace detail {

enum class ReadResult
{
    // All of the document is in the collection.
    Whole,
    // Reading stopped at a part that no settings document has, or a character has no exact counterpart in the
    // process code page: something of the document is not in the collection.
    Partial,
    // The document is well-formed but its root has no key. The collection has the description alone.
    NoKey,
    // Not well-formed, with a document type, with a comment or a processing instruction outside the root
    // element, or beyond the bounds of settings_limits.h. The collection is as it was.
    Refused,
};

// What stands against a document: the first thing in it that is not in the collection, for people. Line and
// column count from 1 and are where the XML library stood when it met that; 0 where there is no place.
struct ReadProblem
{
    std::uint64_t line = 0;
    std::uint64_t column = 0;
    string reason;
};

// Adds the document to the collection: keys of one name are merged, values of one name overwritten. No other
// file and no network is ever read. The XML library is started. Where the result is not Whole and `problem`
// is not null, it is set. Throws std::bad_alloc, before the collection changes unless that happens while it
// grows.
ReadResult ReadSettings(std::string_view document, PropertyCollection& collection,
                        ReadProblem* problem = nullptr);

} // namespace detail

} // namespace Quarn
