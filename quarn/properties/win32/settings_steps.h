// What reading a settings document does to a collection, kept until the document has proved well-formed.
#pragma once

#include "quarn/properties/property_data.h"

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
    // A value, in two steps: first its name and its text are appended to Texts().
    std::string& Texts() { return m_texts; }
    void SetValue(std::size_t nameSize, PropertyData::DataType type, std::size_t textSize)
    {
        m_steps.push_back({Kind::Value, type, nameSize, textSize});
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
        PropertyData::DataType type;
        std::size_t name;
        std::size_t text;
    };

    void Add(Kind kind, std::string_view name);

    std::vector<Step> m_steps;
    std::string m_texts;
};

} // namespace detail

} // namespace Quarn
