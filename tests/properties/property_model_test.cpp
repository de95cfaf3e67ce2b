// Random operations on the tree and on a simple model of it: every result and, again and again, the whole
// tree must be the same.
#include "quarn/properties/property_collection.h"

#include "tests/properties/test_locale.h"
#include "tests/properties/tree_model.h"

#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;
using Quarn::PropertyValue;

class Walker
{
public:
    Walker(unsigned seed, int names) : m_random(seed), m_names(names) { TestLocale::UseC(); }
    ~Walker() { ModelKey::letterPairs.clear(); }
    Walker(Walker const&) = delete;
    Walker& operator=(Walker const&) = delete;

    // One random operation on both trees; false when the results differ.
    void Step()
    {
        auto const [key, model] = AnyKey();
        switch (Below(24)) {
        case 0:
        case 1: {
            Quarn::string const path = Path();
            m_log = "AddSubKey " + path;
            Same(key->AddSubKey(path.c_str()), model->GetSubKey(path, true));
            break;
        }
        case 2: {
            Quarn::string const path = Path();
            m_log = "GetSubKey " + path;
            Same(std::as_const(*key).GetSubKey(path.c_str()), model->GetSubKey(path, false));
            break;
        }
        case 3: {
            Quarn::string path = Path();
            m_log = "GetSubKey in place " + path;
            bool const create = Below(4) == 0;
            ModelKey* const expected = model->GetSubKey(path, create);
            Same(key->GetSubKey(path.data(), create), expected);
            break;
        }
        case 4: {
            Quarn::string const path = Path();
            m_log = "RemoveSubKey " + path;
            ModelKey* const doomed = model->GetSubKey(path, false);
            EXPECT_EQ(key->RemoveSubKey(path), doomed != nullptr && doomed->Remove());
            break;
        }
        case 5:
            m_log = "Remove";
            if (Below(4) == 0) {
                EXPECT_EQ(key->Remove(), model->Remove());
            }
            break;
        case 6: {
            Quarn::string const name = Name();
            m_log = "SetName " + name;
            if (key != &m_root) {
                key->SetName(name);
                model->name = name;
            }
            break;
        }
        case 7:
        case 8:
        case 9: {
            Quarn::string const name = Name();
            bool const create = Below(4) != 0;
            m_log = "SetValue " + name;
            auto const [data, modelData] = Data();
            Same(key->SetValue(name, data, create), model->SetValue(name, modelData, create));
            break;
        }
        case 10: {
            Quarn::string const address = Address();
            m_log = "AddValue " + address;
            Same(key->AddValue(address), model->AddValue(address));
            break;
        }
        case 11:
        case 12: {
            Quarn::string const address = Address();
            m_log = "GetValue " + address;
            ModelValue const* const expected = model->GetValue(address);
            Same(std::as_const(*key).GetValue(address), expected);
            EXPECT_EQ(key->HasValue(address), expected != nullptr);
            break;
        }
        case 13: {
            Quarn::string const name = Name();
            m_log = "RemoveValue " + name;
            EXPECT_EQ(key->RemoveValue(name), model->RemoveValue(name));
            break;
        }
        case 14: {
            Quarn::string spec = Address();
            spec += Below(4) == 0 ? "7" : "=7";
            m_log = "SetFromSpec " + spec;
            if (Below(2) == 0) {
                Same(key->SetValueInt32(spec, false), model->SetFromSpec(spec, true));
            } else {
                Same(key->SetValueString(spec, true), model->SetFromSpec(spec, false));
            }
            break;
        }
        case 15:
        case 16:
            ChangeAValue(*key, *model);
            break;
        case 17:
        case 18:
            AssignAValue(*key, *model);
            break;
        case 19:
            AssignAKey(*key, *model);
            break;
        case 20:
            m_log = "SetDirty";
            key->SetDirty();
            model->SetDirty();
            break;
        case 21:
            m_log = "ClearDirty";
            key->ClearDirty();
            model->ClearDirty();
            break;
        case 22:
            m_log = "locale";
            ChangeTheLocale();
            break;
        case 23:
            m_log = "Clear";
            if (Below(8) == 0 || m_model.Size() > 2000) {
                PropertyKey& cleared = m_model.Size() > 2000 ? m_root : *key;
                ModelKey& clearedModel = m_model.Size() > 2000 ? m_model : *model;
                cleared.Clear();
                clearedModel.Clear();
            }
            break;
        default:
            break;
        }
    }

    void Compare() const { CompareKeys(m_root, m_model); }
    std::string const& Log() const { return m_log; }

private:
    unsigned Below(unsigned limit) { return static_cast<unsigned>(m_random() % limit); }

