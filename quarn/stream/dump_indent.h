// Quarn::DumpStreamIndent: makes the lines that a stream dumps begin further in for as long as the guard
// lives. Guards nest; like their stream, they belong to one thread at a time.
//
//     stream.dumpLabel("Position");
//     Quarn::DumpStreamIndent const indent(stream, 4);
//     stream.dump("X", 5);                                  // "    X=5"
#pragma once

#include "quarn/export.h"

#include <cstdint>

namespace Quarn {

class ostream;

class QUARN_API DumpStreamIndent
{
public:
    // Adds `n` spaces, a negative number too, to the depth of the stream, which must outlive the guard.
    DumpStreamIndent(ostream& stream, int n);
    // A guard with the same amount, which is not added again but will be subtracted again.
    DumpStreamIndent(DumpStreamIndent const& other) = default;
    DumpStreamIndent& operator=(DumpStreamIndent const& other) = delete;
    // As Release.
    virtual ~DumpStreamIndent();

    // Subtracts the amount from the depth now; again, it does nothing.
    void Release();
    // Adds `k` to the amount, and then the whole amount to the depth once more. So a guard of 4 after Add(2)
    // has raised the depth by 10, and will lower it by 6.
    void Add(int k);

private:
    void Move(std::int32_t n);

    std::int32_t m_amount;
    ostream& m_stream;
};

} // namespace Quarn
