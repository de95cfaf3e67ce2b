// (private) Bytes from outside, read piece by piece: a file, or memory. No read goes past the end, and none
// allocates.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>
#include <optional>
#include <span>

namespace Quarn::detail {

class ByteSource
{
public:
    ByteSource(ByteSource const&) = delete;
    ByteSource& operator=(ByteSource const&) = delete;
    virtual ~ByteSource() = default;

    std::uint64_t Size() const { return m_size; }

    // All of the bytes, or false.
    bool Read(std::uint64_t offset, void* data, std::size_t size)
    {
        return offset <= m_size && size <= m_size - offset && DoRead(offset, data, size);
    }

    // A little-endian number.
    template<typename Number>
    std::optional<Number> Get(std::uint64_t offset)
    {
        std::array<unsigned char, sizeof(Number)> bytes;
        if (!Read(offset, bytes.data(), bytes.size())) {
            return std::nullopt;
        }
        Number number = 0;
        for (std::size_t i = 0; i < bytes.size(); ++i) {
            number = static_cast<Number>(number | static_cast<Number>(bytes[i]) << 8 * i);
        }
        return number;
    }

protected:
    explicit ByteSource(std::uint64_t size) : m_size(size) {}

private:
    virtual bool DoRead(std::uint64_t offset, void* data, std::size_t size) = 0;

    std::uint64_t m_size;
};

class MemorySource final : public ByteSource
{
public:
    explicit MemorySource(std::span<unsigned char const> bytes) : ByteSource(bytes.size()), m_bytes(bytes) {}

private:
    bool DoRead(std::uint64_t offset, void* data, std::size_t size) override
    {
        if (size > 0) {
            std::memcpy(data, m_bytes.data() + offset, size);
        }
        return true;
    }

    std::span<unsigned char const> m_bytes;
};

} // namespace Quarn::detail