    Quarn::string Name()
    {
        unsigned const number = Below(static_cast<unsigned>(m_names));
        if (number == 0) {
            return "";
        }
        if (number == 1) {
            return Below(2) == 0 ? "DefaultValue" : "defaultvalue";
        }
        char const* const letters[] = {
            "n", "N", m_locale.UpperA(), m_locale.LowerA(), m_locale.UpperO(), m_locale.LowerO()};
        return Quarn::string(letters[Below(6)]) + std::to_string(number / 3);
    }

    Quarn::string Path()
    {
        Quarn::string path;
        for (unsigned segments = Below(4); segments > 0; --segments) {
            path += Name();
            path += segments > 1 || Below(8) == 0 ? std::string(1 + Below(2), "\\/;,"[Below(4)]) : "";
        }
        return path;
    }

    Quarn::string Address()
    {
        Quarn::string address;
        for (unsigned colons = Below(4) % 3; colons > 0; --colons) {
            address += Path() + ":";
        }
        return address + Name() + (Below(6) == 0 ? "=x:y" : "");
    }

    std::pair<PropertyData, ModelData> Data()
    {
        int const number = static_cast<int>(Below(3));
        if (Below(2) == 0) {
            return {PropertyData(number), {true, number, {}}};
        }
        std::string const text = std::to_string(number);
        return {PropertyData(Quarn::string(text)), {false, 0, text}};
    }

    // A key somewhere in both trees.
    std::pair<PropertyKey*, ModelKey*> AnyKey()
    {
        PropertyKey* key = &m_root;
        ModelKey* model = &m_model;
        while (!model->children.empty() && Below(3) != 0) {
            unsigned const place = Below(static_cast<unsigned>(model->children.size()));
            key = key->GetSubKey(place);
            model = model->children[place].get();
        }
        return {key, model};
    }

    void ChangeAValue(PropertyKey& key, ModelKey& model)
    {
        m_log = "change a value";
        if (model.values.empty()) {
            return;
        }
        unsigned const place = Below(static_cast<unsigned>(model.values.size()));
        PropertyValue& value = *key.GetValue(place);
        ModelValue& modelValue = *model.values[place];
        auto const [data, modelData] = Data();
        switch (Below(5)) {
        case 0:
            value.SetData(data);
            modelValue.SetData(modelData);
            break;
        case 1:
            value.SetData(value.GetData());
            break;
        case 2:
            value.SetValue(7);
            modelValue.data = {true, 7, {}};
            modelValue.SetDirty();
            break;
        case 3:
            value.SetDirty();
            modelValue.SetDirty();
            break;
        default:
            value.ClearDirty();
            modelValue.dirty = false;
            break;
        }
    }

    // Through a handed-out pointer: from a value of the same key, or from one that belongs to the root.
    void AssignAValue(PropertyKey& key, ModelKey& model)
    {
        m_log = "assign a value";
        if (model.values.empty()) {
            return;
        }
        unsigned const place = Below(static_cast<unsigned>(model.values.size()));
        if (Below(2) == 0) {
            unsigned const from = Below(static_cast<unsigned>(model.values.size()));
            *key.GetValue(place) = *key.GetValue(from);
            *model.values[place] = ModelValue(*model.values[from]);
        } else {
            Quarn::string const name = Name();
            auto const [data, modelData] = Data();
            *key.GetValue(place) = PropertyValue(name, data, &m_root);
            *model.values[place] = ModelValue{name, modelData, true, &m_model};
        }
    }

    // From a sibling, a descendant or an ancestor, so that no parent link outlives its key.
    void AssignAKey(PropertyKey& key, ModelKey& model)
    {
        m_log = "assign a key";
        if (m_model.Size() > 500 || model.parent == nullptr) {
            return;
        }
        PropertyKey* source = key.GetParentKey();
        ModelKey* modelSource = model.parent;
        unsigned const kind = Below(3);
        if (kind == 0) {
            unsigned const place = Below(static_cast<unsigned>(modelSource->children.size()));
            source = source->GetSubKey(place);
            modelSource = modelSource->children[place].get();
        } else if (kind == 1 && !model.children.empty()) {
            source = key.GetSubKey(0);
            modelSource = model.children[0].get();
        }
        key = *source;
        model.Assign(*modelSource);
    }

    void ChangeTheLocale()
    {
        if (ModelKey::letterPairs.empty()) {
            m_locale.Use();
            ModelKey::letterPairs = {{m_locale.UpperA(), m_locale.LowerA()},
                                     {m_locale.UpperO(), m_locale.LowerO()}};
        } else {
            TestLocale::UseC();
            ModelKey::letterPairs.clear();
        }
    }

