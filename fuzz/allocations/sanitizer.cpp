// Counts by the hooks of the address sanitizer.
#include "fuzz/allocations.h"

#include <cstdlib>

#include <sanitizer/allocator_interface.h>

namespace fuzz {

Allocations g_allocations;

namespace {

// Blocks from before the hooks are freed, too; they do not count.
struct Installed
{
    Installed()
    {
        int const result = ::__sanitizer_install_malloc_and_free_hooks(
            [](void const volatile* /*block*/, std::size_t size) { g_allocations.Add(size); },
            [](void const volatile* block) {
                g_allocations.Remove(::__sanitizer_get_allocated_size(const_cast<void const*>(block)));
            });
        if (result == 0) {
            std::abort();
        }
    }
} const installed;

} // namespace

} // namespace fuzz
