#include "progress.h"

#include "terminal.h"
#include "text.h"

#include <cstdio>

namespace tool {

Progress::Progress(std::string const& name, std::uint64_t total)
    : m_name(Printable(name)),
      m_total(total),
      m_next(std::chrono::steady_clock::now() + std::chrono::seconds(1)),
      m_isTerminal(IsTerminal(stderr))
{}

Progress::~Progress()
{
    Hide();
}

void Progress::Advance(std::uint64_t bytes)
{
    m_done += bytes;
    auto const now = std::chrono::steady_clock::now();
    if (!m_isTerminal || now < m_next) {
        return;
    }
    m_next = now + std::chrono::milliseconds(250);
    m_isShown = true;
    if (m_total != 0) {
        std::fprintf(stderr, "\r%s: %u %%", m_name.c_str(), static_cast<unsigned>(m_done * 100 / m_total));
    } else {
        std::fprintf(stderr, "\r%s: %llu MiB", m_name.c_str(), static_cast<unsigned long long>(m_done >> 20));
    }
    std::fflush(stderr);
}

void Progress::Hide()
{
    if (m_isShown) {
        std::fputs("\r\x1B[K", stderr);
        m_isShown = false;
    }
}

} // namespace tool
