// The fold by vectors on processors that have the vectors but not their carry-less multiplication: the one
// instruction is emulated when the processor refuses it.
#include "quarn/stream/crc32_update.h"

#include <csignal>
#include <cstdint>
#include <cstring>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#if defined(__x86_64__)

#include <cpuid.h>
#include <ucontext.h>

namespace {

using namespace Quarn::detail;

constexpr std::size_t VectorSize = 64;

// The registers in the state that a signal saves, in the processor's own layout.
class SavedState
{
public:
    explicit SavedState(void* context) : m_registers(static_cast<ucontext_t*>(context)->uc_mcontext) {}

    greg_t& InstructionPointer() { return m_registers.gregs[REG_RIP]; }

    std::uint8_t const* Address(unsigned number) const
    {
        constexpr int order[] = {REG_RAX, REG_RCX, REG_RDX, REG_RBX, REG_RSP, REG_RBP, REG_RSI, REG_RDI,
                                 REG_R8,  REG_R9,  REG_R10, REG_R11, REG_R12, REG_R13, REG_R14, REG_R15};
        return reinterpret_cast<std::uint8_t const*>(m_registers.gregs[order[number]]);
    }

    void GetVector(unsigned number, std::uint8_t* bytes)
    {
        ForEachPart(number, [&](std::uint8_t* part, std::size_t offset, std::size_t size) {
            std::memcpy(bytes + offset, part, size);
        });
    }

    void SetVector(unsigned number, std::uint8_t const* bytes)
    {
        ForEachPart(number, [&](std::uint8_t* part, std::size_t offset, std::size_t size) {
            std::memcpy(part, bytes + offset, size);
        });
    }

private:
    enum Component : unsigned
    {
        Low128 = 1,
        High128 = 2,
        High256 = 6,
        Upper16 = 7
    };

    template<typename Action>
    void ForEachPart(unsigned number, Action action)
    {
        if (number >= 16) {
            action(Part(Upper16, number - 16, VectorSize), 0, VectorSize);
            return;
        }
        action(Part(Low128, number, 16), 0, 16);
        action(Part(High128, number, 16), 16, 16);
        action(Part(High256, number, 32), 32, 32);
    }

    std::uint8_t* Part(Component component, unsigned index, std::size_t size)
    {
        auto* const area = reinterpret_cast<std::uint8_t*>(m_registers.fpregs);
        unsigned length = 256;
        unsigned offset = 160;
        if (component != Low128) {
            unsigned ignored = 0;
            __cpuid_count(0xD, component, length, offset, ignored, ignored);
        }
        // What the header does not list is all zero.
        std::uint64_t listed = 0;
        std::memcpy(&listed, area + 512, sizeof listed);
        if ((listed >> component & 1U) == 0) {
            std::memset(area + offset, 0, length);
            listed |= std::uint64_t{1} << component;
            std::memcpy(area + 512, &listed, sizeof listed);
        }
        return area + offset + index * size;
    }

