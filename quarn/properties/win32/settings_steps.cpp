#include "quarn/properties/win32/settings_steps.h"

#include "quarn/properties/property_collection.h"
#include "quarn/properties/property_data.h"
#include "quarn/properties/property_key.h"

namespace Quarn::detail {

void SettingsSteps::Add(Kind kind, std::string_view name)
{
    m_steps.push_back({kind, PropertyData::TypeUnknown, name.size(), 0});
    m_texts += name;
}

void SettingsSteps::Apply(PropertyCollection& collection) const
{
    std::vector<PropertyKey*> keys = {&collection};
    char const* next = m_texts.data();
    auto const take = [&next](std::size_t size) {
        std::string_view const text(next, size);
        next += size;
        return text;
    };
    for (Step const& step : m_steps) {
        std::string_view const name = take(step.name);
        std::string_view const text = take(step.text);
        switch (step.kind) {
        case Kind::Description:
            collection.SetDocumentDescription(string(name.data(), name.size()));
            break;
        case Kind::RootName:
            collection.SetName(string(name.data(), name.size()));
            break;
        case Kind::EnterKey:
            keys.push_back(keys.back()->AddSubKey(string(name.data(), name.size()).c_str()));
            break;
        case Kind::LeaveKey:
            keys.pop_back();
            break;
        case Kind::Value:
            keys.back()->SetNamedValue(name, PropertyData::Make(step.type, text), true);
            break;
        }
    }
}

} // namespace Quarn::detail
