// The settings file by Boost's property tree.
#include "bench/xml_bench.h"

#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>

namespace {

namespace pt = boost::property_tree;

pt::ptree Load(char const* path)
{
    pt::ptree tree;
    pt::read_xml(path, tree, pt::xml_parser::trim_whitespace);
    return tree;
}

Bench::Seen SeenIn(pt::ptree const& tree)
{
    Bench::Seen seen;
    for (auto const& [element, key] : tree.get_child("Quarn_Properties.Key")) {
        for (auto const& [name, value] : key) {
            if (name == "Value") {
                seen.Add(value.get<std::string>("<xmlattr>.Name").size(),
                         value.get<std::string>("<xmlattr>.Type").size(), value.data().size());
            }
        }
    }
    return seen;
}

[[maybe_unused]] int const g_registered = [] {
    Bench::RegisterLoad("Boost read_xml",
                        [](benchmark::State& state) { Bench::MeasureLoad(state, Load, SeenIn); });
    Bench::RegisterSave("Boost write_xml", [](benchmark::State& state) {
        Bench::SettingsFile const file;
        pt::ptree const tree = Load(Bench::SettingsFile::Path());
        Bench::MeasureWrite(state, [&](char const* path) {
            pt::write_xml(path, tree, std::locale(), pt::xml_writer_make_settings<std::string>(' ', 2));
        });
    });
    return 0;
}();

} // namespace
