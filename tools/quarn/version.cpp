#include "quarn/platform/version_info.h"
#include "quarn/platform/win32_api.h"

#include "file_commands.h"
#include "json.h"

#include <array>
#include <optional>

namespace tool {

namespace {

using Block = Win32Quarn::CVersionInfo;

struct Entry
{
    char const* name; // as the block calls it
    Quarn::string (Block::*get)() const;
};

constexpr std::array Entries = {
    Entry{"ProductName", &Block::GetProductName},
    Entry{"ProductVersion", &Block::GetProductVersion},
    Entry{"FileDescription", &Block::GetFileDescription},
    Entry{"FileVersion", &Block::GetFileVersion},
    Entry{"InternalName", &Block::GetInternalName},
    Entry{"CompanyName", &Block::GetCompanyName},
    Entry{"LegalCopyright", &Block::GetCopyright},
    Entry{"LegalTrademarks", &Block::GetLegalTrademarks},
    Entry{"PrivateBuild", &Block::GetPrivateBuild},
    Entry{"SpecialBuild", &Block::GetSpecialBuild},
    Entry{"Comments", &Block::GetComments},
};

// What the block has of this entry; without it the library gives the path of the query.
std::optional<std::string> TextOf(Block const& block, Entry const& entry)
{
    std::string text = (block.*entry.get)();
    if (text.starts_with("\\StringFileInfo\\") && text.ends_with(std::string("\\") + entry.name)) {
        return std::nullopt;
    }
    return text;
}

} // namespace

ExitCode PrintVersions(std::vector<std::string> const& files, bool json)
{
    ExitCode result = Done;
    std::optional<Json> output;
    if (json) {
        output.emplace().Array();
    }
    for (std::string const& file : files) {
        DWORD ignored = 0;
        if (::GetFileVersionInfoSizeA(file.c_str(), &ignored) == 0) {
            bool const isThere = ::GetFileAttributesA(file.c_str()) != INVALID_FILE_ATTRIBUTES;
            Warn(Printable(file) +
                 (isThere ? ": there is no version block in it" : ": there is no such file"));
            result = CannotRead;
            continue;
        }
        Block const block(file.c_str());
        if (output) {
            output->Object();
            output->Text("file", file);
        } else {
            Print(Paint(Colour::Strong, Printable(file)) + '\n');
        }
        for (Entry const& entry : Entries) {
            std::optional<std::string> const text = TextOf(block, entry);
            if (!text) {
                continue;
            }
            if (output) {
                output->Text(entry.name, *text);
            } else {
                std::string name = entry.name;
                name.resize(17, ' ');
                Print("  " + name + Printable(*text) + '\n');
            }
        }
        if (output) {
            output->End();
        }
    }
    if (output) {
        output->End();
    }
    return result;
}

} // namespace tool
