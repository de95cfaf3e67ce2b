#include "tests/properties/tree_model.h"

#include <algorithm>
#include <utility>

#include <stdlib.h>

namespace {

std::string Fold(std::string text)
{
    for (auto const& [upper, lower] : ModelKey::letterPairs) {
        for (std::size_t at = text.find(upper); at != std::string::npos; at = text.find(upper, at + 1)) {
            text.replace(at, upper.size(), lower);
        }
    }
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c - 'A' + 'a');
        }
    }
    return text;
}

std::string OrDefault(std::string_view name)
{
    return name.empty() ? "DefaultValue" : std::string(name);
}

} // namespace

void ModelValue::SetDirty()
{
    if (!dirty) {
        dirty = true;
        if (key != nullptr && !key->dirty) {
            key->dirty = true;
            if (key->parent != nullptr) {
                key->parent->SetDirty();
            }
        }
    }
}

void ModelValue::SetData(ModelData const& changed)
{
    bool const equal =
        &changed == &data || (changed.isNumber && data.isNumber && changed.number == data.number);
    if (!equal) {
        data = changed;
        SetDirty();
    }
}

bool ModelKey::Equal(std::string a, std::string b)
{
    return Fold(std::move(a)) == Fold(std::move(b));
}

ModelKey* ModelKey::GetSubKey(std::string_view path, bool create)
{
    if (path.empty()) {
        return this;
    }
    constexpr char const* delimiters = "\\/;,";
    std::size_t const end = std::min(path.find_first_of(delimiters), path.size());
    std::size_t const next = std::min(path.find_first_not_of(delimiters, end), path.size());
    std::string const segment(path.substr(0, end));
    for (auto const& child : children) {
        if (Equal(child->name, segment)) {
            return child->GetSubKey(path.substr(next), create);
        }
    }
    if (!create) {
        return nullptr;
    }
    children.push_back(std::make_unique<ModelKey>());
    ModelKey* const added = children.back().get();
    added->name = segment;
    added->parent = this;
    SetDirty();
    return added->GetSubKey(path.substr(next), create);
}

bool ModelKey::Remove()
{
    if (parent == nullptr) {
        return false;
    }
    ModelKey* const owner = parent;
    auto const place = std::find_if(owner->children.begin(), owner->children.end(),
                                    [this](auto const& child) { return child.get() == this; });
    if (place == owner->children.end()) {
        return false;
    }
    owner->children.erase(place);
    owner->SetDirty();
    return true;
}

ModelValue* ModelKey::Find(std::string_view wanted)
{
    for (auto const& value : values) {
        if (Equal(value->name, std::string(wanted))) {
            return value.get();
        }
    }
    return nullptr;
}

ModelValue* ModelKey::GetValue(std::string_view address)
{
    std::size_t const colon = address.find(':');
    if (colon == std::string_view::npos) {
        return Find(OrDefault(address.substr(0, address.find('='))));
    }
    ModelKey* const key = GetSubKey(address.substr(0, colon), false);
    std::string_view const rest = address.substr(colon + 1);
    return key != nullptr ? key->GetValue(rest.substr(0, rest.find('='))) : nullptr;
}

ModelValue* ModelKey::SetValue(std::string_view wanted, ModelData const& data, bool create)
{
    std::string const literal = OrDefault(wanted);
    if (ModelValue* const found = Find(literal)) {
        found->SetData(data);
        return found;
    }
    if (!create) {
        return nullptr;
    }
    values.push_back(std::make_unique<ModelValue>(ModelValue{literal, data, true, this}));
    SetDirty();
    return values.back().get();
}

ModelValue* ModelKey::AddValue(std::string_view address)
{
    ModelValue* const found = GetValue(address);
    return found != nullptr ? found : SetValue(address, {}, true);
}

ModelValue* ModelKey::SetFromSpec(std::string_view spec, bool number)
{
    std::size_t const colon = spec.find(':');
    std::size_t const equals = colon == std::string_view::npos ? colon : spec.find('=', colon);
    if (equals == std::string_view::npos) {
        return nullptr;
    }
    ModelData data;
    data.text = spec.substr(equals + 1);
    if (number) {
        data = {true, static_cast<int>(::strtol(data.text.c_str(), nullptr, 10)), {}};
    }
    return GetSubKey(spec.substr(0, colon), true)
        ->SetValue(spec.substr(colon + 1, equals - colon - 1), data, true);
}

bool ModelKey::RemoveValue(std::string_view wanted)
{
    ModelValue const* const found = Find(OrDefault(wanted));
    if (found == nullptr) {
        return false;
    }
    std::erase_if(values, [found](auto const& value) { return value.get() == found; });
    SetDirty();
    return true;
}

void ModelKey::Clear()
{
    values.clear();
    children.clear();
    SetDirty();
}

void ModelKey::SetDirty()
{
    if (!dirty) {
        dirty = true;
        if (parent != nullptr) {
            parent->SetDirty();
        }
    }
}

void ModelKey::ClearDirty()
{
    if (!dirty) {
        return;
    }
    dirty = false;
    for (auto const& value : values) {
        value->dirty = false;
    }
    for (auto const& child : children) {
        child->ClearDirty();
    }
}

std::unique_ptr<ModelKey> ModelKey::Copy(ModelKey* newParent) const
{
    auto copy = std::make_unique<ModelKey>();
    copy->name = name;
    copy->dirty = dirty;
    copy->parent = newParent;
    for (auto const& value : values) {
        copy->values.push_back(std::make_unique<ModelValue>(*value));
        copy->values.back()->key = copy.get();
    }
    for (auto const& child : children) {
        copy->children.push_back(child->Copy(copy.get()));
    }
    return copy;
}

void ModelKey::Assign(ModelKey const& other)
{
    if (this == &other) {
        return;
    }
    std::unique_ptr<ModelKey> const copy = other.Copy(Holds(other.parent) ? parent : other.parent);
    std::swap(name, copy->name);
    std::swap(dirty, copy->dirty);
    std::swap(parent, copy->parent);
    std::swap(values, copy->values);
    std::swap(children, copy->children);
    for (auto const& value : values) {
        value->key = this;
    }
    for (auto const& child : children) {
        child->parent = this;
    }
}

bool ModelKey::Holds(ModelKey const* key) const
{
    return key == this || std::any_of(children.begin(), children.end(),
                                      [key](auto const& child) { return child->Holds(key); });
}

std::size_t ModelKey::Size() const
{
    std::size_t size = 1 + values.size();
    for (auto const& child : children) {
        size += child->Size();
    }
    return size;
}
