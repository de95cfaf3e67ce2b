// (private) CRC-32 by folding with carry-less multiplication, after V. Gopal et al., "Fast CRC Computation
// for Generic Polynomials Using PCLMULQDQ Instruction" (Intel, 2009): the constants, and what the paths with
// vectors of 16 and of 64 bytes share.
//
// A sum of the data so far is moved D bits ahead and added to the data there: the half with the
// higher powers times x^(D+32), the other times x^(D-32), both modulo the polynomial P. All values are
// bit-reflected, so such a constant is the reflected remainder shifted left by one.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#if defined(__GNUC__) && defined(__x86_64__)
#define QUARN_HAVE_CLMUL

#include "quarn/stream/crc32_update.h"

#include <utility>

#include <immintrin.h>

#endif

namespace Quarn::detail {

constexpr std::uint64_t ReflectedPower(unsigned exponent)
{
    // x^exponent mod P, most significant coefficient first, then reflected.
    std::uint32_t remainder = 1;
    for (unsigned i = 0; i < exponent; ++i) {
        remainder = (remainder << 1U) ^ ((remainder & 0x80000000U) != 0 ? 0x04C11DB7U : 0U);
    }
    std::uint64_t reflected = 0;
    for (unsigned bit = 0; bit < 32; ++bit) {
        reflected |= std::uint64_t{remainder >> bit & 1U} << (31U - bit);
    }
    return reflected << 1U;
}

struct FoldPair
{
    std::uint64_t low = 0;
    std::uint64_t high = 0;
};

constexpr FoldPair FoldBy(unsigned bits)
{
    return {ReflectedPower(bits + 32), ReflectedPower(bits - 32)};
}

// The values that the paper lists for this polynomial.
static_assert(FoldBy(512).low == 0x154442BD4 && FoldBy(512).high == 0x1C6E41596);
static_assert(FoldBy(128).low == 0x1751997D0 && FoldBy(128).high == 0x0CCAA009E);

// The pairs that move a sum by 31 blocks of 16 bytes, by 30 and so on down to none, so that those for a row
// of sums to the last one's place lie in a row too. None is no multiplication: its pair is 0.
constexpr std::size_t MaxFoldBlocks = 32;

constexpr std::array<FoldPair, MaxFoldBlocks> MakeFoldsToTheLast()
{
    std::array<FoldPair, MaxFoldBlocks> pairs{};
    for (unsigned blocks = 1; blocks < MaxFoldBlocks; ++blocks) {
        pairs[MaxFoldBlocks - 1 - blocks] = FoldBy(128 * blocks);
    }
    return pairs;
}

alignas(64) inline constexpr std::array<FoldPair, MaxFoldBlocks> FoldsToTheLast = MakeFoldsToTheLast();

constexpr std::uint64_t FoldTo64 = ReflectedPower(64);
static_assert(FoldTo64 == 0x163CD6124);
constexpr std::uint64_t Polynomial = 0x1DB710641; // P, reflected, 33 bits
constexpr std::uint64_t Barrett = 0x1F7011641;    // floor(x^64 / P), reflected, 33 bits

#ifdef QUARN_HAVE_CLMUL

#define QUARN_CLMUL __attribute__((target("pclmul,avx")))

QUARN_CLMUL inline __m128i Load(unsigned char const* p)
{
    return _mm_loadu_si128(reinterpret_cast<__m128i const*>(p));
}

// Asks for the line of 64 bytes that the fold comes to soon, beyond what the processor fetches by itself. It
// need not be there.
QUARN_CLMUL inline void Prefetch(unsigned char const* p)
{
    constexpr std::size_t ahead = 2048;
    _mm_prefetch(reinterpret_cast<char const*>(reinterpret_cast<std::uintptr_t>(p) + ahead), _MM_HINT_T0);
}

QUARN_CLMUL inline __m128i Pair(FoldPair pair)
{
    return _mm_set_epi64x(static_cast<long long>(pair.high), static_cast<long long>(pair.low));
}

QUARN_CLMUL inline __m128i Fold(__m128i sum, __m128i data, __m128i by)
{
    __m128i const low = _mm_clmulepi64_si128(sum, by, 0x00);
    __m128i const high = _mm_clmulepi64_si128(sum, by, 0x11);
    return _mm_xor_si128(_mm_xor_si128(low, high), data);
}

// Folds the 16-byte blocks of the rest into `sum`, reduces to 32 bits, and takes the last bytes by table.
QUARN_CLMUL inline std::uint32_t Finish(__m128i sum, unsigned char const* data, std::size_t n)
{
    __m128i const by128 = Pair(FoldBy(128));
    for (; n >= 16; n -= 16, data += 16) {
        sum = Fold(sum, Load(data), by128);
    }

    __m128i const low32 = _mm_setr_epi32(-1, 0, 0, 0);
    // 128 bits (and the 32 zero bits that a CRC appends) to 96, to 64, then Barrett's reduction to 32.
    sum = _mm_xor_si128(_mm_srli_si128(sum, 8), _mm_clmulepi64_si128(sum, by128, 0x10));
    __m128i const to64 = _mm_set_epi64x(0, static_cast<long long>(FoldTo64));
    sum = _mm_xor_si128(_mm_srli_si128(sum, 4), _mm_clmulepi64_si128(_mm_and_si128(sum, low32), to64, 0x00));
    __m128i const reduce =
        _mm_set_epi64x(static_cast<long long>(Barrett), static_cast<long long>(Polynomial));
    __m128i quotient = _mm_clmulepi64_si128(_mm_and_si128(sum, low32), reduce, 0x10);
    quotient = _mm_clmulepi64_si128(_mm_and_si128(quotient, low32), reduce, 0x00);
    auto const reg = static_cast<std::uint32_t>(_mm_extract_epi32(_mm_xor_si128(sum, quotient), 1));
    return n != 0 ? Crc32Sliced(reg, data, n) : reg;
}

// What the sums in step do. Written out, so that each sum has a register.
template<std::size_t... i>
QUARN_CLMUL inline void LoadEach(__m128i (&sums)[sizeof...(i)], unsigned char const* data,
                                 std::index_sequence<i...> /*which*/)
{
    ((sums[i] = Load(data + 16 * i)), ...);
}

template<std::size_t... i>
QUARN_CLMUL inline void FoldEach(__m128i (&sums)[sizeof...(i)], unsigned char const* data, __m128i by,
                                 std::index_sequence<i...> /*which*/)
{
    ((i % 4 == 0 ? Prefetch(data + 16 * i) : void()), ...);
    ((sums[i] = Fold(sums[i], Load(data + 16 * i), by)), ...);
}

// All but the last straight to its place, so that no multiplication waits for another.
template<std::size_t... i>
QUARN_CLMUL inline __m128i ToTheLast(__m128i const (&sums)[sizeof...(i) + 1],
                                     std::index_sequence<i...> /*which*/)
{
    constexpr std::size_t count = sizeof...(i) + 1;
    __m128i sum = sums[count - 1];
    ((sum = Fold(sums[i], sum, Pair(FoldsToTheLast[MaxFoldBlocks - count + i]))), ...);
    return sum;
}

// Takes the blocks that `count` sums in step can take, as many as hide the latency of the multiplication, and
// leaves their one sum. `first` is the first block with the register added; at least `count` blocks are
// there.
template<std::size_t count>
QUARN_CLMUL inline __m128i FoldInStep(__m128i first, unsigned char const*& data, std::size_t& n)
{
    constexpr std::size_t stride = 16 * count;
    constexpr auto all = std::make_index_sequence<count>();
    __m128i sums[count]; // no std::array: GCC warns that it drops the type's attributes
    LoadEach(sums, data, all);
    sums[0] = first;
    __m128i const byStride = Pair(FoldBy(128 * count));
    unsigned char const* at = data + stride;
    std::size_t left = n - stride;
    for (; left >= stride; left -= stride, at += stride) {
        FoldEach(sums, at, byStride, all);
    }
    data = at;
    n = left;
    return ToTheLast(sums, std::make_index_sequence<count - 1>());
}

// All of the data, whose first block is there with what comes before it added.
QUARN_CLMUL inline std::uint32_t FoldAll(__m128i first, unsigned char const* data, std::size_t n)
{
    if (n >= 256) {
        __m128i const sum = FoldInStep<8>(first, data, n);
        return Finish(sum, data, n);
    }
    if (n >= 64) {
        __m128i const sum = FoldInStep<4>(first, data, n);
        return Finish(sum, data, n);
    }
    return Finish(first, data + 16, n - 16);
}

#endif

} // namespace Quarn::detail
