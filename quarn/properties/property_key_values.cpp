// The values of a key; property_key.cpp has the rest.
#include "quarn/properties/named_list.h"
#include "quarn/properties/property_key.h"
#include "quarn/text/number_text.h"

#include <utility>

namespace Quarn {

namespace {

std::string_view ValueName(std::string_view name)
{
    return name.empty() ? std::string_view(PropertyValue::DefaultValueName) : name;
}

} // namespace

std::uint64_t PropertyKey::GetValueCount() const
{
    return m_values != nullptr ? m_values->Items().size() : 0;
}

PropertyValue const* PropertyKey::GetValue(std::uint64_t index) const
{
    return index < GetValueCount() ? m_values->Items()[index] : nullptr;
}

PropertyValue* PropertyKey::GetValue(std::uint64_t index)
{
    return const_cast<PropertyValue*>(std::as_const(*this).GetValue(index));
}

PropertyValue const* PropertyKey::GetValue(string const& name) const
{
    PropertyKey const* key = this;
    std::string_view rest = name.c_str();
    auto const enterKey = [&key, &rest] {
        std::size_t const colon = rest.find(':');
        if (colon == std::string_view::npos) {
            return false;
        }
        key = key->FindSubKey(rest.substr(0, colon));
        rest.remove_prefix(colon + 1);
        return key != nullptr;
    };
    bool entered = enterKey();
    rest = rest.substr(0, rest.find('='));
    while (entered) {
        entered = enterKey();
    }
    return key != nullptr ? key->FindValue(ValueName(rest)) : nullptr;
}

PropertyValue* PropertyKey::GetValue(string const& name)
{
    return const_cast<PropertyValue*>(std::as_const(*this).GetValue(name));
}

bool PropertyKey::HasValue(string const& name) const
{
    return GetValue(name) != nullptr;
}

PropertyValue* PropertyKey::SetValue(string const& name, PropertyData const& data, bool create)
{
    return SetNamedValue(name, data, create);
}

PropertyValue* PropertyKey::AddValue(string const& name)
{
    PropertyValue* const value = GetValue(name);
    return value != nullptr ? value : SetNamedValue(name, PropertyData(""), true);
}

PropertyValue* PropertyKey::SetValueInt32(string const& spec, bool /*unused*/)
{
    return SetFromSpec(spec, [](std::string_view text) { return PropertyData(detail::StringToLong(text)); });
}

PropertyValue* PropertyKey::SetValueString(string const& spec, bool /*unused*/)
{
    return SetFromSpec(spec,
                       [](std::string_view text) { return PropertyData(string(text.data(), text.size())); });
}

long PropertyKey::GetValueInt32(string const& name, long defaultValue) const
{
    PropertyValue const* const value = GetValue(name);
    return value != nullptr ? value->GetValueInt32() : defaultValue;
}

string PropertyKey::GetValueString(string const& name, string const& defaultValue) const
{
    PropertyValue const* const value = GetValue(name);
    return value != nullptr ? value->GetValueString() : defaultValue;
}

bool PropertyKey::RemoveValue(string const& name)
{
    PropertyValue* const value = FindValue(ValueName(name));
    if (value == nullptr) {
        return false;
    }
    std::unique_ptr<PropertyValue> const removed = m_values->Take(value);
    SetDirty();
    return true;
}

PropertyValue* PropertyKey::FindValue(std::string_view name) const
{
    return m_values != nullptr ? m_values->Find(name) : nullptr;
}

template<typename Data>
PropertyValue* PropertyKey::SetNamedValue(std::string_view name, Data&& data, bool create)
{
    name = ValueName(name);
    if (PropertyValue* const found = FindValue(name)) {
        found->SetData(data);
        return found;
    }
    if (!create) {
        return nullptr;
    }
    PropertyValue* const added = AppendValue(
        std::make_unique<PropertyValue>(string(name.data(), name.size()), std::forward<Data>(data), this));
    SetDirty();
    return added;
}

// For readers of whole trees.
template PropertyValue* PropertyKey::SetNamedValue(std::string_view name, PropertyData&& data, bool create);

PropertyValue* PropertyKey::SetFromSpec(string const& spec, PropertyData (*makeData)(std::string_view text))
{
    std::string_view const text = spec.c_str();
    std::size_t const colon = text.find(':');
    std::size_t const equals = colon != std::string_view::npos ? text.find('=', colon) : colon;
    if (equals == std::string_view::npos) {
        return nullptr;
    }
    PropertyKey* const key = Walk(text.substr(0, colon), true);
    return key->SetNamedValue(text.substr(colon + 1, equals - colon - 1), makeData(text.substr(equals + 1)),
                              true);
}

PropertyValue* PropertyKey::AppendValue(std::unique_ptr<PropertyValue> value)
{
    if (m_values == nullptr) {
        m_values = std::make_unique<ValueList>();
    }
    value->m_key = value->m_holder = this;
    return m_values->Append(std::move(value));
}

} // namespace Quarn