    // The same place in both trees, found by walking down to it.
    void Same(PropertyKey const* key, ModelKey const* model) const
    {
        ASSERT_EQ(key == nullptr, model == nullptr);
        if (key != nullptr) {
            EXPECT_EQ(key->GetName(), model->name);
            EXPECT_EQ(Place(m_root, key), Place(m_model, model));
        }
    }
    void Same(PropertyValue const* value, ModelValue const* model) const
    {
        ASSERT_EQ(value == nullptr, model == nullptr);
        if (value != nullptr) {
            EXPECT_EQ(Place(m_root, value), Place(m_model, model));
        }
    }

    static PropertyKey const& Child(PropertyKey const& key, std::size_t i) { return *key.GetSubKey(i); }
    static ModelKey const& Child(ModelKey const& key, std::size_t i) { return *key.children[i]; }
    static PropertyValue const& Value(PropertyKey const& key, std::size_t i) { return *key.GetValue(i); }
    static ModelValue const& Value(ModelKey const& key, std::size_t i) { return *key.values[i]; }
    static std::size_t Children(PropertyKey const& key) { return key.GetKeyCount(); }
    static std::size_t Children(ModelKey const& key) { return key.children.size(); }
    static std::size_t Values(PropertyKey const& key) { return key.GetValueCount(); }
    static std::size_t Values(ModelKey const& key) { return key.values.size(); }

    // Where an object stands: its number in the order of a walk through the tree.
    template<typename Key>
    static int Place(Key const& root, void const* object)
    {
        int number = 0;
        return Search(root, object, number) ? number : -1;
    }
    template<typename Key>
    static bool Search(Key const& key, void const* object, int& number)
    {
        ++number;
        if (&key == object) {
            return true;
        }
        for (std::size_t i = 0; i < Values(key); ++i) {
            ++number;
            if (&Value(key, i) == object) {
                return true;
            }
        }
        for (std::size_t i = 0; i < Children(key); ++i) {
            if (Search(Child(key, i), object, number)) {
                return true;
            }
        }
        return false;
    }

    void CompareKeys(PropertyKey const& key, ModelKey const& model) const
    {
        ASSERT_EQ(key.GetName(), model.name);
        ASSERT_EQ(key.Dirty(), model.dirty) << model.name;
        ASSERT_EQ(key.GetParentKey() == nullptr, model.parent == nullptr);
        if (model.parent != nullptr) {
            ASSERT_EQ(key.GetParentKey()->GetName(), model.parent->name);
        }
        ASSERT_EQ(key.GetValueCount(), model.values.size());
        for (std::size_t i = 0; i < model.values.size(); ++i) {
            PropertyValue const& value = *key.GetValue(i);
            ModelValue const& expected = *model.values[i];
            ASSERT_EQ(value.GetName(), expected.name.empty() ? "DefaultValue" : expected.name);
            ASSERT_EQ(value.Dirty(), expected.dirty) << expected.name;
            ASSERT_EQ(value.GetValueString(),
                      expected.data.isNumber ? std::to_string(expected.data.number) : expected.data.text);
            ASSERT_EQ(value.GetDataType(),
                      expected.data.isNumber ? PropertyData::TypeInt32 : PropertyData::TypeString);
        }
        ASSERT_EQ(key.GetKeyCount(), model.children.size());
        for (std::size_t i = 0; i < model.children.size(); ++i) {
            ASSERT_NO_FATAL_FAILURE(CompareKeys(*key.GetSubKey(i), *model.children[i]));
        }
    }

    TestLocale m_locale;
    std::mt19937 m_random;
    int m_names;
    PropertyCollection m_root;
    ModelKey m_model;
    std::string m_log;
};

// With few names the lists are short and their names collide; with many, the lists are long and indexed.
class PropertyModel : public testing::TestWithParam<std::tuple<unsigned, int>>
{};

TEST_P(PropertyModel, AgreesAfterEveryOperation)
{
    auto const [seed, names] = GetParam();
    Walker walker(seed, names);
    for (int step = 0; step < 6000; ++step) {
        ASSERT_NO_FATAL_FAILURE(walker.Step()) << "step " << step << ": " << walker.Log();
        if (step % 8 == 0) {
            ASSERT_NO_FATAL_FAILURE(walker.Compare()) << "step " << step << ": " << walker.Log();
        }
        ASSERT_FALSE(testing::Test::HasFailure()) << "step " << step << ": " << walker.Log();
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, PropertyModel,
                         testing::Combine(testing::Values(1U, 2U, 3U), testing::Values(6, 30, 200)));

} // namespace
