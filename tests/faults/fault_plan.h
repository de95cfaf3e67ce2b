// Faults on order: the n-th call that the library makes of the platform's and the standard library's
// functions fails. The calls are caught where the library is linked to them (see the hooks of each system);
// nothing of this is in the library itself.
#pragma once

#include <cstddef>
#include <cstdint>

namespace Faults {

// Which calls count.
enum class Kind
{
    Files,         // everything that the system does for us: files, folders, locks, the registry
    Memory,        // every allocation
    Interruptions, // what a signal comes into: of POSIX alone
};

enum class Span
{
    One,  // the n-th call alone
    Rest, // the n-th and every later one of that function: of Memory, every later allocation
};

struct Plan
{
    Kind kind;
    Span span;
    int number; // from 1
    // What the failing call leaves in errno, or as the system's code that stands for it; 0 where it does a
    // part.
    int error;
};

// Faults fall while this lives, in the one thread that made it. At most one at a time.
class Armed
{
public:
    explicit Armed(Plan const& plan);
    Armed(Armed const&) = delete;
    Armed& operator=(Armed const&) = delete;
    ~Armed();

    // The function that failed first; null where there were fewer calls.
    char const* Struck() const;
};

// Asked by the hooks at every call: whether this one fails.
bool Strikes(Kind kind, char const* function);
int Error();

// Refuses to create temporary files, as in a folder where this process may make none.
void DenyTemporaries(bool deny);
bool TemporariesAreDenied();

// Refuses to give files second names, as file systems do that know no links.
void RefuseLinks(bool refuse);
bool LinksAreRefused();

// Waiting takes no time while faults may fall: the clock is moved on instead.
bool IsArmed();
void Wait(std::uint64_t nanoseconds);
std::uint64_t Waited();

// The blocks that are allocated and not freed, in the whole program.
std::ptrdiff_t LiveBlocks();
void CountBlocks(std::ptrdiff_t change);

} // namespace Faults
