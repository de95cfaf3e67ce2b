// JSON (RFC 8259) to the standard output, in ASCII: one member or element a line.
#pragma once

#include "text.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

class Json
{
public:
    Json() = default;
    Json(Json const&) = delete;
    Json& operator=(Json const&) = delete;
    // Ends the last line.
    ~Json();

    // An object or array begins, as an element, or under a name as a member; End() ends the innermost.
    void Object(std::string_view name = {}) { Begin(name, '{', '}'); }
    void Array(std::string_view name = {}) { Begin(name, '[', ']'); }
    void End();

    // A text; where the bytes are no text of the code page, `name`_bytes follows with all of them in
    // hexadecimal.
    void Text(std::string_view name, std::string_view bytes);
    void Bool(std::string_view name, bool value) { Raw(name, value ? "true" : "false"); }
    void Null(std::string_view name) { Raw(name, "null"); }
    template<std::integral T>
    void Number(std::string_view name, T value)
    {
        Raw(name, std::to_string(value));
    }
    // The shortest text that is this number; null for what is not finite.
    void Real(std::string_view name, float value);

private:
    void Begin(std::string_view name, char open, char close);
    void Raw(std::string_view name, std::string_view value);
    void Line(std::string_view name);

    std::vector<char> m_open; // what closes each of them
    bool m_isFirst = true;    // of the innermost
};

} // namespace tool
