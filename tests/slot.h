// Where a virtual operation stands in the table of virtual functions, an order that is part of the interface.
// A pointer to a virtual member function holds one more than the operation's offset in that table (the C++
// ABI of all compilers in use). A virtual destructor takes two slots: the first two of the streams and the
// library, the last two of others.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

template<typename Operation>
std::size_t Slot(Operation operation)
{
    std::uintptr_t parts[2];
    static_assert(sizeof operation == sizeof parts);
    std::memcpy(parts, &operation, sizeof parts);
    return (parts[0] - 1) / sizeof(void*);
}
