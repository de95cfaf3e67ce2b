// Quarn::PropertyValue: one named, typed value of a settings key, with the flag that says it has changed.
// Values are made by the key that holds them; one made on its own is a plain copyable object. A tree belongs
// to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/properties/property_data.h"
#include "quarn/text/string.h"

#include <cstdint>

namespace Quarn {

class PropertyKey;

namespace detail {

template<typename Item>
class NamedList;
template<typename Item>
class NameIndex;

} // namespace detail

class QUARN_API PropertyValue
{
public:
    // "DefaultValue": what an empty name stands for. The value of that name is its key's default value.
    static string const DefaultValueName;

    // A dirty value with copies of name and data. It is not put into `key`, which may be null; a change of
    // the value marks that key dirty, so the key must live as long as the value.
    PropertyValue(string const& name, PropertyData const& data, PropertyKey* key);
    // Name, data, dirty flag and owning key, which is that of `other`.
    PropertyValue(PropertyValue const& other);
    // The same. A value that a key holds keeps its place there, under its new name.
    PropertyValue& operator=(PropertyValue const& other);
    virtual ~PropertyValue();

    // The name, or "DefaultValue" when it is empty. Valid until the value is assigned to or destroyed.
    string const& GetName() const;
    // Whether the name is "DefaultValue" exactly; this is the one comparison of names that sees case.
    bool IsDefaultValue() const;

    // The data, valid as long as the value.
    PropertyData const& GetData() const { return m_data; }
    PropertyData::DataType GetDataType() const { return m_data.GetType(); }
    string const& GetDatatypeName() const { return m_data.GetTypename(); }
    // The data as a number and as a text; see PropertyData::GetDataInt32 and GetDataString.
    long GetValueInt32() const { return m_data.GetDataInt32(); }
    string GetValueString() const { return m_data.GetDataString(); }

    // Stores the data and marks the value dirty, unless the data is equal to the stored one: text and binary
    // data from elsewhere never is (see PropertyData::operator==).
    void SetData(PropertyData const& data);
    // Stores a text or a number and marks the value dirty, also when nothing changes.
    void SetValue(string const& text);
    void SetValue(long number);

    // Marks the value as changed, and with it its key and the keys above. A value that is already dirty does
    // nothing.
    void SetDirty();
    // Clears the flag of this value alone.
    void ClearDirty() { m_dirty = false; }
    bool Dirty() const { return m_dirty; }

    // Whether the stored name is this one, without regard to case.
    bool operator==(string const& name) const;

private:
    friend class PropertyKey;
    friend class detail::NamedList<PropertyValue>;
    friend class detail::NameIndex<PropertyValue>;

    string m_name;
    PropertyData m_data;
    bool m_dirty = true;
    // Where the value stands in its list, as a number that grows from value to value.
    std::uint32_t m_order = 0;
    PropertyKey* m_key;
    // The key that holds this value in its list, whatever m_key was copied from; null when none does.
    PropertyKey* m_holder = nullptr;
};

} // namespace Quarn
