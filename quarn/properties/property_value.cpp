#include "quarn/properties/property_value.h"

#include "quarn/properties/named_list.h"
#include "quarn/properties/property_key.h"

#include <utility>

namespace Quarn {

string const PropertyValue::DefaultValueName = "DefaultValue";

PropertyValue::PropertyValue(string name, PropertyData data, PropertyKey* key)
    : m_name(std::move(name)),
      m_data(std::move(data)),
      m_key(key)
{}

PropertyValue::PropertyValue(PropertyValue const& other)
    : m_name(other.m_name),
      m_data(other.m_data),
      m_dirty(other.m_dirty),
      m_key(other.m_key)
{}

PropertyValue& PropertyValue::operator=(PropertyValue const& other)
{
    if (this == &other) {
        return *this;
    }
    string name = other.m_name;
    m_data = other.m_data;
    if (m_holder != nullptr) {
        m_holder->m_values->Rename(this, std::move(name));
    } else {
        m_name = std::move(name);
    }
    m_dirty = other.m_dirty;
    m_key = other.m_key;
    return *this;
}

PropertyValue::~PropertyValue() = default;

string const& PropertyValue::GetName() const
{
    return m_name.empty() ? DefaultValueName : m_name;
}

bool PropertyValue::IsDefaultValue() const
{
    return GetName() == DefaultValueName;
}

void PropertyValue::SetData(PropertyData const& data)
{
    if (m_data != data) {
        m_data = data;
        SetDirty();
    }
}

void PropertyValue::SetValue(string const& text)
{
    m_data.Assign(text);
    SetDirty();
}

void PropertyValue::SetValue(long number)
{
    m_data.Assign(number);
    SetDirty();
}

void PropertyValue::SetDirty()
{
    if (m_dirty) {
        return;
    }
    m_dirty = true;
    if (m_key != nullptr) {
        m_key->SetDirty();
    }
}

bool PropertyValue::operator==(string const& name) const
{
    return detail::EqualNames(m_name, name);
}

} // namespace Quarn
