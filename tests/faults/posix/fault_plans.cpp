#include "tests/faults/fault_loop.h"

namespace Faults {

// No memory, a disk that breaks, no rights, no space.
std::vector<Plan> Plans()
{
    return {{Kind::Memory, Span::One, 1, ENOMEM}, {Kind::Memory, Span::Rest, 1, ENOMEM},
            {Kind::Files, Span::One, 1, EIO},     {Kind::Files, Span::One, 1, EACCES},
            {Kind::Files, Span::Rest, 1, EACCES}, {Kind::Files, Span::Rest, 1, ENOSPC}};
}

} // namespace Faults
