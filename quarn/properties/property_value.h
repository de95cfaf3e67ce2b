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
    PropertyValue(string name, PropertyData data, PropertyKey* key);
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
    // The type of the data.
    PropertyData::DataType GetDataType() const { return m_data.GetType(); }
    // The name of the type; see PropertyData::GetTypename.
    string const& GetDatatypeName() const { return m_data.GetTypename(); }
    // The data as a number; see PropertyData::GetDataInt32.
    long GetValueInt32() const { return m_data.GetDataInt32(); }
    // The data as a text; see PropertyData::GetDataString.
    string GetValueString() const { return m_data.GetDataString(); }

    // Stores the data and marks the value dirty, unless the data is equal to the stored one: text and binary
    // data from elsewhere never is (see PropertyData::operator==).
    void SetData(PropertyData const& data);
    // Stores a text or a number and marks the value dirty, also when nothing changes.
    void SetValue(string const& text);
    void SetValue(long number);

    // Several items in one text, each followed by a comma. The format has one letter per item; the arguments
    // are the items for Writef and pointers to them for Readf:
    //
    //   D, L   unsigned 32-bit integer (`unsigned int`, whatever the width of long)   decimal
    //   i      int                                                                    decimal
    //   b      bool                                               0 or 1; any number but 0 reads true
    //   d      double                                             six decimals, of the number as a float
    //   f      float; Writef takes a pointer to it too            six decimals
    //   T      64-bit integer                                     its high half, a colon, its low half
    //   v      64-bit integer                                     its low half, a colon, its high half
    //   t      string; Writef takes a pointer to it too           in double quotes, inner quotes as they are
    //   space  nothing
    //
    //   value.Writef("iit", 1, 2, &name);
    //   value.Readf("iit", &left, &top, &name);

    // Stores the record as a text, as SetValue does; true. A text that is the first item gets a comma before
    // it. A character of the format that is no letter takes no argument and repeats the item before it.
    bool Writef(char const* format, ...);
    // Reads the items from the value's text form. False when the text has no field left for an item; the
    // arguments of that item and of those that follow are left alone. A field without a number is 0, integers
    // count modulo 2^32, a last field without its comma serves all further items. Texts are appended to their
    // strings; in a text a backslash before a double quote stands for the quote, unless the text begins like
    // a path with a drive (C:\). A text that is not the first item ends at a comma; one whose closing quote
    // is missing is read as far as it goes. Any other character of the format skips a field.
    bool Readf(char const* format, ...) const;

    // Marks the value as changed, and with it its key and the keys above. A value that is already dirty does
    // nothing.
    void SetDirty();
    // Clears the flag of this value alone.
    void ClearDirty() { m_dirty = false; }
    // Whether the value has changed since ClearDirty.
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
