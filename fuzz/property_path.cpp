// Key paths, value addresses and specification texts, line by line on one tree. Whatever the text: a creating
// walk reaches a key that the same path finds again, a specification's value is found under its name, and the
// tree equals its own copy.
//
// Input: lines; the first character chooses the operation, the rest is its text.
#include "quarn/properties/property_collection.h"

#include "fuzz/check.h"
#include "fuzz/memory_bound.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace {

using fuzz::Check;
using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

// Two characters of a path make a key.
constexpr fuzz::MemoryBound Bound = {"property_path", 2048, 96};

void Apply(PropertyCollection& root, char operation, Quarn::string const& text)
{
    switch (operation) {
    case 'a': {
        PropertyKey* const key = root.AddSubKey(text.c_str());
        Check(root.GetSubKey(text.c_str()) == key, "a created key is not found");
        break;
    }
    case 'r':
        Check(root.RemoveSubKey(text) || !root.HasSubKey(text) || root.GetSubKey(text.c_str()) == &root,
              "a key that is there is not removed");
        break;
    case 'i':
    case 's': {
        PropertyValue* const value =
            operation == 'i' ? root.SetValueInt32(text, false) : root.SetValueString(text, false);
        std::size_t const colon = text.find(':');
        Check(value == nullptr || root.GetSubKey(text.substr(0, colon), false)
                                          ->SetValue(value->GetName(), value->GetData(), false) == value,
              "a specified value is not found");
        break;
    }
    case 'v': {
        PropertyValue const* const value = root.GetValue(text);
        Check(root.HasValue(text) == (value != nullptr), "a value is there and is not");
        break;
    }
    case 'd': {
        std::uint64_t const count = root.GetValueCount();
        bool const removed = root.RemoveValue(text);
        Check(root.GetValueCount() + (removed ? 1 : 0) == count, "a removal miscounts");
        break;
    }
    case 'n':
        if (root.GetKeyCount() != 0) {
            root.GetSubKey(0)->SetName(text);
        }
        break;
    default: {
        Quarn::string path = text;
        PropertyKey const* const expected = root.GetSubKey(text, false);
        Check(root.GetSubKey(path.data(), false) == expected, "the walk in place differs");
        root.AddValue(text);
        break;
    }
    }
}

bool Equal(PropertyKey const& a, PropertyKey const& b)
{
    bool equal = a.GetName() == b.GetName() && a.Dirty() == b.Dirty() && a.GetKeyCount() == b.GetKeyCount() &&
                 a.GetValueCount() == b.GetValueCount();
    for (std::uint64_t i = 0; equal && i < a.GetValueCount(); ++i) {
        equal = a.GetValue(i)->GetName() == b.GetValue(i)->GetName() &&
                a.GetValue(i)->GetValueString() == b.GetValue(i)->GetValueString();
    }
    for (std::uint64_t i = 0; equal && i < a.GetKeyCount(); ++i) {
        equal = Equal(*a.GetSubKey(i), *b.GetSubKey(i));
    }
    return equal;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size)
{
    PropertyCollection root;
    fuzz::Watch(Bound, size, [&] {
        std::string_view rest(reinterpret_cast<char const*>(data), size);
        while (!rest.empty()) {
            std::string_view const line = rest.substr(0, rest.find('\n'));
            rest.remove_prefix(line.size() < rest.size() ? line.size() + 1 : line.size());
            if (!line.empty()) {
                Apply(root, line[0], Quarn::string(line.data() + 1, line.size() - 1));
            }
        }
    });
    // Equal walks the tree by recursion; inputs are far too short to make that deep.
    Check(Equal(root, PropertyCollection(root)), "the copy differs");
    root.ClearDirty();
    Check(!root.Dirty(), "still dirty");
    return 0;
}
