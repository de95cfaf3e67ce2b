#include "json.h"

#include <array>
#include <charconv>
#include <cmath>

namespace tool {

Json::~Json()
{
    Print("\n");
}

void Json::End()
{
    char const close = m_open.back();
    m_open.pop_back();
    if (!m_isFirst) {
        Print('\n' + std::string(m_open.size() * 2, ' '));
    }
    m_isFirst = false;
    Print(std::string(1, close));
}

void Json::Text(std::string_view name, std::string_view bytes)
{
    Raw(name, JsonString(bytes));
    if (!IsText(bytes) && !name.empty()) {
        Raw(std::string(name) + "_bytes", '"' + Hex(bytes) + '"');
    }
}

void Json::Real(std::string_view name, float value)
{
    std::array<char, 40> text{};
    std::to_chars(text.data(), text.data() + text.size(), value);
    Raw(name, std::isfinite(value) ? text.data() : "null");
}

void Json::Begin(std::string_view name, char open, char close)
{
    Line(name);
    Print(std::string(1, open));
    m_open.push_back(close);
    m_isFirst = true;
}

void Json::Raw(std::string_view name, std::string_view value)
{
    Line(name);
    Print(value);
}

void Json::Line(std::string_view name)
{
    if (!m_open.empty()) {
        Print((m_isFirst ? "\n" : ",\n") + std::string(m_open.size() * 2, ' '));
    }
    m_isFirst = false;
    if (!name.empty()) {
        Print(JsonString(name) + ": ");
    }
}

} // namespace tool
