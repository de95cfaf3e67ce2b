#include "json.h"
#include "registry_commands.h"
#include "registry_tree.h"

#include <optional>

namespace tool {

namespace {

std::string ShownData(RegistryData const& data)
{
    switch (data.type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
        return Quoted(TextOf(data));
    case REG_DWORD:
        return std::to_string(static_cast<std::int32_t>(NumberOf(data)));
    default:
        return Hex(data.bytes);
    }
}

void AddData(Json& json, RegistryData const& data)
{
    json.Text("type", RegistryTypeName(data.type));
    switch (data.type) {
    case REG_SZ:
    case REG_EXPAND_SZ:
        json.Text("value", TextOf(data));
        break;
    case REG_DWORD:
        json.Number("value", static_cast<std::int32_t>(NumberOf(data)));
        break;
    default:
        json.Text("value", Hex(data.bytes));
        break;
    }
}

void PrintJson(RegistryPath const& path)
{
    Json json;
    json.Object();
    json.Text("key", path.Text());
    json.Array("keys");
    bool isFirst = true;
    RegistryVisitor const visitor{[&](std::string const& below) {
                                      if (!isFirst) {
                                          json.End();
                                          json.End();
                                      }
                                      isFirst = false;
                                      json.Object();
                                      json.Text("path", below);
                                      json.Array("values");
                                  },
                                  [&](std::string const&, std::string const& name, RegistryData const& data) {
                                      json.Object();
                                      json.Text("name", name);
                                      AddData(json, data);
                                      json.End();
                                  }};
    WalkRegistry(path, visitor);
    json.End();
    json.End();
    json.End();
    json.End();
}

} // namespace

ExitCode ShowRegistry(std::string const& text, bool json)
{
    RegistryPath const path(text);
    if (json) {
        PrintJson(path);
        return Done;
    }
    RegistryVisitor const visitor{[&](std::string const& below) {
                                      std::string const full =
                                          path.Text() + (below.empty() ? "" : "\\") + below;
                                      Print(Paint(Colour::Strong, Printable(full)) + '\n');
                                  },
                                  [](std::string const&, std::string const& name, RegistryData const& data) {
                                      std::string line =
                                          "  " + (name.empty() ? "(default)" : Printable(name));
                                      line.resize(std::max<std::size_t>(line.size(), 26), ' ');
                                      line += "  " + RegistryTypeName(data.type);
                                      line.resize(std::max<std::size_t>(line.size(), 42), ' ');
                                      Print(line + ' ' + ShownData(data) + '\n');
                                  }};
    WalkRegistry(path, visitor);
    return Done;
}

} // namespace tool
