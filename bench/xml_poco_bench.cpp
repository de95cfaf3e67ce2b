// The settings file by Poco's XML configuration.
#include "bench/xml_bench.h"

#include <Poco/Util/XMLConfiguration.h>

namespace {

using Configuration = Poco::AutoPtr<Poco::Util::XMLConfiguration>;

Configuration Load(char const* path)
{
    Configuration configuration(new Poco::Util::XMLConfiguration);
    configuration->load(path);
    return configuration;
}

Bench::Seen SeenIn(Configuration const& configuration)
{
    Bench::Seen seen;
    for (std::size_t k = 0; k < Bench::Keys().size(); ++k) {
        for (std::size_t v = 0; v < Bench::Keys()[k].values.size(); ++v) {
            std::string const path = "Key.Key[" + std::to_string(k) + "].Value[" + std::to_string(v) + "]";
            seen.Add(configuration->getString(path + "[@Name]").size(),
                     configuration->getString(path + "[@Type]").size(),
                     configuration->getString(path).size());
        }
    }
    return seen;
}

[[maybe_unused]] int const g_registered = [] {
    Bench::RegisterLoad("Poco XMLConfiguration",
                        [](benchmark::State& state) { Bench::MeasureLoad(state, Load, SeenIn); });
    Bench::RegisterSave("Poco XMLConfiguration", [](benchmark::State& state) {
        Bench::SettingsFile const file;
        Configuration const configuration = Load(Bench::SettingsFile::Path());
        Bench::MeasureWrite(state, [&](char const* path) { configuration->save(path); });
    });
    return 0;
}();

} // namespace
