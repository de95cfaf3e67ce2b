#include "quarn/platform/path_parts.h"

#include <algorithm>

namespace Quarn::detail {

namespace {

// Of the part of a path behind the drive: where its last component begins.
std::size_t LastComponent(std::string_view path)
{
    return path.find_last_of(PathSeparators) + 1; // npos + 1 is 0
}

} // namespace

PathParts SplitPath(std::string_view path)
{
    PathParts parts;
#if defined(_WIN32)
    if (path.size() >= 2 && path[1] == ':') {
        parts.drive = path.substr(0, 2);
        path.remove_prefix(2);
    }
#endif
    std::size_t const name = LastComponent(path);
    std::size_t const extension = std::min(path.find_last_of('.'), path.size());
    parts.directory = path.substr(0, name);
    if (extension < name) {
        parts.name = path.substr(name);
        return parts;
    }
    parts.name = path.substr(name, extension - name);
    parts.extension = path.substr(extension);
    return parts;
}

std::string SiblingModule(std::string_view module, std::string_view suffix)
{
#if !defined(_WIN32)
    std::size_t const version = module.find(".so.", LastComponent(module));
    module = module.substr(0, version == module.npos ? version : version + 3);
#endif
    PathParts const parts = SplitPath(module);
    std::string sibling = parts.drive + parts.directory + parts.name;
    sibling.append(suffix).append(parts.extension);
    return sibling;
}

} // namespace Quarn::detail
