#include "quarn/properties/win32/settings_steps.h"

#include "quarn/properties/property_collection.h"
#include "quarn/properties/property_data.h"
#include "quarn/properties/property_key.h"

namespace Quarn::detail {

void SettingsSteps::Add(Kind kind, std::string_view name, std::string_view type, std::string_view text)
{
    m_steps.push_back({kind, name.size(), type.size(), text.size()});
    m_texts += name;
    m_texts += type;
    m_texts += text;
}

void SettingsSteps::Apply(PropertyCollection& collection) const
{
    std::vector<PropertyKey*> keys = {&collection};
    char const* next = m_texts.data();
    auto const take = [&next](string& text, std::size_t size) {
        text.assign(next, size);
        next += size;
    };
    string name;
    string type;
    string text;
    for (Step const& step : m_steps) {
        take(name, step.name);
        take(type, step.type);
        take(text, step.text);
        switch (step.kind) {
        case Kind::Description:
            collection.SetDocumentDescription(name);
            break;
        case Kind::RootName:
            collection.SetName(name);
            break;
        case Kind::EnterKey:
            keys.push_back(keys.back()->AddSubKey(name.c_str()));
            break;
        case Kind::LeaveKey:
            keys.pop_back();
            break;
        case Kind::Value:
            keys.back()->SetValue(name, PropertyData::Create(type, text), true);
            break;
        }
    }
}

} // namespace Quarn::detail
