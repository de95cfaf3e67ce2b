// Quarn::StringList: an ordered list of strings, the library's type for sequences of names. A doubly linked
// list and a plain value; one object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <list>
#include <string>
#include <vector>

namespace Quarn {

class QUARN_API StringList : public std::list<string>
{
public:
    StringList() = default;
    StringList(StringList const& other) = default;
    StringList(StringList&& other) = default;
    ~StringList() = default;

    // `count` copies of `value`.
    StringList(size_type count, string const& value) : std::list<string>(count, value) {}
    // A copy of the range [first, last) of a list.
    StringList(const_iterator first, const_iterator last) : std::list<string>(first, last) {}
    // One element per element of `texts`, in order, each cut at its first zero byte.
    StringList(std::vector<std::string> const& texts);

    StringList& operator=(StringList const& other) = default;
    StringList& operator=(StringList&& other) = default;
    // Replaces the contents as the constructor from a vector makes them.
    StringList& operator=(std::vector<std::string> const& texts);
};

} // namespace Quarn
