// Values in Boost's property tree.
#include "bench/tree_bench.h"

#include <boost/property_tree/ptree.hpp>

namespace {

struct Boost
{
    using Tree = boost::property_tree::ptree;
    using Path = Tree::path_type;
    static Path MakePath(Bench::Address const& address) { return Path(address.Path(".")); }
    static void Set(Tree& tree, Path const& path, long number) { tree.put(path, number); }
    static long Get(Tree const& tree, Path const& path) { return tree.get<long>(path); }
};

[[maybe_unused]] int const g_registered = (Bench::Register<Boost>("Boost.PropertyTree"), 0);

} // namespace
