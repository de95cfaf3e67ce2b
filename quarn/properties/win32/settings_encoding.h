// What the XML library does not look at, or passes over, in the bytes and the encoding of a document.
#pragma once

#include <string_view>

#include <xercesc/framework/MemoryManager.hpp>

namespace Quarn::detail {

// The XML library takes a zero character behind the root element for the end of the document, whatever
// follows, passes over a part of a character at the end, and does not look for both halves of a pair.
bool HasSoundCharacters(std::string_view document);

// Whether the document's characters have the width of the encoding that it declares ("" for none). The XML
// library looks at the names of the wide ones, and goes on with what it has guessed before.
bool CanBeEncodingOf(std::string_view document, XMLCh const* encoding);

// Whether all bytes are characters of the encoding, where the system's converter is asked for them: it may
// put U+FFFD where they are none, and say nothing. So none may be among them but as a reference. The XML
// library is started; what it throws goes through.
bool HasCharactersOf(std::string_view document, XMLCh const* encoding, xercesc::MemoryManager* memory);

} // namespace Quarn::detail
