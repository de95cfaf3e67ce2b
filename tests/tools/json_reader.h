// A strict reader of JSON (RFC 8259), for what the program prints. Wrong JSON fails the test.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

struct JsonValue
{
    enum Kind
    {
        Text,
        Word, // a number, true, false, null: as it was written
        Object,
        Array,
        Missing,
    };

    // The member or element; one of kind Missing where there is none.
    JsonValue const& operator[](std::string_view name) const;
    JsonValue const& operator[](int index) const;

    Kind kind = Missing;
    std::string text; // in UTF-8
    std::vector<std::pair<std::string, JsonValue>> items;
};

JsonValue ReadJson(std::string const& text);
