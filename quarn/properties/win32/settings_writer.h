// The text of a settings document: the bytes that the XML library's pretty-printing document writer gives for
// the tree (UTF-8, no declaration, line feeds, two blanks a level), made without building a document first.
#pragma once

#include <string>

namespace Quarn {

class PropertyCollection;

namespace detail {

// Replaces `document` by the text. False, with `document` unspecified, where a file cannot carry the tree: a
// name or text that XML or the code page cannot hold, a document description that is no element name, a tree
// beyond the bounds of settings_limits.h. Throws std::bad_alloc.
bool WriteSettings(PropertyCollection const& collection, std::string& document);

} // namespace detail

} // namespace Quarn
