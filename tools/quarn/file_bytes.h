// A file of any size, read in pieces.
#pragma once

#include <cstdint>
#include <fstream>
#include <string>

namespace tool {

class FileBytes
{
public:
    // Throws Failure where the file cannot be opened for reading.
    explicit FileBytes(std::string const& path);

    // The size when it was opened; 0 for what has none, a pipe.
    std::uint64_t Size() const { return m_size; }

    // The next bytes, at most `count`; empty at the end. Throws Failure where reading fails.
    std::string Read(std::size_t count);
    // The bytes at an offset, as far as the file goes; reading goes on behind them. Throws Failure for what
    // has no offsets, a pipe.
    std::string ReadAt(std::uint64_t offset, std::size_t count);

private:
    std::string m_path;
    std::ifstream m_file;
    std::uint64_t m_size = 0;
};

// "FILE: cannot be read: REASON", the reason being that of errno.
std::string ReadFailureText(std::string const& path, int error);

} // namespace tool
