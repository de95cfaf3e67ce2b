#include "quarn/stream/header_block.h"
#include "quarn/stream/memory_stream.h"

#include "file_bytes.h"
#include "file_commands.h"
#include "json.h"
#include "progress.h"
#include "string_search.h"

#include <algorithm>
#include <cstdio>
#include <functional>
#include <optional>

namespace tool {

namespace {

constexpr std::size_t HeaderSize = 8;
constexpr std::size_t RowSize = 16;
// How much of a string is shown: to people, and in JSON.
constexpr std::size_t ShownBytes = 48;
constexpr std::size_t JsonBytes = 4096;

std::string Number(char const* format, std::uint64_t number)
{
    char text[32];
    std::snprintf(text, sizeof text, format, static_cast<unsigned long long>(number));
    return text;
}

std::string OffsetText(std::uint64_t offset)
{
    return Number("%08llx", offset);
}

// Nothing where the file ends before.
std::optional<Quarn::Stream::HeaderBlock> ReadHeader(FileBytes& file, std::uint64_t offset)
{
    std::string bytes = file.ReadAt(offset, HeaderSize);
    if (bytes.size() < HeaderSize) {
        return std::nullopt;
    }
    Quarn::memorystream stream(reinterpret_cast<unsigned char*>(bytes.data()), HeaderSize);
    Quarn::Stream::HeaderBlock header;
    stream >> header;
    return header;
}

struct Header
{
    std::uint64_t offset;
    std::optional<Quarn::Stream::HeaderBlock> block;
};

void PrintHeaders(std::vector<Header> const& headers)
{
    for (Header const& header : headers) {
        Print(OffsetText(header.offset) + "  ");
        if (header.block) {
            Print("id " + Number("0x%08llx", header.block->id) + ", version " +
                  std::to_string(header.block->version) + '\n');
        } else {
            Print("no header block: the file ends before\n");
        }
    }
}

void PrintString(FileBytes& file, StoredString const& found)
{
    std::string const bytes = file.ReadAt(
        found.Body(), static_cast<std::size_t>(std::min<std::uint64_t>(found.length, ShownBytes)));
    std::string text = OffsetText(found.offset) + "  " + Number("%8llu", found.length) + "  " + Quoted(bytes);
    if (!found.isWhole) {
        text += " (the file ends inside)";
    } else if (bytes.size() < found.length) {
        text += "...";
    }
    Print(text + '\n');
}

// The number of strings. Their characters are read from a second opening of the file, for the search reads
// on.
std::uint64_t ListStrings(std::string const& path, FileBytes& file,
                          std::function<void(FileBytes& texts, StoredString const& found)> const& list)
{
    std::uint64_t count = 0;
    FileBytes texts(path);
    Progress progress(path, file.Size());
    FindStrings(file, progress, [&](StoredString const& found) {
        progress.Hide();
        list(texts, found);
        ++count;
    });
    return count;
}

void PrintRow(std::uint64_t offset, std::string_view bytes)
{
    std::string digits;
    std::string characters;
    for (std::size_t i = 0; i < RowSize; ++i) {
        bool const isThere = i < bytes.size();
        digits += (i == RowSize / 2 ? "  " : " ") + (isThere ? Hex(bytes.substr(i, 1)) : "  ");
        if (isThere) {
            characters += bytes[i] >= 0x20 && bytes[i] < 0x7F ? bytes[i] : '.';
        }
    }
    Print(OffsetText(offset) + ' ' + digits + "  |" + characters + "|\n");
}

void PrintHex(FileBytes& file, RecordView const& view)
{
    std::uint64_t offset = view.from;
    std::uint64_t left = view.bytes;
    file.ReadAt(offset, 0);
    while (left != 0) {
        std::string const row = file.Read(static_cast<std::size_t>(std::min<std::uint64_t>(left, RowSize)));
        if (row.empty()) {
            return;
        }
        PrintRow(offset, row);
        offset += row.size();
        left -= row.size();
    }
    if (offset < file.Size()) {
        Print("... " + std::to_string(file.Size() - offset) + " bytes more; --from " +
              std::to_string(offset) + " shows them\n");
    }
}

void PrintJson(std::string const& path, FileBytes& file, std::vector<Header> const& headers)
{
    Json json;
    json.Object();
    json.Text("file", path);
    json.Number("size", file.Size());
    json.Array("headers");
    for (Header const& header : headers) {
        json.Object();
        json.Number("offset", header.offset);
        if (header.block) {
            json.Number("id", header.block->id);
            json.Number("version", header.block->version);
        } else {
            json.Null("id");
            json.Null("version");
        }
        json.End();
    }
    json.End();
    json.Array("strings");
    ListStrings(path, file, [&json](FileBytes& texts, StoredString const& found) {
        std::string const bytes = texts.ReadAt(
            found.Body(), static_cast<std::size_t>(std::min<std::uint64_t>(found.length, JsonBytes)));
        json.Object();
        json.Number("offset", found.offset);
        json.Number("length", found.length);
        json.Bool("whole", found.isWhole);
        json.Text("text", bytes);
        json.Bool("all_shown", bytes.size() == found.length);
        json.End();
    });
    json.End();
    json.End();
}

} // namespace

ExitCode ShowRecord(std::string const& path, RecordView const& view, bool json)
{
    FileBytes file(path);
    std::vector<std::uint64_t> offsets = view.headers;
    offsets.insert(offsets.begin(), 0);
    std::vector<Header> headers;
    bool complete = true;
    for (std::uint64_t const offset : offsets) {
        headers.push_back({offset, ReadHeader(file, offset)});
        complete &= headers.back().block.has_value();
    }
    if (json) {
        PrintJson(path, file, headers);
    } else {
        Print(Printable(path) + ", " + std::to_string(file.Size()) + " bytes\n\n");
        Print(Paint(Colour::Strong, "HEADER BLOCKS") + '\n');
        PrintHeaders(headers);
        Print('\n' + Paint(Colour::Strong, "STRINGS  (offset, length, text)") + '\n');
        if (ListStrings(path, file, PrintString) == 0) {
            Print("none\n");
        }
        Print('\n' + Paint(Colour::Strong, "BYTES") + '\n');
        PrintHex(file, view);
    }
    return complete ? Done : Differs;
}

} // namespace tool
