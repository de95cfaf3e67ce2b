// Where nothing is counted: a program for Windows cannot replace what its libraries allocate with.
#include "fuzz/allocations.h"

namespace fuzz {

Allocations g_allocations;

} // namespace fuzz
