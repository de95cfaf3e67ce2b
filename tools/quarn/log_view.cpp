#include "quarn/platform/win32_api.h"

#include "file_bytes.h"
#include "file_commands.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <memory>

namespace tool {

namespace {

constexpr std::size_t LogPiece = std::size_t{64} * 1024;

class Follower
{
public:
    Follower(std::string path, LogView const& view, bool json)
        : m_path(std::move(path)),
          m_view(view),
          m_json(json)
    {}

    void Run()
    {
        {
            FileBytes file(m_path); // throws where it cannot be read, now alone
            m_position = StartOfLines(file);
        }
        for (;;) {
            ReadOn();
            std::fflush(stdout);
            if (IsDone() || std::ferror(stdout) != 0) {
                return;
            }
            constexpr DWORD Pause = 200; // milliseconds
            ::Sleep(Pause);
        }
    }

private:
    // Where the last lines begin; an unfinished one counts.
    std::uint64_t StartOfLines(FileBytes& file) const
    {
        std::uint64_t left = m_view.lines;
        std::uint64_t end = file.Size();
        if (left == 0) {
            return end;
        }
        bool isLast = true;
        while (end != 0) {
            std::uint64_t const begin = end - std::min<std::uint64_t>(end, LogPiece);
            std::string const bytes = file.ReadAt(begin, static_cast<std::size_t>(end - begin));
            for (std::size_t i = bytes.size(); i-- != 0;) {
                if (bytes[i] == '\n' && !isLast && --left == 0) {
                    return begin + i + 1;
                }
                isLast = false;
            }
            end = begin;
        }
        return 0;
    }

    // What has been written since. A file that has become shorter has been begun anew.
    void ReadOn()
    {
        std::unique_ptr<FileBytes> file;
        try {
            file = std::make_unique<FileBytes>(m_path);
        } catch (Failure const&) {
            return; // for the moment there is none
        }
        if (file->Size() < m_position) {
            Flush();
            m_position = 0;
        }
        std::string bytes = file->ReadAt(m_position, LogPiece);
        for (; !bytes.empty() && !IsFull(); bytes = file->Read(LogPiece)) {
            m_position += bytes.size();
            Take(bytes);
        }
        if (!m_view.follow) {
            Flush();
        }
    }

    void Take(std::string_view bytes)
    {
        while (!bytes.empty() && !IsFull()) {
            std::size_t const end = bytes.find('\n');
            m_line += bytes.substr(0, end);
            if (end == bytes.npos) {
                // A line as long as this is printed in parts.
                if (m_line.size() > LogPiece * 16) {
                    Flush();
                }
                return;
            }
            bytes.remove_prefix(end + 1);
            PrintLine();
        }
    }
    void Flush()
    {
        if (!m_line.empty()) {
            PrintLine();
        }
    }
    void PrintLine()
    {
        if (m_line.ends_with('\r')) {
            m_line.pop_back();
        }
        Print((m_json ? JsonString(m_line) : Printable(m_line)) + '\n');
        m_line.clear();
        ++m_count;
    }

    bool IsFull() const { return m_view.endAfter != 0 && m_count >= m_view.endAfter; }
    bool IsDone() const { return !m_view.follow || IsFull(); }

    std::string m_path;
    LogView m_view;
    bool m_json;
    std::uint64_t m_position = 0;
    std::uint64_t m_count = 0;
    std::string m_line; // not ended yet
};

} // namespace

ExitCode ShowLog(std::string const& file, LogView const& view, bool json)
{
    Follower(file, view, json).Run();
    return Done;
}

} // namespace tool
