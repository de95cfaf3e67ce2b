// How far a piece of work has come, on the standard error where that is a terminal, once the work has taken a
// second.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

namespace tool {

class Progress
{
public:
    // `total` is 0 where nobody knows.
    Progress(std::string const& name, std::uint64_t total);
    Progress(Progress const&) = delete;
    Progress& operator=(Progress const&) = delete;
    // Takes the line away.
    ~Progress();

    // So many bytes more have been done.
    void Advance(std::uint64_t bytes);
    // Takes the line away until there is more to tell, so that something else can be printed.
    void Hide();

private:
    std::string m_name;
    std::uint64_t m_total;
    std::uint64_t m_done = 0;
    std::chrono::steady_clock::time_point m_next;
    bool m_isShown = false;
    bool m_isTerminal;
};

} // namespace tool
