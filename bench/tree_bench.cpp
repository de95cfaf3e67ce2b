// Settings trees of 1,000 to 100,000 values: building through paths and looking up one value by its path.
#include "quarn/properties/property_collection.h"

#include <map>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

#include <benchmark/benchmark.h>

namespace {

// `keys` keys with `values` values each; the path is "Key12\\Value34" or, with one key, "Key0\\Value34".
struct Shape
{
    std::size_t keys;
    std::size_t values;
};

Shape ShapeOf(benchmark::State const& state)
{
    return {static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1))};
}

struct Address
{
    std::string key;
    std::string value;
    std::string path; // key:value
};

std::vector<Address> Addresses(Shape shape)
{
    std::vector<Address> addresses;
    for (std::size_t k = 0; k < shape.keys; ++k) {
        for (std::size_t v = 0; v < shape.values; ++v) {
            std::string const key = "Key" + std::to_string(k);
            std::string const value = "Value" + std::to_string(v);
            addresses.push_back({key, value, key + ":" + value});
        }
    }
    return addresses;
}

std::vector<std::string> RandomPaths(Shape shape)
{
    std::vector<Address> const addresses = Addresses(shape);
    std::mt19937 random(1);
    std::vector<std::string> paths(1024);
    for (std::string& path : paths) {
        path = addresses[random() % addresses.size()].path;
    }
    return paths;
}

void Build(Quarn::PropertyCollection& tree, std::vector<Address> const& addresses)
{
    long number = 0;
    for (Address const& address : addresses) {
        tree.AddSubKey(address.key.c_str())->SetValue(address.value, Quarn::PropertyData(number++), true);
    }
}

void BuildQuarn(benchmark::State& state)
{
    std::vector<Address> const addresses = Addresses(ShapeOf(state));
    for (auto _ : state) {
        Quarn::PropertyCollection tree("Bench", "Quarn_Properties");
        Build(tree, addresses);
        benchmark::DoNotOptimize(tree);
    }
}

template<typename Map>
void BuildMap(benchmark::State& state)
{
    std::vector<Address> const addresses = Addresses(ShapeOf(state));
    for (auto _ : state) {
        Map map;
        long number = 0;
        for (Address const& address : addresses) {
            map[address.path] = std::to_string(number++);
        }
        benchmark::DoNotOptimize(map);
    }
}

void LookUpQuarn(benchmark::State& state)
{
    Quarn::PropertyCollection tree("Bench", "Quarn_Properties");
    Build(tree, Addresses(ShapeOf(state)));
    std::vector<Quarn::string> paths;
    for (std::string const& path : RandomPaths(ShapeOf(state))) {
        paths.emplace_back(path);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(tree.GetValueInt32(paths[i++ % paths.size()], -1));
    }
}

template<typename Map>
void LookUpMap(benchmark::State& state)
{
    Map map;
    long number = 0;
    for (Address const& address : Addresses(ShapeOf(state))) {
        map[address.path] = std::to_string(number++);
    }
    std::vector<std::string> const paths = RandomPaths(ShapeOf(state));
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(std::stol(map.find(paths[i++ % paths.size()])->second));
    }
}

void Shapes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"keys", "values"});
    bench->Args({100, 100})->Args({1, 1000})->Args({1, 10000})->Args({1, 100000});
}

using Sorted = std::map<std::string, std::string>;
using Hashed = std::unordered_map<std::string, std::string>;

BENCHMARK(BuildQuarn)->Name("tree build/quarn")->Apply(Shapes);
BENCHMARK(BuildMap<Sorted>)->Name("tree build/std::map of texts")->Apply(Shapes);
BENCHMARK(BuildMap<Hashed>)->Name("tree build/limit: std::unordered_map of texts")->Apply(Shapes);
BENCHMARK(LookUpQuarn)->Name("tree look-up/quarn")->Apply(Shapes);
BENCHMARK(LookUpMap<Sorted>)->Name("tree look-up/std::map of texts")->Apply(Shapes);
BENCHMARK(LookUpMap<Hashed>)->Name("tree look-up/limit: std::unordered_map of texts")->Apply(Shapes);

} // namespace
