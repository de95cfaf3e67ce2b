#include "tests/faults/fault_loop.h"
#include "tests/scale.h"

namespace Faults {

// No memory, a disk that breaks, no rights, no space.
std::vector<Plan> Plans()
{
    return {{Kind::Memory, Span::One, 1, ENOMEM}, {Kind::Memory, Span::Rest, 1, ENOMEM},
            {Kind::Files, Span::One, 1, EIO},     {Kind::Files, Span::One, 1, EACCES},
            {Kind::Files, Span::Rest, 1, EACCES}, {Kind::Files, Span::Rest, 1, ENOSPC}};
}

// Each one where there is no sanitizer, or where all are asked for.
int AllocationStep()
{
    return Slowness == 1 || IsComplete() ? 1 : 3;
}

} // namespace Faults
