// Quarn::statstream: an output stream that stores nothing. It counts the bytes that a record takes and, when
// asked to, their CRC-32: write the record to it first, with the very code that writes it for good. One
// object belongs to one thread at a time.
#pragma once

#include "quarn/export.h"
#include "quarn/stream/crc32.h"
#include "quarn/stream/ostream.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <ios>

namespace Quarn {

class QUARN_API statstream : public ostream
{
public:
    // `crcEnabled`: whether the CRC is kept; `dumpMode` as in ostream. Nothing but a bool passes for either.
    statstream() : statstream(false) {}
    template<std::same_as<bool> Bool>
    explicit statstream(Bool crcEnabled) : statstream(crcEnabled, false)
    {}
    template<std::same_as<bool> Bool1, std::same_as<bool> Bool2>
    statstream(Bool1 crcEnabled, Bool2 dumpMode) : ostream(dumpMode),
                                                   m_crcEnabled(crcEnabled)
    {}
    // What the source has counted; a copy counts on by itself.
    statstream(statstream const& other);
    statstream& operator=(statstream const& other);
    ~statstream() override;

    // The bytes counted, modulo 2^32.
    unsigned long GetSize() const { return m_size + Waiting(); }
    // The CRC of these bytes; that of no bytes where it is not enabled. The reference lives as long as the
    // stream and follows what is written later; each write costs more from then on (not by GetCRCValue).
    CRC32 const& GetCRC() const;
    // The same as a number.
    unsigned long GetCRCValue() const
    {
        CountWaiting();
        return m_crc.GetValue();
    }
    // Starts again with size and CRC of no bytes.
    void Clear();

    // There is nothing to flush, no place to seek to, and the position is always 0.
    ostream& flush() override;
    std::streampos tellp() override;
    ostream& seekp(unsigned long offset, unsigned int direction) override;
    ostream& seekp(std::streampos position) override;
    // True.
    bool IsValidOutput() const override;
    void clearstate() override;
    void close() override;
    char const* get_path() override;

protected:
    ostream& output(unsigned char const* data, unsigned long n) override;

private:
    std::uint32_t Waiting() const
    {
        return m_window.next != nullptr ? static_cast<std::uint32_t>(m_window.next - m_block) : 0;
    }
    // Counts the bytes in the block, which is empty then.
    void CountWaiting() const;
    void OpenWindow();

    static constexpr std::size_t BlockSize = 512;

    bool m_crcEnabled;
    // What is written piece by piece waits in the block, so that the CRC takes many bytes at a time. Asking
    // for the CRC empties it.
    mutable CRC32 m_crc;
    mutable std::uint32_t m_size = 0;
    mutable detail::Window m_window;
    mutable bool m_isWatched = false; // through the reference of GetCRC
    unsigned char m_block[BlockSize];
};

} // namespace Quarn
