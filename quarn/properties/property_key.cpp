#include "quarn/properties/property_key.h"

#include "quarn/properties/named_list.h"

#include <array>
#include <utility>
#include <vector>

namespace Quarn {

namespace {

constexpr auto Delimiters = [] {
    std::array<bool, 256> table{};
    for (unsigned char const c : {'\\', '/', ';', ','}) {
        table[c] = true;
    }
    return table;
}();

bool IsDelimiter(char c)
{
    return Delimiters[static_cast<unsigned char>(c)];
}

// Takes the first name of a path, which is not empty, and the delimiters behind it.
std::string_view ParseKeyName(std::string_view& path)
{
    std::size_t length = 0;
    while (length < path.size() && !IsDelimiter(path[length])) {
        ++length;
    }
    std::string_view const name = path.substr(0, length);
    while (length < path.size() && IsDelimiter(path[length])) {
        ++length;
    }
    path.remove_prefix(length);
    return name;
}

// A path as far as its first zero byte; null is the empty path.
std::string_view Terminated(char const* text)
{
    return text != nullptr ? text : std::string_view();
}

} // namespace

PropertyKey::PropertyKey(string const& name, PropertyKey* parent) : m_name(name), m_parent(parent) {}

PropertyKey::PropertyKey(PropertyKey const& other)
    : m_name(other.m_name),
      m_dirty(other.m_dirty),
      m_parent(other.m_parent)
{
    CopyContents(other);
}

PropertyKey& PropertyKey::operator=(PropertyKey const& other)
{
    if (this == &other) {
        return *this;
    }
    PropertyKey contents(other);
    PropertyKey* const parent = Contains(other.m_parent) ? m_parent : other.m_parent;
    SetName(contents.m_name);
    m_dirty = contents.m_dirty;
    m_parent = parent;
    std::swap(m_children, contents.m_children);
    std::swap(m_values, contents.m_values);
    if (m_children != nullptr) {
        for (PropertyKey* const child : m_children->Items()) {
            child->m_parent = child->m_holder = this;
        }
    }
    if (m_values != nullptr) {
        for (PropertyValue* const value : m_values->Items()) {
            value->m_key = value->m_holder = this;
        }
    }
    return *this;
}

PropertyKey::~PropertyKey()
{
    // Frees the keys below one by one, so that a deep tree needs no deep stack; m_parent links those that are
    // still to be freed.
    PropertyKey* doomed = nullptr;
    auto const doom = [&doomed](PropertyKey const& key) {
        if (key.m_children != nullptr) {
            for (PropertyKey* const child : key.m_children->TakeAll()) {
                child->m_parent = doomed;
                doomed = child;
            }
        }
    };
    doom(*this);
    while (doomed != nullptr) {
        std::unique_ptr<PropertyKey> const key(doomed);
        doomed = key->m_parent;
        doom(*key);
    }
}

void PropertyKey::SetName(string const& name)
{
    string copy = name;
    if (m_holder != nullptr) {
        m_holder->m_children->Rename(this, std::move(copy));
    } else {
        m_name = std::move(copy);
    }
}

std::uint64_t PropertyKey::GetKeyCount() const
{
    return m_children != nullptr ? m_children->Items().size() : 0;
}

PropertyKey const* PropertyKey::GetSubKey(std::uint64_t index) const
{
    return index < GetKeyCount() ? m_children->Items()[index] : nullptr;
}

PropertyKey* PropertyKey::GetSubKey(std::uint64_t index)
{
    return const_cast<PropertyKey*>(std::as_const(*this).GetSubKey(index));
}

PropertyKey* PropertyKey::GetSubKey(char* path, bool create)
{
    PropertyKey* key = this;
    std::string_view rest = Terminated(path);
    while (key != nullptr && !rest.empty()) {
        std::string_view const name = ParseKeyName(rest);
        key = key->Step(name, create);
        path[name.data() + name.size() - path] = '\0';
    }
    return key;
}

PropertyKey* PropertyKey::GetSubKey(string const& path, bool create)
{
    return Walk(path.c_str(), create);
}

PropertyKey* PropertyKey::GetSubKey(char const* path)
{
    return Walk(Terminated(path), false);
}

PropertyKey const* PropertyKey::GetSubKey(char const* path) const
{
    return FindSubKey(Terminated(path));
}

PropertyKey* PropertyKey::AddSubKey(char const* path)
{
    return Walk(Terminated(path), true);
}

bool PropertyKey::HasSubKey(string const& path) const
{
    return FindSubKey(path.c_str()) != nullptr;
}

bool PropertyKey::RemoveSubKey(string const& path)
{
    PropertyKey* const key = Walk(path.c_str(), false);
    return key != nullptr && key->Remove();
}

bool PropertyKey::Remove()
{
    return m_parent != nullptr && m_parent->RemoveChild(this);
}

void PropertyKey::Clear()
{
    m_values.reset();
    m_children.reset();
    SetDirty();
}

void PropertyKey::SetDirty()
{
    for (PropertyKey* key = this; key != nullptr && !key->m_dirty; key = key->m_parent) {
        key->m_dirty = true;
    }
}

void PropertyKey::ClearDirty()
{
    // From key to key along their links: what has been saved must not fail for want of memory now.
    PropertyKey* key = this;
    while (key != nullptr) {
        bool const wasDirty = std::exchange(key->m_dirty, false);
        if (wasDirty && key->m_values != nullptr) {
            for (PropertyValue* const value : key->m_values->Items()) {
                value->ClearDirty();
            }
        }
        if (wasDirty && key->GetKeyCount() != 0) {
            key = key->m_children->Items().front();
            continue;
        }
        PropertyKey* next = nullptr;
        while (key != this && next == nullptr) {
            next = key->m_holder->m_children->After(key);
            key = key->m_holder;
        }
        key = next;
    }
}

bool PropertyKey::operator==(string const& name) const
{
    return detail::EqualNames(m_name, name);
}

bool PropertyKey::operator==(char const* name) const
{
    return name != nullptr && detail::EqualNames(m_name, name);
}

PropertyKey* PropertyKey::Step(std::string_view name, bool create)
{
    PropertyKey* const found = m_children != nullptr ? m_children->Find(name) : nullptr;
    if (found != nullptr || !create) {
        return found;
    }
    PropertyKey* const added = AddChild(string(name.data(), name.size()));
    SetDirty();
    return added;
}

PropertyKey* PropertyKey::Walk(std::string_view path, bool create)
{
    PropertyKey* key = this;
    while (key != nullptr && !path.empty()) {
        key = key->Step(ParseKeyName(path), create);
    }
    return key;
}

PropertyKey const* PropertyKey::FindSubKey(std::string_view path) const
{
    // Nothing changes unless keys are created.
    return const_cast<PropertyKey*>(this)->Walk(path, false);
}

PropertyKey* PropertyKey::AddChild(string const& name)
{
    if (m_children == nullptr) {
        m_children = std::make_unique<KeyList>();
    }
    auto child = std::make_unique<PropertyKey>(name, this);
    child->m_holder = this;
    return m_children->Append(std::move(child));
}

bool PropertyKey::RemoveChild(PropertyKey* child)
{
    if (child->m_holder != this) {
        return false;
    }
    std::unique_ptr<PropertyKey> const removed = m_children->Take(child);
    SetDirty();
    return true;
}

void PropertyKey::CopyContents(PropertyKey const& source)
{
    struct Pair
    {
        PropertyKey const* source;
        PropertyKey* copy;
    };
    std::vector<Pair> pairs{{&source, this}};
    while (!pairs.empty()) {
        Pair const pair = pairs.back();
        pairs.pop_back();
        if (pair.source->m_values != nullptr) {
            for (PropertyValue const* const value : pair.source->m_values->Items()) {
                pair.copy->AppendValue(std::make_unique<PropertyValue>(*value));
            }
        }
        if (pair.source->m_children != nullptr) {
            for (PropertyKey const* const child : pair.source->m_children->Items()) {
                PropertyKey* const copy = pair.copy->AddChild(child->m_name);
                copy->m_dirty = child->m_dirty;
                pairs.push_back({child, copy});
            }
        }
    }
}

bool PropertyKey::Contains(PropertyKey const* key) const
{
    std::vector<PropertyKey const*> keys{this};
    while (!keys.empty()) {
        PropertyKey const* const next = keys.back();
        keys.pop_back();
        if (next == key) {
            return true;
        }
        if (next->m_children != nullptr) {
            keys.insert(keys.end(), next->m_children->Items().begin(), next->m_children->Items().end());
        }
    }
    return false;
}

} // namespace Quarn
