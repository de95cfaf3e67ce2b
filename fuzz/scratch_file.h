// A file for one input, in the current folder, of this program's own name, gone at the end.
#pragma once

#include "quarn/platform/win32_api.h"

#include "fuzz/check.h"

#include <filesystem>
#include <fstream>
#include <string>

namespace fuzz {

class ScratchFile
{
public:
    explicit ScratchFile(std::string const& content)
        : m_path("fuzz." + std::to_string(::GetCurrentProcessId()) + ".tmp")
    {
        std::ofstream file(m_path, std::ios_base::binary);
        file.write(content.data(), static_cast<std::streamsize>(content.size()));
        file.close();
        Check(!file.fail(), "the input cannot be written to a file");
    }
    ScratchFile(ScratchFile const&) = delete;
    ScratchFile& operator=(ScratchFile const&) = delete;
    ~ScratchFile()
    {
        std::error_code ignored;
        std::filesystem::remove(m_path, ignored);
    }

    char const* Path() const { return m_path.c_str(); }

private:
    std::string m_path;
};

} // namespace fuzz
