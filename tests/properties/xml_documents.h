// Settings documents, good and odd and bad, listed and generated.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace documents {

// Loaded to the end.
extern std::vector<std::string> const GoodDocuments;
// Well-formed; reading stops on the way.
extern std::vector<std::string> const PartialDocuments;
// Well-formed, without a key in the root.
extern std::vector<std::string> const KeylessDocuments;
// Not to be loaded at all.
extern std::vector<std::string> const RefusedDocuments;

// Random documents, most of them well-formed, with all that makes a difference to the reading.
class Generator
{
public:
    explicit Generator(std::uint32_t seed) : m_random(seed) {}

    std::string Document();
    // The document with a few bytes changed, removed, doubled or cut off.
    std::string Damaged(std::string document);

private:
    // A number below `bound`.
    std::size_t Below(std::size_t bound) { return m_random() % bound; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template<typename T>
    T const& OneOf(std::vector<T> const& items)
    {
        return items[Below(items.size())];
    }

    std::string Text();
    std::string Attributes(std::string const& element);
    std::string Element(std::string const& element, int depth);
    std::string Content(int depth, bool inValue);
    std::string Misc();

    std::mt19937 m_random;
};

} // namespace documents
