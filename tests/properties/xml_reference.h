// Settings documents through the XML library's own document tree, as plainly as possible: what the reader and
// the writer are compared with. The XML library is started.
#pragma once

#include "quarn/properties/property_collection.h"

#include <optional>
#include <string>

namespace reference {

enum class Result
{
    Whole,
    Partial,
    NoKey,
    Refused,
};

// Parses the document into a tree and walks it.
Result Read(std::string const& document, Quarn::PropertyCollection& collection);

// Builds a tree and has it pretty-printed; nothing where the XML library refuses.
std::optional<std::string> Write(Quarn::PropertyCollection const& collection);

} // namespace reference
