// Quarn::CRC32: accumulates the CRC-32 of zlib, PKZIP and Ethernet (CRC-32/ISO-HDLC: polynomial 0x04C11DB7,
// input and output reflected, register starting at all ones, complemented at the end; ISO/IEC 13239, ITU-T
// V.42). The check value of the nine ASCII bytes 123456789 is 0xCBF43926. A plain value; one accumulator
// belongs to one thread at a time, different accumulators to any threads.
#pragma once

#include "quarn/export.h"
#include "quarn/text/string.h"

#include <cstddef>
#include <cstdint>

namespace Quarn {

namespace detail {

// The register behind `n` more bytes.
QUARN_API std::uint32_t Crc32Update(std::uint32_t reg, unsigned char const* data, std::size_t n);

} // namespace detail

class QUARN_API CRC32
{
public:
    // The checksum of no bytes: GetValue() is 0.
    CRC32() = default;

    // One byte.
    void Add(unsigned char byte) { AddByte(byte); }
    // The bytes of a number, least significant first. Of an `unsigned long` the low four; where the type is
    // wider and the number needs more, that is reported as Int64ToUInt32 does (text/narrowing.h).
    void Add(unsigned short number);
    void Add(unsigned int number);
    void Add(unsigned long number);
    // `n` bytes at `data`, in order; `data` may be null when `n` is 0.
    void Add(void const* data, unsigned long n)
    {
        m_register = detail::Crc32Update(m_register, static_cast<unsigned char const*>(data), n);
    }
    // The bytes of `text`, without length or terminator. Above 4294967295 bytes the length is narrowed as
    // Int64ToUInt32 does.
    void Add(string const& text);

    // The checksum of all bytes since construction or Clear(), below 2^32. More bytes may follow.
    unsigned long GetValue() const { return static_cast<std::uint32_t>(~m_register); }
    // Starts again with the checksum of no bytes.
    void Clear() { m_register = CRC32InitialValue; }

    // Whether the checksums are equal.
    bool operator==(CRC32 const& other) const { return m_register == other.m_register; }
    bool operator!=(CRC32 const& other) const { return m_register != other.m_register; }

private:
    static constexpr std::uint32_t CRC32InitialValue = 0xFFFFFFFF;

    void AddByte(unsigned char byte);

    std::uint32_t m_register = CRC32InitialValue;
};

} // namespace Quarn
