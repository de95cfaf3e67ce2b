#include "quarn/stream/dump_indent.h"

#include "quarn/stream/ostream.h"

namespace Quarn {

namespace {

// Depths count modulo 2^32.
std::int32_t Sum(std::int32_t a, std::int32_t b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

} // namespace

DumpStreamIndent::DumpStreamIndent(ostream& stream, int n) : m_amount(n), m_stream(stream)
{
    Move(m_amount);
}

DumpStreamIndent::~DumpStreamIndent()
{
    Release();
}

void DumpStreamIndent::Release()
{
    Move(static_cast<std::int32_t>(0U - static_cast<std::uint32_t>(m_amount)));
    m_amount = 0;
}

void DumpStreamIndent::Add(int k)
{
    m_amount = Sum(m_amount, k);
    Move(m_amount);
}

void DumpStreamIndent::Move(std::int32_t n)
{
    m_stream.m_indent = Sum(m_stream.m_indent, n);
}

} // namespace Quarn
