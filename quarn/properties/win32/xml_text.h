// The library's text (bytes in the process code page) and XML's (UTF-16 as the XML library gives it, UTF-8 in
// files). Nothing is lost in silence: every conversion tells whether it was exact. Any thread may call.
#pragma once

#include <string>
#include <string_view>

#include <xercesc/util/XercesDefs.hpp>

namespace Quarn::detail {

// Replaces `utf8` by the text in UTF-8. False, with `utf8` unspecified, where the code page cannot convert
// the text, or not so that it comes back as it was, or where it holds a character that XML 1.0 has not. The
// ASCII control characters are the caller's to refuse. Throws std::bad_alloc.
bool ToUtf8(std::string_view text, std::string& utf8);

// Appends the characters in the process code page to `text`. False where one of them has no exact counterpart
// there; the code page's substitute then stands in its place. Throws std::bad_alloc.
bool AppendFromUtf16(XMLCh const* characters, std::size_t count, std::string& text);

// True for a text that can name the root element: a name of XML 1.0 without a colon, which would be a
// namespace prefix that nobody declares. Throws std::bad_alloc.
bool IsRootElementName(std::string_view text);

} // namespace Quarn::detail
