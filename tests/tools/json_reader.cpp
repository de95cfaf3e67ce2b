#include "json_reader.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

class Reader
{
public:
    explicit Reader(std::string_view rest) : m_rest(rest) {}

    JsonValue Whole()
    {
        JsonValue value = Value();
        SkipBlanks();
        Expect(m_rest.empty());
        return value;
    }

private:
    static void Expect(bool condition)
    {
        if (!condition) {
            throw std::runtime_error("no JSON");
        }
    }
    void SkipBlanks() { m_rest.remove_prefix(std::min(m_rest.find_first_not_of(" \t\r\n"), m_rest.size())); }
    bool Skip(char c)
    {
        SkipBlanks();
        if (!m_rest.starts_with(c)) {
            return false;
        }
        m_rest.remove_prefix(1);
        return true;
    }
    char Next()
    {
        Expect(!m_rest.empty());
        char const c = m_rest.front();
        m_rest.remove_prefix(1);
        return c;
    }

    JsonValue Value()
    {
        JsonValue value;
        if (Skip('{')) {
            value.kind = JsonValue::Object;
            Items(value, '}');
        } else if (Skip('[')) {
            value.kind = JsonValue::Array;
            Items(value, ']');
        } else if (Skip('"')) {
            value.kind = JsonValue::Text;
            value.text = RestOfText();
        } else {
            value.kind = JsonValue::Word;
            value.text = m_rest.substr(0, m_rest.find_first_of(",]} \t\r\n"));
            m_rest.remove_prefix(value.text.size());
            Expect(value.text == "true" || value.text == "false" || value.text == "null" ||
                   IsNumber(value.text));
        }
        return value;
    }
    void Items(JsonValue& value, char close)
    {
        if (Skip(close)) {
            return;
        }
        do {
            std::string name;
            if (value.kind == JsonValue::Object) {
                Expect(Skip('"'));
                name = RestOfText();
                Expect(Skip(':'));
            }
            SkipBlanks();
            value.items.emplace_back(std::move(name), Value());
        } while (Skip(','));
        Expect(Skip(close));
    }
    // -?(0|[1-9][0-9]*)(\.[0-9]+)?([eE][+-]?[0-9]+)?
    static bool IsNumber(std::string_view text)
    {
        auto const digits = [&text] {
            std::size_t const count = std::min(text.find_first_not_of("0123456789"), text.size());
            text.remove_prefix(count);
            return count != 0;
        };
        auto const skip = [&text](char const* set) {
            bool const found = text.find_first_of(set) == 0;
            text.remove_prefix(found ? 1 : 0);
            return found;
        };
        skip("-");
        if (!skip("0") && !digits()) {
            return false;
        }
        if (skip(".") && !digits()) {
            return false;
        }
        if (skip("eE")) {
            skip("+-");
            if (!digits()) {
                return false;
            }
        }
        return text.empty();
    }
    std::string RestOfText()
    {
        std::string text;
        for (char c = Next(); c != '"'; c = Next()) {
            Expect(static_cast<unsigned char>(c) >= 0x20);
            if (c != '\\') {
                text += c;
                continue;
            }
            c = Next();
            constexpr std::string_view Names = "\"\\/bfnrt";
            constexpr std::string_view Meanings = "\"\\/\b\f\n\r\t";
            if (c == 'u') {
                AddUtf8(Unit(), text);
            } else {
                Expect(Names.find(c) != Names.npos);
                text += Meanings[Names.find(c)];
            }
        }
        return text;
    }
    std::uint32_t Unit()
    {
        std::uint32_t unit = 0;
        for (int i = 0; i < 4; ++i) {
            std::size_t const digit = std::string_view("0123456789abcdef").find(Next());
            Expect(digit < 16);
            unit = unit * 16 + static_cast<std::uint32_t>(digit);
        }
        return unit;
    }
    void AddUtf8(std::uint32_t code, std::string& text)
    {
        Expect(code < 0xDC00 || code > 0xDFFF);
        if (code >= 0xD800 && code < 0xDC00) {
            Expect(Next() == '\\' && Next() == 'u');
            std::uint32_t const low = Unit();
            Expect(low >= 0xDC00 && low <= 0xDFFF);
            code = 0x10000 + ((code - 0xD800) << 10) + (low - 0xDC00);
        }
        if (code < 0x80) {
            text += static_cast<char>(code);
            return;
        }
        int const more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        constexpr unsigned Lead[] = {0, 0xC0, 0xE0, 0xF0};
        text += static_cast<char>(Lead[more] | (code >> (6 * more)));
        for (int i = more - 1; i >= 0; --i) {
            text += static_cast<char>(0x80 | (code >> (6 * i) & 0x3F));
        }
    }

    std::string_view m_rest;
};

JsonValue const NoValue;

} // namespace

JsonValue const& JsonValue::operator[](std::string_view name) const
{
    for (auto const& [itemName, item] : items) {
        if (itemName == name) {
            return item;
        }
    }
    return NoValue;
}

JsonValue const& JsonValue::operator[](int index) const
{
    return static_cast<std::size_t>(index) < items.size() ? items[static_cast<std::size_t>(index)].second
                                                          : NoValue;
}

JsonValue ReadJson(std::string const& text)
{
    try {
        return Reader(text).Whole();
    } catch (std::runtime_error const&) {
        ADD_FAILURE() << "no JSON:\n" << text;
        return {};
    }
}
