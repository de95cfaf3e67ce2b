// Quarn::PropertyKey: a key of a settings tree, with an ordered list of sub-keys and an ordered list of named
// values. A tree belongs to one thread at a time, for reading too.
//
// Key paths are names divided by one or more of the characters \ / ; and , as in "Display\Colors". A path
// that begins with one of them begins with a key of empty name. A value is addressed as "keypath:valuename".
// Names compare without regard to case: ASCII letters always, other characters as far as the current C locale
// (setlocale) knows them. Where names are equal, the first in insertion order is meant. Paths and value
// addresses end at their first zero byte.
//
// Keys and values carry dirty flags. Every change of a key's lists or values marks the key and the keys above
// it, up to the first that is already dirty.
//
//   PropertyCollection settings("Station", "Quarn_Properties");
//   settings.SetValueInt32("Window\\Main:Left=-20", false);
//   settings.GetValueInt32("window/main:left", 0); // -20
#pragma once

#include "quarn/export.h"
#include "quarn/properties/property_data.h"
#include "quarn/properties/property_value.h"
#include "quarn/text/string.h"

#include <concepts>
#include <cstdint>
#include <memory>
#include <string_view>

namespace Quarn {

class QUARN_API PropertyKey
{
public:
    // A clean key without sub-keys and values. It is not put into `parent`, which may be null; a change of
    // the key marks that parent dirty, so the parent must live as long as the key.
    PropertyKey(string const& name, PropertyKey* parent);
    // Dirty flag, name, and copies of all values and of all keys below, which belong to the copy. The copy's
    // parent is that of `other`, which does not list it among its sub-keys.
    PropertyKey(PropertyKey const& other);
    // The same; a key that another key holds keeps its place there, under its new name. The new contents are
    // made before the old are freed, so `other` may lie inside this key; where its parent does, this key
    // keeps its own parent.
    PropertyKey& operator=(PropertyKey const& other);
    // Frees all values and all keys below; touches nothing above.
    virtual ~PropertyKey();

    // Valid until the key is renamed, assigned to or destroyed.
    string const& GetName() const { return m_name; }
    // Does not mark the key dirty.
    void SetName(string const& name);

    // The parent, null for a root.
    PropertyKey* GetParentKey() { return m_parent; }
    PropertyKey const* GetParentKey() const { return m_parent; }

    // Sub-keys. A key stays at its address until it is removed.

    // The number of direct sub-keys.
    std::uint64_t GetKeyCount() const;
    // The sub-key at a place in insertion order; null beyond the last.
    PropertyKey* GetSubKey(std::uint64_t index);
    PropertyKey const* GetSubKey(std::uint64_t index) const;
    template<std::integral T>
    PropertyKey* GetSubKey(T index)
    {
        return GetSubKey(static_cast<std::uint64_t>(index));
    }
    template<std::integral T>
    PropertyKey const* GetSubKey(T index) const
    {
        return GetSubKey(static_cast<std::uint64_t>(index));
    }

    // The key at the end of a path; the empty path, or null, is this key itself. A missing key gives null, or
    // is made with all keys on the way when `create` is set; the key that gets a new sub-key is marked dirty,
    // the new one is clean. The first form writes a zero byte behind every name that it has looked up.
    PropertyKey* GetSubKey(char* path, bool create);
    PropertyKey* GetSubKey(string const& path, bool create);
    PropertyKey* GetSubKey(char const* path);
    PropertyKey const* GetSubKey(char const* path) const;
    // GetSubKey(path, true).
    PropertyKey* AddSubKey(char const* path);
    // Whether GetSubKey finds a key at the path.
    bool HasSubKey(string const& path) const;

    // Removes the key at a path, with all below, and marks its parent dirty. False when there is no such key,
    // or it is a root. The empty path is this key.
    bool RemoveSubKey(string const& path);
    // Removes this key from its parent, which destroys it. False when it has no parent, or is a copy that its
    // parent does not list.
    bool Remove();

    // Values. A pointer to a value is good until the next value is added to or removed from its key.

    // The number of this key's own values.
    std::uint64_t GetValueCount() const;
    // The value at a place in insertion order; null beyond the last.
    PropertyValue* GetValue(std::uint64_t index);
    PropertyValue const* GetValue(std::uint64_t index) const;
    template<std::integral T>
    PropertyValue* GetValue(T index)
    {
        return GetValue(static_cast<std::uint64_t>(index));
    }
    template<std::integral T>
    PropertyValue const* GetValue(T index) const
    {
        return GetValue(static_cast<std::uint64_t>(index));
    }

