#include "json.h"
#include "settings_commands.h"
#include "settings_tree.h"

#include <unordered_map>

namespace tool {

namespace {

using Quarn::PropertyData;

struct Change
{
    std::string address;
    PropertyData const* before; // null for what has been added
    PropertyData const* after;  // null for what has been removed
    bool isKey;                 // a key; before and after then tell by null alone
};

// What stands for the key in a change of a key.
PropertyData const SomeKey;

using Keys = std::unordered_map<std::string, Quarn::PropertyKey const*>;
using Values = std::unordered_map<std::string, Quarn::PropertyValue const*>;

Keys KeysOf(Quarn::PropertyKey const& key)
{
    Keys keys;
    for (std::uint64_t i = 0; i < key.GetKeyCount(); ++i) {
        keys.emplace(FoldedName(key.GetSubKey(i)->GetName()), key.GetSubKey(i));
    }
    return keys;
}

Values ValuesOf(Quarn::PropertyKey const& key)
{
    Values values;
    for (std::uint64_t i = 0; i < key.GetValueCount(); ++i) {
        values.emplace(FoldedName(key.GetValue(i)->GetName()), key.GetValue(i));
    }
    return values;
}

class Comparison
{
public:
    // The depth of a tree that was loaded is bounded.
    // NOLINTNEXTLINE(misc-no-recursion)
    void Compare(std::string const& path, Quarn::PropertyKey const& before, Quarn::PropertyKey const& after)
    {
        CompareValues(path, before, after);
        Keys const others = KeysOf(after);
        for (std::uint64_t i = 0; i < before.GetKeyCount(); ++i) {
            Quarn::PropertyKey const& key = *before.GetSubKey(i);
            auto const other = others.find(FoldedName(key.GetName()));
            if (other != others.end()) {
                Compare(JoinPath(path, key.GetName()), key, *other->second);
            } else {
                AddWhole(JoinPath(path, key.GetName()), key, false);
            }
        }
        Keys const known = KeysOf(before);
        for (std::uint64_t i = 0; i < after.GetKeyCount(); ++i) {
            Quarn::PropertyKey const& key = *after.GetSubKey(i);
            if (!known.contains(FoldedName(key.GetName()))) {
                AddWhole(JoinPath(path, key.GetName()), key, true);
            }
        }
    }

    std::vector<Change> const& Changes() const { return m_changes; }

private:
    void CompareValues(std::string const& path, Quarn::PropertyKey const& before,
                       Quarn::PropertyKey const& after)
    {
        Values const others = ValuesOf(after);
        for (std::uint64_t i = 0; i < before.GetValueCount(); ++i) {
            Quarn::PropertyValue const& value = *before.GetValue(i);
            auto const other = others.find(FoldedName(value.GetName()));
            if (other == others.end()) {
                m_changes.push_back({AddressOf(path, value), &value.GetData(), nullptr, false});
            } else if (value.GetDataType() != other->second->GetDataType() ||
                       value.GetValueString() != other->second->GetValueString()) {
                m_changes.push_back(
                    {AddressOf(path, value), &value.GetData(), &other->second->GetData(), false});
            }
        }
        Values const known = ValuesOf(before);
        for (std::uint64_t i = 0; i < after.GetValueCount(); ++i) {
            Quarn::PropertyValue const& value = *after.GetValue(i);
            if (!known.contains(FoldedName(value.GetName()))) {
                m_changes.push_back({AddressOf(path, value), nullptr, &value.GetData(), false});
            }
        }
    }

    // A key that one side has alone, with all below.
    void AddWhole(std::string const& top, Quarn::PropertyKey const& key, bool isNew)
    {
        auto const add = [&](std::string address, PropertyData const& data, bool isKey) {
            m_changes.push_back(
                {std::move(address), isNew ? nullptr : &data, isNew ? &data : nullptr, isKey});
        };
        WalkKeys(key, [&](std::string const& below, Quarn::PropertyKey const& found) {
            std::string const path = JoinPath(top, below);
            add(path + '\\', SomeKey, true);
            for (std::uint64_t i = 0; i < found.GetValueCount(); ++i) {
                add(AddressOf(path, *found.GetValue(i)), found.GetValue(i)->GetData(), false);
            }
        });
    }

    std::vector<Change> m_changes;
};

char const* NameOf(Change const& change)
{
    return change.before == nullptr ? "added" : change.after == nullptr ? "removed" : "changed";
}

void PrintChange(Change const& change)
{
    std::string const address = Printable(change.address);
    auto const shown = [](PropertyData const& data) {
        return ShownValue(data) + " (" + data.GetTypename() + ')';
    };
    if (change.before != nullptr && change.after != nullptr) {
        bool const sameType = change.before->GetType() == change.after->GetType();
        Print("~ " + address + " = " +
              Paint(Colour::Bad, sameType ? ShownValue(*change.before) : shown(*change.before)) + " -> " +
              Paint(Colour::Good, shown(*change.after)) + '\n');
    } else {
        bool const isNew = change.before == nullptr;
        PropertyData const& data = isNew ? *change.after : *change.before;
        Print(Paint(isNew ? Colour::Good : Colour::Bad,
                    std::string(isNew ? "+ " : "- ") + address + (change.isKey ? "" : " = " + shown(data))) +
              '\n');
    }
}

void PrintAsJson(std::string const& before, std::string const& after, std::vector<Change> const& changes)
{
    Json json;
    json.Object();
    json.Text("before", before);
    json.Text("after", after);
    json.Bool("equal", changes.empty());
    json.Array("changes");
    for (Change const& change : changes) {
        json.Object();
        json.Text("change", NameOf(change));
        json.Text(change.isKey ? "key" : "address", change.address);
        for (auto const& [name, data] : {std::pair("old", change.before), std::pair("new", change.after)}) {
            if (data != nullptr && !change.isKey) {
                json.Object(name);
                AddData(json, *data);
                json.End();
            }
        }
        json.End();
    }
    json.End();
    json.End();
}

} // namespace

ExitCode DiffSettings(std::string const& before, std::string const& after, bool json)
{
    Quarn::PropertyCollection first;
    Quarn::PropertyCollection second;
    LoadWhole(before, first);
    LoadWhole(after, second);
    PropertyData const documents[] = {first.GetDocumentDescription(), second.GetDocumentDescription()};
    PropertyData const names[] = {first.GetName(), second.GetName()};
    std::vector<Change> changes;
    if (documents[0].GetDataString() != documents[1].GetDataString()) {
        changes.push_back({"(document)", &documents[0], &documents[1], false});
    }
    if (names[0].GetDataString() != names[1].GetDataString()) {
        changes.push_back({"(name)", &names[0], &names[1], false});
    }
    Comparison comparison;
    comparison.Compare("", first, second);
    changes.insert(changes.end(), comparison.Changes().begin(), comparison.Changes().end());
    if (json) {
        PrintAsJson(before, after, changes);
    } else {
        if (!changes.empty()) {
            Print(Paint(Colour::Strong, "--- " + Printable(before) + "\n+++ " + Printable(after)) + '\n');
        }
        for (Change const& change : changes) {
            PrintChange(change);
        }
    }
    return changes.empty() ? Done : Differs;
}

} // namespace tool
