#include "string_search.h"

#include "little_endian.h"

#include <optional>

namespace tool {

namespace {

constexpr std::uint32_t Marker = 0xFFFFFFFF;

class Search
{
public:
    Search(std::uint64_t size, std::function<void(StoredString const&)> const& take)
        : m_size(size),
          m_take(take)
    {}

    // Looks at the head that may begin at `head`, which has HeadSize bytes.
    void Look(std::uint64_t offset, char const* head)
    {
        if (m_candidate && head[3] != '\xFF') {
            Take(); // no later marker begins in the same row of bytes
        }
        if (head[0] != '\xFF' || offset < m_next) {
            return;
        }
        std::uint32_t const length = FromLittleEndian(head + 4);
        if (FromLittleEndian(head) != Marker || length == Marker ||
            FromLittleEndian(head + 8) != static_cast<std::uint32_t>(~length)) {
            return;
        }
        m_candidate = {offset, length, offset + StoredString::HeadSize + length <= m_size};
    }

    void Finish()
    {
        if (m_candidate) {
            Take();
        }
    }

private:
    void Take()
    {
        m_take(*m_candidate);
        m_next = m_candidate->Body();
        m_candidate.reset();
    }

    std::uint64_t m_size;
    std::function<void(StoredString const&)> const& m_take;
    std::optional<StoredString> m_candidate; // the last one of a row of bytes of 255
    std::uint64_t m_next = 0;                // what begins before is part of a head
};

} // namespace

void FindStrings(FileBytes& file, Progress& progress,
                 std::function<void(StoredString const& found)> const& take)
{
    constexpr std::size_t Piece = std::size_t{1} << 20;
    constexpr std::size_t Overlap = StoredString::HeadSize - 1;
    Search search(file.Size(), take);
    std::string bytes;
    std::uint64_t start = 0;
    file.ReadAt(0, 0);
    for (std::string piece = file.Read(Piece); !piece.empty(); piece = file.Read(Piece)) {
        bytes += piece;
        for (std::size_t i = 0; i + StoredString::HeadSize <= bytes.size(); ++i) {
            search.Look(start + i, bytes.data() + i);
        }
        std::size_t const done = bytes.size() - std::min(bytes.size(), Overlap);
        start += done;
        bytes.erase(0, done);
        progress.Advance(piece.size());
    }
    search.Finish();
}

} // namespace tool
