// Texts for people and for JSON. Texts of the library are bytes in the process code page; those of files may
// be anything.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace tool {

// Whether the bytes are a text of the process code page.
bool IsText(std::string_view bytes);

// The text with everything that a terminal could take for a command as an escape: control characters as \n,
// \t or \x1b, the backslash as it is; where the bytes are no text, all above 127 too.
std::string Printable(std::string_view bytes);

// The same in double quotes, with a backslash before quotes and backslashes.
std::string Quoted(std::string_view bytes);

// Two lower-case digits a byte.
std::string Hex(std::string_view bytes);

// A JSON string in ASCII alone. What is no text becomes U+FFFD.
std::string JsonString(std::string_view bytes);

enum class Colour
{
    Plain,
    Strong,
    Good,
    Bad,
};

// The text in a colour where the standard output is a terminal and NO_COLOR is not set.
std::string Paint(Colour colour, std::string const& text);

// Prints to the standard output; a failure shows at the end, see FinishOutput.
void Print(std::string_view text);
// "quarn: " and the text, on the standard error.
void Warn(std::string const& text);
// Throws Failure where not all of the output could be written.
void FinishOutput();

} // namespace tool
