// (private) A path divided into its parts. On Windows '/' and '\' separate and a drive may stand in front;
// elsewhere '/' alone does, and there is no drive.
#pragma once

#include <string>
#include <string_view>

namespace Quarn::detail {

#if defined(_WIN32)
constexpr char PathSeparator = '\\';
constexpr std::string_view PathSeparators = "\\/";
constexpr std::string_view DriveMarks = ":";
constexpr char PathListSeparator = ';'; // between the folders of PATH
#else
constexpr char PathSeparator = '/';
constexpr std::string_view PathSeparators = "/";
constexpr std::string_view DriveMarks;
constexpr char PathListSeparator = ':';
#endif

// Put together again they give the path.
struct PathParts
{
    std::string drive;     // with its colon
    std::string directory; // with the separator at its end
    std::string name;      // without extension
    std::string extension; // from the last dot of the last component on
};

PathParts SplitPath(std::string_view path);

// The path of a module that lies beside `module`, with the same name but for `suffix` behind it. Elsewhere
// than on Windows the version behind ".so" is left out.
std::string SiblingModule(std::string_view module, std::string_view suffix);

} // namespace Quarn::detail
