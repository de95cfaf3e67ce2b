#include "quarn/stream/crc32.h"

#include "file_bytes.h"
#include "file_commands.h"
#include "json.h"
#include "progress.h"

#include <cstdio>
#include <optional>

namespace tool {

namespace {

struct Checksum
{
    std::uint32_t crc = 0;
    std::uint64_t size = 0;
};

Checksum ChecksumOf(std::string const& file)
{
    constexpr std::size_t Piece = std::size_t{1} << 20;
    FileBytes bytes(file);
    Progress progress(file, bytes.Size());
    Quarn::CRC32 crc;
    Checksum result;
    for (std::string piece = bytes.Read(Piece); !piece.empty(); piece = bytes.Read(Piece)) {
        crc.Add(piece.data(), static_cast<unsigned long>(piece.size()));
        result.size += piece.size();
        progress.Advance(piece.size());
    }
    result.crc = static_cast<std::uint32_t>(crc.GetValue());
    return result;
}

} // namespace

ExitCode PrintChecksums(std::vector<std::string> const& files, bool json)
{
    ExitCode result = Done;
    std::optional<Json> output;
    if (json) {
        output.emplace().Array();
    }
    for (std::string const& file : files) {
        try {
            Checksum const checksum = ChecksumOf(file);
            char text[9];
            std::snprintf(text, sizeof text, "%08x", checksum.crc);
            if (output) {
                output->Object();
                output->Text("file", file);
                output->Text("crc32", text);
                output->Number("size", checksum.size);
                output->End();
            } else {
                Print(std::string(text) + "  " + std::to_string(checksum.size) + "  " + Printable(file) +
                      '\n');
            }
        } catch (Failure const& failure) {
            Warn(failure.what());
            result = failure.Code();
        }
    }
    if (output) {
        output->End();
    }
    return result;
}

} // namespace tool