    mcontext_t& m_registers;
};

void MultiplyCarryless(std::uint64_t a, std::uint64_t b, std::uint8_t* product)
{
    std::uint64_t halves[2] = {};
    for (unsigned bit = 0; bit < 64; ++bit) {
        if ((b >> bit & 1U) != 0) {
            halves[0] ^= a << bit;
            halves[1] ^= bit != 0 ? a >> (64 - bit) : 0;
        }
    }
    std::memcpy(product, halves, sizeof halves);
}

std::uint64_t Half(std::uint8_t const* block, bool high)
{
    std::uint64_t half = 0;
    std::memcpy(&half, block + (high ? 8 : 0), sizeof half);
    return half;
}

int g_emulatedCount = 0;

// VPCLMULQDQ of 512 bits, as the processor manual encodes it: the prefix 62 of four bytes, the operation 44,
// the operands, and the choice of halves.
void EmulateMultiplication(int /*signal*/, siginfo_t* /*information*/, void* context)
{
    SavedState state(context);
    auto const* const code = reinterpret_cast<std::uint8_t const*>(state.InstructionPointer());
    bool const isMultiplication = code[0] == 0x62 && (code[1] & 0x07U) == 3 && (code[2] & 0x07U) == 5 &&
                                  (code[3] & 0x60U) == 0x40 && code[4] == 0x44;
    unsigned const operands = code[5];
    unsigned const mode = operands >> 6U;
    unsigned const high = ~unsigned{code[1]};
    unsigned const target = (operands >> 3U & 7U) | (high >> 4U & 8U) | (high & 0x10U);
    unsigned const middle = ~unsigned{code[2]};
    unsigned const last = ~unsigned{code[3]};
    unsigned const first = (middle >> 3U & 15U) | (last << 1U & 0x10U);
    unsigned const base = (operands & 7U) | (high >> 2U & 8U);

    std::uint8_t a[VectorSize];
    std::uint8_t b[VectorSize];
    std::uint8_t const* rest = code + 6;
    std::uint8_t const* memory = nullptr;
    if (mode == 3) {
        state.GetVector(base | (high >> 2U & 0x10U), b);
    } else {
        bool const isRelative = mode == 0 && (operands & 7U) == 5;
        rest += (operands & 7U) == 4 ? 1 : 0; // no index: the only form that compilers use here
        memory = isRelative ? nullptr : state.Address(base);
        std::int32_t distance = 0;
        if (mode == 1) {
            distance = static_cast<std::int8_t>(*rest++) * static_cast<std::int32_t>(VectorSize);
        } else if (mode == 2 || isRelative) {
            std::memcpy(&distance, rest, sizeof distance);
            rest += sizeof distance;
        }
        memory = (isRelative ? rest + 1 : memory) + distance;
    }
    if (!isMultiplication) {
        std::signal(SIGILL, SIG_DFL); // it comes again, and ends the program
        return;
    }
    if (memory != nullptr) {
        std::memcpy(b, memory, sizeof b);
    }
    state.GetVector(first, a);
    std::uint8_t product[VectorSize];
    for (std::size_t block = 0; block < VectorSize; block += 16) {
        MultiplyCarryless(Half(a + block, (*rest & 0x01U) != 0), Half(b + block, (*rest & 0x10U) != 0),
                          product + block);
    }
    state.SetVector(target, product);
    state.InstructionPointer() = reinterpret_cast<greg_t>(rest + 1);
    ++g_emulatedCount;
}

void ExpectVectorFoldEqualToPlain()
{
    std::mt19937 random(5);
    std::vector<unsigned char> bytes(9000);
    for (unsigned char& byte : bytes) {
        byte = static_cast<unsigned char>(random());
    }
    for (std::size_t n = 0; n < bytes.size() - 64; n += n < 1100 ? 5 : 397) {
        std::uint32_t const reg = n % 3 == 0 ? 0xFFFFFFFFU : static_cast<std::uint32_t>(random());
        unsigned char const* const from = bytes.data() + n % 64;
        ASSERT_EQ(Crc32VectorFolding(reg, from, n), Crc32Plain(reg, from, n)) << n << " bytes";
    }
}

TEST(Crc32Paths, VectorFoldingEqualsThePlainTableWithItsMultiplicationEmulated)
{
    if (!HasCarrylessMultiply() || !static_cast<bool>(__builtin_cpu_supports("avx512f"))) {
        GTEST_SKIP() << "the processor has no vectors of that size to hold the operands";
    }
    struct sigaction emulating = {};
    struct sigaction before = {};
    emulating.sa_sigaction = EmulateMultiplication;
    emulating.sa_flags = SA_SIGINFO;
    ASSERT_EQ(::sigaction(SIGILL, &emulating, &before), 0);
    ExpectVectorFoldEqualToPlain();
    ASSERT_EQ(::sigaction(SIGILL, &before, nullptr), 0);
    EXPECT_EQ(g_emulatedCount == 0, HasVectorCarrylessMultiply());
}

} // namespace

#endif
