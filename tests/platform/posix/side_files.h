// The files that a data base keeps beside its own, forged: a journal, which has pages as they were, and a
// write-ahead log, which has pages as they are to be. The formats are SQLite's,
// https://sqlite.org/fileformat.html.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace SideFiles {

constexpr std::string_view JournalMagic("\xD9\xD5\x05\xF9\x20\xA1\x63\xD7", 8);
constexpr std::uint32_t LogMagic = 0x377F0682; // checksums of words with their low byte first
constexpr std::uint32_t LogVersion = 3007000;
constexpr std::size_t LogHeaderSize = 32;
constexpr std::size_t FrameHeaderSize = 24;

// Numbers with their high byte first.
inline std::uint32_t Number(std::string_view bytes, std::size_t at)
{
    std::uint32_t number = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        number = number << 8 | static_cast<unsigned char>(bytes[at + i]);
    }
    return number;
}

inline std::string Bytes(std::uint32_t number)
{
    std::string bytes(4, '\0');
    for (std::size_t i = 4; i-- > 0; number >>= 8) {
        bytes[i] = static_cast<char>(number & 0xFF);
    }
    return bytes;
}

using Page = std::pair<std::uint32_t, std::string>; // its number, from 1, and its bytes

// A journal of a file that had `count` pages; `other` is the file that it names to be removed with it.
inline std::string Journal(std::vector<Page> const& pages, std::uint32_t count, std::size_t pageSize,
                           std::string const& other = "")
{
    constexpr std::size_t Sector = 512;
    std::string journal(JournalMagic);
    journal += Bytes(static_cast<std::uint32_t>(pages.size())) + Bytes(1) + Bytes(count) + Bytes(Sector) +
               Bytes(static_cast<std::uint32_t>(pageSize));
    journal.resize(Sector);
    for (auto const& [number, bytes] : pages) {
        std::uint32_t sum = 1;
        for (std::size_t at = pageSize - 200; at > 0 && at < pageSize; at -= 200) {
            sum += static_cast<unsigned char>(bytes[at]);
        }
        journal += Bytes(number) + bytes + Bytes(sum);
    }
    if (!other.empty()) {
        std::uint32_t sum = 0;
        for (char const c : other) {
            sum += static_cast<std::uint32_t>(c);
        }
        journal += Bytes(static_cast<std::uint32_t>(0x40000000 / pageSize + 1)) + other +
                   Bytes(static_cast<std::uint32_t>(other.size())) + Bytes(sum);
        journal += JournalMagic;
    }
    return journal;
}

// The checksum of a log, which goes on from piece to piece.
struct LogSum
{
    std::uint32_t first = 0;
    std::uint32_t second = 0;

    void Add(std::string_view bytes, bool highFirst)
    {
        auto const word = [&](std::size_t at) {
            std::uint32_t const number = Number(bytes, at);
            return highFirst ? number : __builtin_bswap32(number);
        };
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            first += word(at) + second;
            second += word(at + 4) + first;
        }
    }
    std::string Text() const { return Bytes(first) + Bytes(second); }
};

// The page size that a log's header states; 0 for one that no log has.
inline std::size_t LogPageSize(std::string_view log)
{
    std::uint32_t const size = log.size() < LogHeaderSize ? 0 : Number(log, 8);
    return size >= 512 && size <= 65536 && (size & (size - 1)) == 0 ? size : 0;
}

// Gives the log's header and its whole frames the magic number, the version, the salts and the checksums that
// make them count.
inline void Sign(std::string& log)
{
    std::size_t const pageSize = LogPageSize(log);
    if (pageSize == 0) {
        return;
    }
    log.replace(0, 8, Bytes(LogMagic) + Bytes(LogVersion));
    LogSum sum;
    sum.Add(std::string_view(log).substr(0, 24), false);
    log.replace(24, 8, sum.Text());
    std::string const salts = log.substr(16, 8);
    for (std::size_t at = LogHeaderSize; log.size() - at >= FrameHeaderSize + pageSize;
         at += FrameHeaderSize + pageSize) {
        log.replace(at + 8, 8, salts);
        sum.Add(std::string_view(log).substr(at, 8), false);
        sum.Add(std::string_view(log).substr(at + FrameHeaderSize, pageSize), false);
        log.replace(at + 16, 8, sum.Text());
    }
}

// A log whose last frame completes a transaction after which the file has `count` pages.
inline std::string Log(std::vector<Page> const& pages, std::uint32_t count, std::size_t pageSize)
{
    std::string log = Bytes(LogMagic) + Bytes(LogVersion) + Bytes(static_cast<std::uint32_t>(pageSize));
    log.resize(LogHeaderSize);
    for (auto const& page : pages) {
        std::string header = Bytes(page.first) + Bytes(&page == &pages.back() ? count : 0);
        header.resize(FrameHeaderSize);
        log += header + page.second;
    }
    Sign(log);
    return log;
}

// Whether the log has a whole transaction by its own checksums, or is of a version that nobody knows: then it
// says what is in the registry, or that nobody may read it.
inline bool Counts(std::string_view log)
{
    std::size_t const pageSize = LogPageSize(log);
    if (pageSize == 0 || (Number(log, 0) & ~1U) != LogMagic) {
        return false;
    }
    bool const highFirst = (Number(log, 0) & 1) != 0;
    LogSum sum;
    sum.Add(log.substr(0, 24), highFirst);
    if (log.substr(24, 8) != sum.Text()) {
        return false;
    }
    if (Number(log, 4) != LogVersion) {
        return true;
    }
    for (std::size_t at = LogHeaderSize; log.size() - at >= FrameHeaderSize + pageSize;
         at += FrameHeaderSize + pageSize) {
        sum.Add(log.substr(at, 8), highFirst);
        sum.Add(log.substr(at + FrameHeaderSize, pageSize), highFirst);
        if (Number(log, at) == 0 || log.substr(at + 8, 8) != log.substr(16, 8) ||
            log.substr(at + 16, 8) != sum.Text()) {
            return false;
        }
        if (Number(log, at + 4) != 0) {
            return true;
        }
    }
    return false;
}

} // namespace SideFiles
