// The settings of 10,000 values that every peer loads and saves. One operation is the whole file.
//
// A peer that makes a tree is done when it has its tree; one that only reports what it meets counts it. Every
// save is safe in the same way: a temporary file is written, flushed to the disk, and takes the name of the
// old one, and the folder is flushed.
#pragma once

#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <unistd.h>

namespace Bench {

// What was met: the values, and the bytes of their names, types and texts.
struct Seen
{
    std::size_t values = 0;
    std::size_t bytes = 0;
    void Add(std::size_t nameSize, std::size_t typeSize, std::size_t textSize)
    {
        ++values;
        bytes += nameSize + typeSize + textSize;
    }
    bool operator==(Seen const& other) const = default;
};

struct Value
{
    std::string name;
    std::string type;
    std::string text;
};

struct Key
{
    std::string name;
    std::vector<Value> values;
};

inline char const* const RootName = "Bench";
inline char const* const DocumentName = "Quarn_Properties";

// 100 keys of 100 values, in three types.
inline std::vector<Key> const& Keys()
{
    static std::vector<Key> const& keys = *[] {
        auto* const made = new std::vector<Key>(100);
        for (std::size_t k = 0; k < made->size(); ++k) {
            Key& key = (*made)[k];
            key.name = "Key" + std::to_string(k);
            for (std::size_t v = 0; v < 100; ++v) {
                std::string const name = "Value" + std::to_string(v);
                if (v % 3 == 0) {
                    key.values.push_back({name, "int32", std::to_string(k * v)});
                } else if (v % 3 == 1) {
                    key.values.push_back({name, "string", "a text of a usual length"});
                } else {
                    char digits[9];
                    std::snprintf(digits, sizeof digits, "010203%02zx", v);
                    key.values.push_back({name, "binary", digits});
                }
            }
        }
        return made;
    }();
    return keys;
}

inline Seen Expected()
{
    Seen seen;
    for (Key const& key : Keys()) {
        for (Value const& value : key.values) {
            seen.Add(value.name.size(), value.type.size(), value.text.size());
        }
    }
    return seen;
}

inline void Fill(Quarn::PropertyCollection& tree)
{
    for (Key const& key : Keys()) {
        Quarn::PropertyKey* const added = tree.AddSubKey(key.name.c_str());
        for (Value const& value : key.values) {
            added->SetValue(value.name, Quarn::PropertyData::Create(value.type, value.text), true);
        }
    }
}

inline Seen SeenIn(Quarn::PropertyCollection const& tree)
{
    Seen seen;
    for (std::uint64_t k = 0; k < tree.GetKeyCount(); ++k) {
        Quarn::PropertyKey const* const key = tree.GetSubKey(k);
        for (std::uint64_t v = 0; v < key->GetValueCount(); ++v) {
            Quarn::PropertyValue const* const value = key->GetValue(v);
            seen.Add(value->GetName().size(), value->GetDatatypeName().size(),
                     value->GetValueString().size());
        }
    }
    return seen;
}

// The settings file, in a folder of its own, for as long as a benchmark runs.
class SettingsFile
{
public:
    SettingsFile()
    {
        std::filesystem::create_directory(Folder);
        Fill(tree);
        if (!Quarn::Win32::XMLPropPersist(Path()).Persist(&tree)) {
            std::fprintf(stderr, "the settings file cannot be written\n");
            std::abort();
        }
    }
    SettingsFile(SettingsFile const&) = delete;
    SettingsFile& operator=(SettingsFile const&) = delete;
    ~SettingsFile() { std::filesystem::remove_all(Folder); }

    static char const* Path() { return "xml_bench/settings.xml"; }

    Quarn::PropertyCollection tree{RootName, DocumentName};

private:
    static constexpr char const* Folder = "xml_bench";
};

// Measures `load(path)`, whose result `see` is once asked for what it holds.
template<typename Load, typename See>
void MeasureLoad(benchmark::State& state, Load load, See see)
{
    SettingsFile const file;
    if (see(load(SettingsFile::Path())) != Expected()) {
        state.SkipWithError("not everything was loaded");
        return;
    }
    for (auto _ : state) {
        auto const loaded = load(SettingsFile::Path());
        benchmark::DoNotOptimize(&loaded);
    }
}

inline bool Flush(char const* path)
{
    int const file = ::open(path, O_RDONLY);
    bool const flushed = file >= 0 && ::fsync(file) == 0;
    ::close(file);
    return flushed;
}

// Measures `save(path)`, which writes the file anew and makes it safe. What it has saved has to load.
template<typename Save>
void MeasureSave(benchmark::State& state, Save save)
{
    for (auto _ : state) {
        if (!save(SettingsFile::Path())) {
            state.SkipWithError("not saved");
        }
    }
    Quarn::PropertyCollection tree;
    if (!Quarn::Win32::XMLPropPersist(SettingsFile::Path()).Populate(&tree) || SeenIn(tree) != Expected()) {
        state.SkipWithError("not everything was saved");
    }
}

// The same for a `write(path)` that makes nothing safe.
template<typename Write>
void MeasureWrite(benchmark::State& state, Write write)
{
    static constexpr char const* Temporary = "xml_bench/temporary.xml";
    MeasureSave(state, [&](char const* path) {
        write(Temporary);
        return Flush(Temporary) && std::rename(Temporary, path) == 0 && Flush("xml_bench");
    });
}

template<typename Function>
void RegisterLoad(std::string const& peer, Function function)
{
    benchmark::RegisterBenchmark(("settings load/" + peer + "/10,000 values").c_str(), function)
        ->Unit(benchmark::kMillisecond);
}

// By the clock on the wall: most of the time is the disk's.
template<typename Function>
void RegisterSave(std::string const& peer, Function function)
{
    benchmark::RegisterBenchmark(("settings save/" + peer + "/10,000 values").c_str(), function)
        ->Unit(benchmark::kMillisecond)
        ->UseRealTime();
}

} // namespace Bench
