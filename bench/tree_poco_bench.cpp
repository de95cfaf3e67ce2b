// Values in Poco's configuration, which keeps texts by their paths in a sorted map.
#include "bench/tree_bench.h"

#include <Poco/Util/MapConfiguration.h>

namespace {

struct Poco
{
    struct Tree
    {
        ::Poco::AutoPtr<::Poco::Util::MapConfiguration> map{new ::Poco::Util::MapConfiguration};
    };
    using Path = std::string;
    static Path MakePath(Bench::Address const& address) { return address.Path("."); }
    static void Set(Tree& tree, Path const& path, long number)
    {
        tree.map->setInt(path, static_cast<int>(number));
    }
    static long Get(Tree const& tree, Path const& path) { return tree.map->getInt(path); }
};

[[maybe_unused]] int const g_registered = (Bench::Register<Poco>("Poco MapConfiguration"), 0);

} // namespace