    // The value at an address, null when it or its key is missing. What stands before the first colon is the
    // path of the key; in what follows, an equals sign and all behind it is ignored, and a further colon
    // divides again. An empty name is "DefaultValue".
    PropertyValue* GetValue(string const& name);
    PropertyValue const* GetValue(string const& name) const;
    // Whether GetValue finds a value at the address.
    bool HasValue(string const& name) const;

    // Sets the data of this key's value of that name, as PropertyValue::SetData does. A missing value gives
    // null, or is added when `create` is set; the new value is dirty and marks this key. The name is taken as
    // it stands, colons and equals signs included; an empty one is "DefaultValue".
    PropertyValue* SetValue(string const& name, PropertyData const& data, bool create);
    // The value at an address. Where there is none, this key's value whose name is the address as it stands
    // is set to the empty text, or added with it.
    PropertyValue* AddValue(string const& name);
    // Both set a value from a text of the form "keypath:valuename=value", making keys and value as needed; a
    // number is decimal, as PropertyData::GetDataInt32 reads it. Null, and nothing changes, when the colon
    // or an equals sign behind it is missing. The flag has no effect.
    PropertyValue* SetValueInt32(string const& spec, bool unused);
    PropertyValue* SetValueString(string const& spec, bool unused);

    // The number of the value at an address, the default where there is none. A value that is no number and
    // no text is 0.
    long GetValueInt32(string const& name, long defaultValue) const;
    // The text form of the value at an address, the default where there is none.
    string GetValueString(string const& name, string const& defaultValue) const;

    // Removes this key's value of that name (taken as it stands; empty is "DefaultValue") and marks this key
    // dirty. False when there is none.
    bool RemoveValue(string const& name);

    // Removes all values and sub-keys and marks this key dirty, also when there were none.
    void Clear();

    // Marks this key, its parent and so on, up to the first key that is already dirty.
    void SetDirty();
    // Makes a dirty key, its values and all below clean. A clean key is left alone, with all below.
    void ClearDirty();
    // Whether anything has changed since ClearDirty.
    bool Dirty() const { return m_dirty; }

    // Whether the name is this one, without regard to case; null equals no name.
    bool operator==(string const& name) const;
    bool operator==(char const* name) const;
    // Whether it is the same object.
    bool operator==(PropertyKey const* other) const { return this == other; }

private:
    friend class PropertyValue;
    friend class detail::SettingsSteps;
    friend class detail::NamedList<PropertyKey>;
    friend class detail::NameIndex<PropertyKey>;
    using KeyList = detail::NamedList<PropertyKey>;
    using ValueList = detail::NamedList<PropertyValue>;

    // The sub-key of this name; the first one, made if it is missing and `create` is set.
    PropertyKey* Step(std::string_view name, bool create);
    PropertyKey* Walk(std::string_view path, bool create);
    PropertyKey const* FindSubKey(std::string_view path) const;
    PropertyKey* AddChild(string const& name);
    bool RemoveChild(PropertyKey* child);

    PropertyValue* FindValue(std::string_view name) const;
    // SetValue. Data that is an rvalue is moved into a new value.
    template<typename Data>
    PropertyValue* SetNamedValue(std::string_view name, Data&& data, bool create);
    PropertyValue* SetFromSpec(string const& spec, PropertyData (*makeData)(std::string_view text));
    PropertyValue* AppendValue(std::unique_ptr<PropertyValue> value);

    // Fills this key, which is empty, with copies of what `source` holds.
    void CopyContents(PropertyKey const& source);
    // Whether the key, of which only the address is looked at, is this one or one below.
    bool Contains(PropertyKey const* key) const;

    string m_name;
    bool m_dirty = false;
    // Where the key stands among its siblings, as a number that grows from key to key.
    std::uint32_t m_order = 0;
    PropertyKey* m_parent;
    // The key that holds this one in its list, whatever m_parent was copied from; null when none does.
    PropertyKey* m_holder = nullptr;
    // Null as long as they are empty.
    std::unique_ptr<KeyList> m_children;
    std::unique_ptr<ValueList> m_values;
};

} // namespace Quarn
