// The streams that are made for listings: the file, memory and counting streams in dump mode, and the file
// stream that writes strings as plain text. Each is its base but for what stands here. One object belongs to
// one thread at a time.
//
//     Quarn::sofdumpstream listing("record.txt", std::ios_base::trunc);
//     Save(listing, record);                                // the function that stores the record, too
#pragma once

#include "quarn/export.h"
#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/stat_stream.h"

#include <concepts>

namespace Quarn {

// A file in dump mode.
class QUARN_API sofdumpstream : public ofstream
{
public:
    // No file; the stream is of use only after open().
    sofdumpstream() : ofstream(true) {}
    // As open().
    sofdumpstream(char const* path, int mode) : ofstream(path, mode, true) {}
    sofdumpstream(sofdumpstream const& other) = delete;
    sofdumpstream& operator=(sofdumpstream const& other) = delete;
    ~sofdumpstream() override;
};

// A file whose strings are plain text: their characters alone, in binary mode too. Numbers are what the mode
// makes them.
class QUARN_API softextstream : public ofstream
{
public:
    // No file; `dumpMode` as in ostream. Nothing but a bool passes for one.
    template<std::same_as<bool> Bool>
    explicit softextstream(Bool dumpMode) : ofstream(dumpMode)
    {}
    // In binary mode; the third argument is ignored.
    template<std::same_as<bool> Bool>
    softextstream(char const* path, int mode, Bool /*ignored*/) : ofstream(path, mode, false)
    {}
    softextstream(softextstream const& other) = delete;
    softextstream& operator=(softextstream const& other) = delete;
    ~softextstream() override;

    using ofstream::operator<<;
    // The characters alone.
    ostream& operator<<(std::string const& text) override;
    ostream& operator<<(string const& text) override;
};

// Memory in dump mode.
class QUARN_API memorydumpstream : public memorystream
{
public:
    // A block of its own, and the caller's block, as memorystream has them.
    explicit memorydumpstream(unsigned long size) : memorystream(size, true) {}
    memorydumpstream(unsigned char* block, std::streampos size) : memorystream(block, size, true) {}
    // Without a block, and in binary mode.
    memorydumpstream() : memorystream(false) {}
    memorydumpstream(memorydumpstream const& other) = default;
    memorydumpstream& operator=(memorydumpstream const& other) = default;
    ~memorydumpstream() override;
};

// Counts what a listing takes.
class QUARN_API statdumpstream : public statstream
{
public:
    // `crcEnabled`: whether the CRC is kept.
    template<std::same_as<bool> Bool>
    explicit statdumpstream(Bool crcEnabled) : statstream(crcEnabled, true)
    {}
    statdumpstream(statdumpstream const& other) = default;
    statdumpstream& operator=(statdumpstream const& other) = default;
    ~statdumpstream() override;
};

} // namespace Quarn
