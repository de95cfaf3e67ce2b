// The fold with vectors of 64 bytes, four blocks in each.
#include "quarn/platform/wide_vectors.h"
#include "quarn/stream/crc32_fold.h"
#include "quarn/stream/crc32_update.h"

namespace Quarn::detail {

#ifdef QUARN_HAVE_CLMUL

#define QUARN_VECTOR_CLMUL __attribute__((target("pclmul,avx512f,vpclmulqdq")))

namespace {

constexpr std::size_t VectorSize = 64;

QUARN_VECTOR_CLMUL inline __m512i LoadVector(void const* p)
{
    return _mm512_loadu_si512(p);
}

QUARN_VECTOR_CLMUL inline __m512i EachPair(FoldPair pair)
{
    auto const low = static_cast<long long>(pair.low);
    auto const high = static_cast<long long>(pair.high);
    return _mm512_set4_epi64(high, low, high, low);
}

// Under a full mask, because GCC 12 takes what stands for "no mask" for an uninitialised variable.
template<int index>
QUARN_VECTOR_CLMUL inline __m128i Block(__m512i vector)
{
    return _mm512_maskz_extracti32x4_epi32(0xF, vector, index);
}

// The three added.
QUARN_VECTOR_CLMUL inline __m512i SumOfVectors(__m512i a, __m512i b, __m512i c)
{
    return _mm512_ternarylogic_epi64(a, b, c, 0x96);
}

QUARN_VECTOR_CLMUL inline __m512i FoldVector(__m512i sum, __m512i data, __m512i by)
{
    return SumOfVectors(_mm512_clmulepi64_epi128(sum, by, 0x00), _mm512_clmulepi64_epi128(sum, by, 0x11),
                        data);
}

template<std::size_t... i>
QUARN_VECTOR_CLMUL inline void LoadEachVector(__m512i (&sums)[sizeof...(i)], unsigned char const* data,
                                              std::index_sequence<i...> /*which*/)
{
    ((sums[i] = LoadVector(data + VectorSize * i)), ...);
}

template<std::size_t... i>
QUARN_VECTOR_CLMUL inline void FoldEachVector(__m512i (&sums)[sizeof...(i)], unsigned char const* data,
                                              __m512i by, std::index_sequence<i...> /*which*/)
{
    (Prefetch(data + VectorSize * i), ...);
    ((sums[i] = FoldVector(sums[i], LoadVector(data + VectorSize * i), by)), ...);
}

// The blocks of all sums at the last one's place.
template<std::size_t... i>
QUARN_VECTOR_CLMUL inline __m128i ToTheLast(__m512i const (&sums)[sizeof...(i)],
                                            std::index_sequence<i...> /*which*/)
{
    constexpr std::size_t count = sizeof...(i);
    FoldPair const* const pairs = FoldsToTheLast.data() + (MaxFoldBlocks - 4 * count);
    __m512i sum = _mm512_maskz_mov_epi64(0xC0, sums[count - 1]); // the last block, which stays
    ((sum = FoldVector(sums[i], sum, LoadVector(pairs + 4 * i))), ...);
    return _mm_xor_si128(_mm_xor_si128(Block<0>(sum), Block<1>(sum)),
                         _mm_xor_si128(Block<2>(sum), Block<3>(sum)));
}

// As FoldInStep, of vectors.
template<std::size_t count>
QUARN_VECTOR_CLMUL inline __m128i FoldVectorsInStep(std::uint32_t reg, unsigned char const*& data,
                                                    std::size_t& n)
{
    constexpr std::size_t stride = VectorSize * count;
    constexpr auto all = std::make_index_sequence<count>();
    __m512i sums[count];
    LoadEachVector(sums, data, all);
    sums[0] = _mm512_xor_si512(sums[0], _mm512_zextsi128_si512(_mm_cvtsi32_si128(static_cast<int>(reg))));
    __m512i const byStride = EachPair(FoldBy(8 * stride));
    unsigned char const* at = data + stride;
    std::size_t left = n - stride;
    for (; left >= stride; left -= stride, at += stride) {
        FoldEachVector(sums, at, byStride, all);
    }
    data = at;
    n = left;
    return ToTheLast(sums, all);
}

QUARN_CLMUL std::uint32_t FoldRest(__m128i sum, unsigned char const* data, std::size_t n)
{
    return n < 16 ? Finish(sum, data, n) : FoldAll(Fold(sum, Load(data), Pair(FoldBy(128))), data, n);
}

} // namespace

bool HasVectorCarrylessMultiply()
{
    return KeepsWideVectors && HasCarrylessMultiply() &&
           static_cast<bool>(__builtin_cpu_supports("avx512f")) &&
           static_cast<bool>(__builtin_cpu_supports("vpclmulqdq"));
}

QUARN_VECTOR_CLMUL std::uint32_t Crc32VectorFolding(std::uint32_t reg, unsigned char const* data,
                                                    std::size_t n)
{
    if (n < 4 * VectorSize) {
        return Crc32Folding(reg, data, n);
    }
    __m128i const sum =
        n < 8 * VectorSize ? FoldVectorsInStep<4>(reg, data, n) : FoldVectorsInStep<8>(reg, data, n);
    return FoldRest(sum, data, n);
}

#else

bool HasVectorCarrylessMultiply()
{
    return false;
}

std::uint32_t Crc32VectorFolding(std::uint32_t reg, unsigned char const* data, std::size_t n)
{
    return Crc32Sliced(reg, data, n);
}

#endif

} // namespace Quarn::detail
