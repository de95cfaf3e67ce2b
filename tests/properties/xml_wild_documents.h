// Settings documents with all that XML allows and much that it does not: encodings, references, odd
// characters in names and texts, sections, comments, instructions, cut anywhere. What is well-formed is for a
// parser to say.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace documents {

class WildGenerator
{
public:
    explicit WildGenerator(std::uint32_t seed) : m_random(seed) {}

    // The bytes of the next document. About half of them are well-formed.
    std::string Next();

private:
    using Text = std::u32string;

    std::size_t Below(std::size_t bound) { return m_random() % bound; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    Text OneOf(std::vector<Text> const& items) { return items[Below(items.size())]; }

    char32_t Character();
    Text Reference();
    Text Data(bool inAttribute);
    Text Name();
    Text Attributes(bool isValue);
    Text Section();
    Text Children(int depth);
    Text Element(int depth);
    Text Declaration(std::string const& encoding);
    Text Around();
    void Break(Text& document);
    std::string Encode(Text const& document, std::string const& encoding);

    std::mt19937 m_random;
    // Of the document that is being made: the first character that its encoding lacks, and whether it is to
    // have something wrong.
    char32_t m_limit = 0x110000;
    bool m_isWild = false;
};

} // namespace documents
