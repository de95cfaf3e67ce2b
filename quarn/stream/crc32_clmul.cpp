// The fold with vectors of 16 bytes.
#include "quarn/stream/crc32_fold.h"
#include "quarn/stream/crc32_update.h"

namespace Quarn::detail {

#ifdef QUARN_HAVE_CLMUL

bool HasCarrylessMultiply()
{
    return static_cast<bool>(__builtin_cpu_supports("pclmul")) &&
           static_cast<bool>(__builtin_cpu_supports("avx"));
}

QUARN_CLMUL std::uint32_t Crc32Folding(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    if (n < 16) {
        return Crc32Sliced(reg, data, n);
    }
    return FoldAll(_mm_xor_si128(Load(data), _mm_cvtsi32_si128(static_cast<int>(reg))), data, n);
}

#else

bool HasCarrylessMultiply()
{
    return false;
}

std::uint32_t Crc32Folding(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    return Crc32Sliced(reg, data, n);
}

#endif

} // namespace Quarn::detail
