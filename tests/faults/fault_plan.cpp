#include "tests/faults/fault_plan.h"

#include <atomic>
#include <cstring>

namespace Faults {

namespace {

struct State
{
    bool armed = false;
    Plan plan{};
    int calls = 0;
    char const* struck = nullptr;
    bool deniesTemporaries = false;
    bool refusesLinks = false;
    std::atomic<std::uint64_t> waited = 0; // like the blocks, also asked for by other threads
    std::atomic<std::ptrdiff_t> blocks = 0;
};

constinit State g_state;
thread_local constinit bool t_isArmed = false;

} // namespace

Armed::Armed(Plan const& plan)
{
    g_state.plan = plan;
    g_state.calls = 0;
    g_state.struck = nullptr;
    t_isArmed = true;
}

Armed::~Armed()
{
    t_isArmed = false;
}

char const* Armed::Struck() const // NOLINT(readability-convert-member-functions-to-static)
{
    return g_state.struck;
}

bool Strikes(Kind kind, char const* function)
{
    if (!t_isArmed || kind != g_state.plan.kind) {
        return false;
    }
    if (++g_state.calls == g_state.plan.number) {
        g_state.struck = function;
        return true;
    }
    return g_state.plan.span == Span::Rest && g_state.struck != nullptr &&
           std::strcmp(function, g_state.struck) == 0;
}

int Error()
{
    return g_state.plan.error;
}

void DenyTemporaries(bool deny)
{
    g_state.deniesTemporaries = deny;
}

bool TemporariesAreDenied()
{
    return g_state.deniesTemporaries && t_isArmed;
}

void RefuseLinks(bool refuse)
{
    g_state.refusesLinks = refuse;
}

bool LinksAreRefused()
{
    return g_state.refusesLinks && t_isArmed;
}

bool IsArmed()
{
    return t_isArmed;
}

void Wait(std::uint64_t nanoseconds)
{
    g_state.waited += nanoseconds;
}

std::uint64_t Waited()
{
    return g_state.waited;
}

std::ptrdiff_t LiveBlocks()
{
    return g_state.blocks;
}

void CountBlocks(std::ptrdiff_t change)
{
    g_state.blocks += change;
}

} // namespace Faults
