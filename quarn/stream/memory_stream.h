// Quarn::memorystream: a binary stream over one block of memory of fixed size, read and written through one
// shared position. Blocks of up to 256 bytes lie inside the object, larger ones on the heap; a caller may
// also lend a block. The block does not grow: moving bytes past its end is an error. One object belongs to
// one thread at a time.
//
//     Quarn::memorystream stream(64);
//     stream << 5 << "text";
//     stream.seekp(0, 0);
//     int number;
//     stream >> number;
#pragma once

#include "quarn/export.h"
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"

#include <concepts>
#include <cstdint>
#include <ios>

namespace Quarn {

class QUARN_API memorystream : public istream, public ostream
{
public:
    // A block of its own of `size` bytes (narrowed to 32 bits as Int64ToUInt32 does), position 0. Bytes that
    // nobody has written have no defined value. `dumpMode` as in ostream; nothing but a bool passes for it.
    explicit memorystream(unsigned long size) : memorystream(size, false) {}
    template<std::same_as<bool> Bool>
    memorystream(unsigned long size, Bool dumpMode) : istream(),
                                                      ostream(dumpMode)
    {
        LendWindow();
        Allocate(static_cast<std::streamoff>(size));
    }
    // The caller's block, neither copied nor freed; it must outlive its use here. A negative size counts as
    // 0.
    memorystream(unsigned char* block, std::streampos size) : memorystream(block, size, false) {}
    template<std::same_as<bool> Bool>
    memorystream(unsigned char* block, std::streampos size, Bool dumpMode) : istream(),
                                                                             ostream(dumpMode)
    {
        LendWindow();
        Borrow(block, size);
    }
    // No block and size 0: everything is past the end until Allocate().
    memorystream() : memorystream(false) {}
    template<std::same_as<bool> Bool>
    explicit memorystream(Bool dumpMode) : istream(),
                                           ostream(dumpMode)
    {
        LendWindow();
    }
    // Copies are shallow: the same block (for a block inside the source, that very place), the same position,
    // state, dump mode and compressors. A block on the heap belongs to the source and the copy alike, so only
    // one of the two may be destroyed or released; and an assignment does not free the block held before.
    memorystream(memorystream const& other);
    memorystream& operator=(memorystream const& other);
    // As ReleaseMemory.
    ~memorystream() override;

    // Takes a block of `size` bytes, negative counting as 0, above 32 bits narrowed as Int64ToUInt32 does.
    // The block held before is not freed, the position not moved; whether the stream frees the new one is
    // what its constructor decided: one over a caller's block does not. Throws std::bad_alloc.
    void Allocate(std::streampos size);
    // Frees the stream's own heap block. Whatever the block was, the stream has none afterwards and behaves
    // as at its end; size and position stay.
    void ReleaseMemory();

    // Each is the first byte of the block; null where there is none. Valid until the block is released.
    unsigned char* GetMemory() { return m_buffer; }
    unsigned char const* GetMemory() const { return m_buffer; }
    operator unsigned char*() { return m_buffer; }
    operator unsigned char const*() const { return m_buffer; }
    // The block's size in bytes.
    std::streampos GetSize() const { return m_size; }

    // The compressors of the two sides; see istream and ostream.
    void SetInputCompressor(StreamCompress* compressor) { istream::SetCompressor(compressor); }
    void SetOutputCompressor(StreamCompress* compressor) { ostream::SetCompressor(compressor); }

    // Bytes moved by the last read or readsome.
    unsigned int gcount() const override { return m_window.lastRead; }
    // 0 to 255; at the end the stream fails and the result is 0.
    unsigned int peek() override;
    // Stops quietly at the end.
    unsigned int readsome(unsigned char* buffer, unsigned long n) override;
    // Moves back by one byte and stores `c` there; does nothing at position 0.
    istream& putback(unsigned char c) override;
    // Does nothing.
    istream& unget() override;
    std::streampos tellg() override { return Position(); }
    std::streampos tellp() override { return Position(); }
    // Direction 0: to `offset`; 1: forward by `offset`; 2: to size - (offset + 1), so an offset of 0 is the
    // last byte; another direction stays where it is. Of the offset the low 32 bits count. A place at or
    // behind the end becomes the last byte, one before the beginning the first, and the stream has failed:
    // the end itself is no place to seek to. A stream of size 0 takes any place but one before the beginning.
    istream& seekg(unsigned long offset, unsigned int direction) override;
    istream& seekg(std::streampos position) override;
    ostream& seekp(unsigned long offset, unsigned int direction) override;
    ostream& seekp(std::streampos position) override;
    ostream& flush() override;
    // 0.
    int sync() override;
    // True, even after a failure.
    bool IsValidInput() const override;
    bool IsValidOutput() const override;
    // Does nothing: a stream that has once failed (past the end, peek at the end, a seek out of the block)
    // throws from every later read and write, wherever it stands.
    void clearstate() override;
    void close() override;
    char const* get_path() override;

protected:
    // Move `n` bytes. Past the end, those that fit are moved and the stream fails: both throw
    // StreamException(GenericRead), the write too.
    istream& input(unsigned char* buffer, unsigned long n) override;
    ostream& output(unsigned char const* data, unsigned long n) override;

private:
    void LendWindow()
    {
        istream::SetWindow(&m_window);
        ostream::SetWindow(&m_window);
    }
    void Borrow(unsigned char* block, std::streampos size);
    std::streamoff Position() const
    {
        return m_window.next != nullptr ? m_window.next - m_buffer : m_position;
    }
    void OpenWindow();
    void CloseWindow();
    std::uint32_t Available(std::uint32_t n) const;
    // Behind a transfer of `count` of `wanted` bytes: throws where the stream has failed.
    void Finish(std::uint32_t count, std::uint32_t wanted);
    void MoveTo(std::streamoff position);

    static constexpr std::streamoff InlineSize = 256;

    unsigned char* m_buffer = nullptr;
    // While the window is open its `next` is the position.
    std::streamoff m_position = 0;
    std::streamoff m_size = 0;
    detail::Window m_window;
    bool m_failed = false;
    bool m_owns = true;
    unsigned char m_inline[InlineSize];
};

} // namespace Quarn
