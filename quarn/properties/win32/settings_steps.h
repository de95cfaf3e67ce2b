// What reading a settings document does to a collection, kept until the document has proved well-formed.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Quarn {

class PropertyCollection;

namespace detail {

// The steps in document order. A plain value; throws std::bad_alloc.
class SettingsSteps
{
public:
    void SetDescription(std::string_view text) { Add(Kind::Description, text); }
    void SetRootName(std::string_view name) { Add(Kind::RootName, name); }
    // Goes into the sub-key at a path below the current key, made where it is missing.
    void EnterKey(std::string_view path) { Add(Kind::EnterKey, path); }
    // Goes back to the key in which the matching EnterKey was taken.
    void LeaveKey() { Add(Kind::LeaveKey, {}); }
    void SetValue(std::string_view name, std::string_view type, std::string_view text)
    {
        Add(Kind::Value, name, type, text);
    }

    void Apply(PropertyCollection& collection) const;

private:
    enum class Kind : unsigned char
    {
        Description,
        RootName,
        EnterKey,
        LeaveKey,
        Value,
    };
    // The texts lie one behind the other in m_texts, step by step.
    struct Step
    {
        Kind kind;
        std::size_t name;
        std::size_t type;
        std::size_t text;
    };

    void Add(Kind kind, std::string_view name, std::string_view type = {}, std::string_view text = {});

    std::vector<Step> m_steps;
    std::string m_texts;
};

} // namespace detail

} // namespace Quarn
