// The settings tree as its description reads, with plain lists searched from the front: what the library's
// tree is compared with. Slow, and not meant for values outside int32 and text.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct ModelKey;

struct ModelData
{
    bool isNumber = false;
    int number = 0;
    std::string text;
};

struct ModelValue
{
    std::string name;
    ModelData data;
    bool dirty = true;
    ModelKey* key = nullptr;

    void SetDirty();
    void SetData(ModelData const& changed);
};

struct ModelKey
{
    std::string name;
    bool dirty = false;
    ModelKey* parent = nullptr;
    std::vector<std::unique_ptr<ModelKey>> children;
    std::vector<std::unique_ptr<ModelValue>> values;

    // How the locale of the moment folds names: the letter pairs that it adds to ASCII.
    static inline std::vector<std::pair<std::string, std::string>> letterPairs;
    static bool Equal(std::string a, std::string b);

    ModelKey* GetSubKey(std::string_view path, bool create);
    bool Remove();
    ModelValue* Find(std::string_view name);
    ModelValue* GetValue(std::string_view address);
    ModelValue* SetValue(std::string_view name, ModelData const& data, bool create);
    ModelValue* AddValue(std::string_view name);
    ModelValue* SetFromSpec(std::string_view spec, bool number);
    bool RemoveValue(std::string_view name);
    void Clear();
    void SetDirty();
    void ClearDirty();
    void Assign(ModelKey const& other);
    bool Holds(ModelKey const* key) const;
    std::size_t Size() const;
    std::unique_ptr<ModelKey> Copy(ModelKey* newParent) const;
};
