#include "quarn/text/string_list.h"

namespace Quarn {

StringList::StringList(std::vector<std::string> const& texts)
{
    for (std::string const& text : texts) {
        emplace_back(text.c_str());
    }
}

StringList& StringList::operator=(std::vector<std::string> const& texts)
{
    StringList replacement(texts);
    swap(replacement);
    return *this;
}

} // namespace Quarn
