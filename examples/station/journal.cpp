#include "journal.h"

#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stat_stream.h"
#include "quarn/stream/stream_exception.h"

#include "../zlib_compressor.h"

#include <filesystem>
#include <vector>

namespace station {

namespace {

constexpr std::uint64_t entryHeadSize = 8;

} // namespace

std::string JournalPath(Quarn::Win32::QuarnProperties& settings)
{
    return std::filesystem::path(settings.GetXMLFilePath().c_str()).replace_extension(".journal").string();
}

Measure Append(std::string const& path, Record const& record)
{
    ZlibCompressor compressor;

    // Once to count, once for real, with the same code.
    Quarn::statstream counter(true);
    counter.SetCompressor(&compressor);
    counter << record;
    Measure measure;
    measure.size = static_cast<std::uint32_t>(counter.GetSize());
    measure.crc = static_cast<std::uint32_t>(counter.GetCRCValue());

    Quarn::memorystream memory(measure.size);
    memory.SetOutputCompressor(&compressor);
    memory << record;

    Quarn::ofstream file(path.c_str(), std::ios_base::binary | std::ios_base::app);
    file << measure.size << measure.crc;
    file.write(memory.GetMemory(), measure.size);
    file.flush();
    if (!file.IsValidOutput()) {
        throw Quarn::StreamException(Quarn::StreamException::GenericWrite);
    }
    return measure;
}

JournalSummary ReadJournal(std::string const& path, std::function<void(Record const&)> const& each)
{
    JournalSummary summary;
    std::error_code error;
    std::uint64_t const fileSize = std::filesystem::file_size(path, error);
    if (error) {
        return summary;
    }
    ZlibCompressor compressor;
    Quarn::ifstream file(path.c_str(), std::ios_base::binary);
    try {
        while (summary.goodBytes < fileSize) {
            Measure measure;
            file >> measure.size >> measure.crc;
            // A size that the file does not have is never allocated.
            if (measure.size > fileSize - summary.goodBytes - entryHeadSize) {
                throw Quarn::StreamException("the file ends inside a record");
            }
            std::vector<unsigned char> bytes(measure.size);
            file.read(bytes.data(), measure.size);
            Quarn::CRC32 crc;
            crc.Add(bytes.data(), measure.size);
            if (crc.GetValue() != measure.crc) {
                throw Quarn::StreamException("a checksum does not match");
            }
            Quarn::memorystream memory(bytes.data(), measure.size);
            memory.SetInputCompressor(&compressor);
            Record record;
            memory >> record;
            each(record);
            ++summary.records;
            summary.goodBytes += entryHeadSize + measure.size;
        }
    } catch (Quarn::StreamException const& failure) {
        summary.restBytes = fileSize - summary.goodBytes;
        summary.restReason = failure.GetString();
    }
    return summary;
}

std::string SetAside(std::string const& path, JournalSummary const& summary)
{
    if (summary.restBytes == 0) {
        return {};
    }
    std::string copy;
    for (int number = 1; copy.empty() || std::filesystem::exists(copy); ++number) {
        copy = path + ".damaged" + std::to_string(number);
    }
    std::filesystem::copy_file(path, copy);
    std::filesystem::resize_file(path, summary.goodBytes);
    return copy;
}

} // namespace station
