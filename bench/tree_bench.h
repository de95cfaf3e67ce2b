// Settings trees of 1,000 to 100,000 values: building them through the paths of their values, and looking up
// one of 1,024 integers by its path. One operation is a whole tree, or one look-up.
#pragma once

#include <cstddef>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace Bench {

// The keys "Key0" ... with the values "Value0" ... in each.
struct Shape
{
    std::size_t keys;
    std::size_t values;
};

inline Shape ShapeOf(benchmark::State const& state)
{
    return {static_cast<std::size_t>(state.range(0)), static_cast<std::size_t>(state.range(1))};
}

struct Address
{
    std::string key;
    std::string value;
    long number;
    std::string Path(char const* separator) const { return key + separator + value; }
};

inline std::vector<Address> Addresses(Shape shape)
{
    std::vector<Address> addresses;
    addresses.reserve(shape.keys * shape.values);
    for (std::size_t k = 0; k < shape.keys; ++k) {
        for (std::size_t v = 0; v < shape.values; ++v) {
            addresses.push_back({"Key" + std::to_string(k), "Value" + std::to_string(v),
                                 static_cast<long>(addresses.size())});
        }
    }
    return addresses;
}

// What the allocator has given away, its own overhead included; 0 where it does not tell.
inline std::size_t AllocatedBytes()
{
#ifdef __GLIBC__
    auto const info = ::mallinfo2();
    return info.uordblks + info.hblkhd;
#else
    return 0;
#endif
}

// A peer has a Tree, made empty; the Path type that it takes with MakePath(Address), ready before anything is
// measured; Set(Tree&, Path, long) and Get(Tree&, Path).

template<typename Peer>
std::vector<typename Peer::Path> PathsOf(std::vector<Address> const& addresses)
{
    std::vector<typename Peer::Path> paths;
    paths.reserve(addresses.size());
    for (Address const& address : addresses) {
        paths.push_back(Peer::MakePath(address));
    }
    return paths;
}

template<typename Peer>
void SetAll(typename Peer::Tree& tree, std::vector<typename Peer::Path> const& paths)
{
    long number = 0;
    for (typename Peer::Path const& path : paths) {
        Peer::Set(tree, path, number++);
    }
}

template<typename Peer>
void Build(benchmark::State& state)
{
    std::vector<typename Peer::Path> const paths = PathsOf<Peer>(Addresses(ShapeOf(state)));
    std::size_t const before = AllocatedBytes();
    auto measured = std::make_unique<typename Peer::Tree>();
    SetAll<Peer>(*measured, paths);
    state.counters["bytes per value"] =
        static_cast<double>(AllocatedBytes() - before) / static_cast<double>(paths.size());
    if (Peer::Get(*measured, paths.back()) != static_cast<long>(paths.size() - 1)) {
        state.SkipWithError("wrong value");
        return;
    }
    measured.reset();
    for (auto _ : state) {
        typename Peer::Tree tree;
        SetAll<Peer>(tree, paths);
        benchmark::DoNotOptimize(tree);
    }
}

template<typename Peer>
void LookUp(benchmark::State& state)
{
    std::vector<Address> const addresses = Addresses(ShapeOf(state));
    typename Peer::Tree tree;
    SetAll<Peer>(tree, PathsOf<Peer>(addresses));
    constexpr std::size_t PathCount = 1024;
    std::mt19937 random(1);
    std::vector<typename Peer::Path> paths;
    for (std::size_t i = 0; i < PathCount; ++i) {
        Address const& address = addresses[random() % addresses.size()];
        paths.push_back(Peer::MakePath(address));
        if (Peer::Get(tree, paths.back()) != address.number) {
            state.SkipWithError("wrong value");
            return;
        }
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(Peer::Get(tree, paths[i++ % PathCount]));
    }
}

inline void Shapes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"keys", "values"});
    bench->Args({100, 100})->Args({1, 1000})->Args({1, 10000})->Args({1, 100000});
}

template<typename Peer>
void Register(std::string const& name)
{
    Shapes(benchmark::RegisterBenchmark(("tree build/" + name).c_str(), Build<Peer>));
    Shapes(benchmark::RegisterBenchmark(("tree look-up/" + name).c_str(), LookUp<Peer>));
}

} // namespace Bench
