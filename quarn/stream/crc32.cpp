#include "quarn/stream/crc32.h"

#include "quarn/stream/crc32_update.h"
#include "quarn/text/narrowing.h"

#include <array>

namespace Quarn {

void CRC32::AddByte(unsigned char byte)
{
    m_register = detail::Crc32Step(m_register, byte);
}

void CRC32::Add(unsigned short number)
{
    AddByte(static_cast<unsigned char>(number & 0xFFU));
    AddByte(static_cast<unsigned char>(number >> 8U & 0xFFU));
}

void CRC32::Add(unsigned int number)
{
    std::array<unsigned char, 4> const bytes = {
        static_cast<unsigned char>(number), static_cast<unsigned char>(number >> 8U),
        static_cast<unsigned char>(number >> 16U), static_cast<unsigned char>(number >> 24U)};
    m_register = detail::Crc32Update(m_register, bytes.data(), bytes.size());
}

void CRC32::Add(unsigned long number)
{
    Add(detail::NarrowCount(number));
}

void CRC32::Add(string const& text)
{
    Add(text.data(), detail::NarrowCount(text.size()));
}

} // namespace Quarn
