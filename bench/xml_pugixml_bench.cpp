// The settings file by pugixml, bare: its document, and nothing checked that it does not check by itself.
#include "bench/xml_bench.h"

#include <cstring>
#include <memory>

#include <pugixml.hpp>

namespace {

std::unique_ptr<pugi::xml_document> Load(char const* path)
{
    auto document = std::make_unique<pugi::xml_document>();
    document->load_file(path);
    return document;
}

Bench::Seen SeenIn(std::unique_ptr<pugi::xml_document> const& document)
{
    Bench::Seen seen;
    for (pugi::xml_node const key : document->document_element().child("Key").children("Key")) {
        for (pugi::xml_node const value : key.children("Value")) {
            seen.Add(std::strlen(value.attribute("Name").value()),
                     std::strlen(value.attribute("Type").value()), std::strlen(value.child_value()));
        }
    }
    return seen;
}

[[maybe_unused]] int const g_registered = [] {
    Bench::RegisterLoad("pugixml", [](benchmark::State& state) { Bench::MeasureLoad(state, Load, SeenIn); });
    Bench::RegisterSave("pugixml", [](benchmark::State& state) {
        Bench::SettingsFile const file;
        auto const document = Load(Bench::SettingsFile::Path());
        Bench::MeasureWrite(state, [&](char const* path) { document->save_file(path, "  "); });
    });
    return 0;
}();

} // namespace
