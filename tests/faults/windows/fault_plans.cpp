#include "tests/faults/fault_loop.h"

namespace Faults {

// As elsewhere, and besides: others have a file open, the system lacks memory. Rounds take long here: without
// being asked for, not all of them are run.
std::vector<Plan> Plans()
{
    std::vector<Plan> plans = {{Kind::Memory, Span::One, 1, ENOMEM},
                               {Kind::Memory, Span::Rest, 1, ENOMEM},
                               {Kind::Files, Span::One, 1, EBUSY},
                               {Kind::Files, Span::Rest, 1, EACCES}};
    if (IsComplete()) {
        plans.insert(plans.end(), {{Kind::Files, Span::One, 1, EIO},
                                   {Kind::Files, Span::One, 1, EACCES},
                                   {Kind::Files, Span::One, 1, ENOMEM},
                                   {Kind::Files, Span::Rest, 1, EBUSY},
                                   {Kind::Files, Span::Rest, 1, ENOSPC},
                                   {Kind::Files, Span::Rest, 1, ENOMEM}});
    }
    return plans;
}

} // namespace Faults
