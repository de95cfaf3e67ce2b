// Runs an operation again and again, with its first call failing, then its second, and so on until it is
// through.
#pragma once

#include "tests/faults/fault_plan.h"
#include "tests/scale.h"

#include <cerrno>
#include <cstdlib>
#include <sstream>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace Faults {

// What can fail: each system's own plans.
std::vector<Plan> Plans();

// Whether QUARN_FAULTS is "all": rounds that take long are not left out.
inline bool IsComplete()
{
    char const* const wanted = std::getenv("QUARN_FAULTS");
    return wanted != nullptr && std::string_view(wanted) == "all";
}

// From one number of allocations to the next: 1, or more where the rounds take too long for a short run;
// above the system's calls it is the same code everywhere. Calls of the system are never left out.
inline int AllocationStep()
{
    return Slowness == 1 || IsComplete() ? 1 : 10;
}

// How many faults have fallen, for whoever wants to say so.
struct Figures
{
    int faults = 0;
    int refusals = 0; // results other than success
};

// Puts the figures of a test beside its result, and the failures into the sum that is shown at the end.
void RecordFigures(Figures const& figures);

// For every plan and n: prepare(), then operation() with the fault, then check(its result, the function that
// failed; null where none did).
template<typename Prepare, typename Operation, typename Check>
Figures ForEveryFault(std::vector<Plan> const& plans, Prepare prepare, Operation operation, Check check)
{
    constexpr int Most = 100'000;
    Figures figures;
    for (Plan plan : plans) {
        int const step = plan.kind == Kind::Memory ? AllocationStep() : 1;
        for (char const* struck = ""; struck != nullptr; plan.number += step) {
            prepare();
            bool result = false;
            bool isThrown = false;
            {
                Armed const armed(plan);
                try {
                    result = operation();
                } catch (...) {
                    isThrown = true;
                }
                struck = armed.Struck();
            }
            std::ostringstream trace;
            trace << "call " << plan.number << " (" << (struck != nullptr ? struck : "none") << ") of the "
                  << (plan.kind == Kind::Memory ? "allocations" : "system's") << " fails"
                  << (plan.span == Span::Rest ? " with all later ones" : "") << ", error " << plan.error;
            SCOPED_TRACE(trace.str());
            EXPECT_FALSE(isThrown);
            check(result, struck);
            figures.faults += struck != nullptr ? 1 : 0;
            figures.refusals += result ? 0 : 1;
            if (::testing::Test::HasFailure() || plan.number >= Most) {
                EXPECT_LT(plan.number, Most) << "faults without end";
                return figures;
            }
        }
    }
    return figures;
}

} // namespace Faults
