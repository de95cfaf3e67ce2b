// The settings tree beside a map of texts by their paths. The hash map, which keeps no order, is the limit.
#include "bench/tree_bench.h"

#include "quarn/properties/property_collection.h"

#include <charconv>
#include <map>
#include <unordered_map>

namespace {

struct Quarn
{
    struct Tree
    {
        ::Quarn::PropertyCollection root{"Bench", "Quarn_Properties"};
    };
    struct Path
    {
        ::Quarn::string key;
        ::Quarn::string value;
        ::Quarn::string whole;
    };
    static Path MakePath(Bench::Address const& address)
    {
        return {address.key, address.value, address.Path(":")};
    }
    // There is no call that sets a value by its whole path.
    static void Set(Tree& tree, Path const& path, long number)
    {
        tree.root.AddSubKey(path.key.c_str())->SetValue(path.value, ::Quarn::PropertyData(number), true);
    }
    static long Get(Tree const& tree, Path const& path) { return tree.root.GetValueInt32(path.whole, -1); }
};

template<typename Map>
struct Texts
{
    using Tree = Map;
    using Path = std::string;
    static Path MakePath(Bench::Address const& address) { return address.Path(":"); }
    static void Set(Tree& tree, Path const& path, long number)
    {
        tree.insert_or_assign(path, std::to_string(number));
    }
    static long Get(Tree const& tree, Path const& path)
    {
        std::string const& text = tree.find(path)->second;
        long number = -1;
        std::from_chars(text.data(), text.data() + text.size(), number);
        return number;
    }
};

// Ours alone: what a million values take.
void Million(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"keys", "values"})->Args({1, 1'000'000});
}

[[maybe_unused]] int const g_registered = [] {
    Bench::Register<Quarn>("quarn");
    Bench::Register<Texts<std::map<std::string, std::string>>>("std::map");
    Bench::Register<Texts<std::unordered_map<std::string, std::string>>>("limit: std::unordered_map");
    Million(benchmark::RegisterBenchmark("tree build/quarn", Bench::Build<Quarn>));
    Million(benchmark::RegisterBenchmark("tree look-up/quarn", Bench::LookUp<Quarn>));
    return 0;
}();

} // namespace
