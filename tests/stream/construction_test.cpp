// What the streams may be made of: no number and no address passes for a bool.
#include "quarn/stream/file_stream.h"
#include "quarn/stream/memory_stream.h"
#include "quarn/stream/null_stream.h"
#include "quarn/stream/stat_stream.h"

#include "tests/stream/makes.h"

#include <gtest/gtest.h>

namespace {

using Quarn::ifstream;
using Quarn::memorystream;
using Quarn::nullstream;
using Quarn::ofstream;
using Quarn::statstream;

static_assert(Makes<memorystream> && Makes<memorystream, bool> && Makes<memorystream, memorystream const&>);
static_assert(Makes<memorystream, int> && Makes<memorystream, unsigned long> &&
              Makes<memorystream, int, bool>);
static_assert(Makes<memorystream, unsigned char*, int> &&
              Makes<memorystream, unsigned char*, std::streampos, bool>);
static_assert(!Makes<memorystream, char const*> && !Makes<memorystream, void*> && !Makes<memorystream, int*>);
static_assert(!Makes<memorystream, unsigned char*> && !Makes<memorystream, std::nullptr_t>);
static_assert(!Makes<memorystream, int, int> && !Makes<memorystream, int, char const*>);
static_assert(!Makes<memorystream, unsigned char*, int, int> &&
              !Makes<memorystream, unsigned char*, int, void*>);

static_assert(Makes<ofstream> && Makes<ofstream, bool> && Makes<ofstream, char const*, int>);
static_assert(Makes<ofstream, char const*, std::ios_base::openmode> &&
              Makes<ofstream, char const*, int, bool>);
static_assert(!Makes<ofstream, char const*> && !Makes<ofstream, int> && !Makes<ofstream, std::nullptr_t>);
static_assert(!Makes<ofstream, char const*, int, int> && !Makes<ofstream, char const*, int, char const*>);
static_assert(!Makes<ofstream, ofstream const&> && !std::is_assignable_v<ofstream&, ofstream const&>);

static_assert(Makes<ifstream> && Makes<ifstream, char const*, int>);
static_assert(!Makes<ifstream, char const*> && !Makes<ifstream, int> && !Makes<ifstream, bool>);
static_assert(!Makes<ifstream, ifstream const&> && !std::is_assignable_v<ifstream&, ifstream const&>);

static_assert(Makes<statstream> && Makes<statstream, bool> && Makes<statstream, bool, bool>);
static_assert(Makes<statstream, statstream const&>);
static_assert(!Makes<statstream, int> && !Makes<statstream, char const*> &&
              !Makes<statstream, std::nullptr_t>);
static_assert(!Makes<statstream, bool, int> && !Makes<statstream, int, bool>);

static_assert(Makes<nullstream> && Makes<nullstream, nullstream const&> && !Makes<nullstream, bool>);

static_assert(std::is_abstract_v<Quarn::istream> && std::is_abstract_v<Quarn::ostream>);
static_assert(std::is_base_of_v<Quarn::istream, memorystream> &&
              std::is_base_of_v<Quarn::ostream, memorystream>);

TEST(Construction, OfAMemoryStreamFromANumberIsABlockOfThatSize)
{
    EXPECT_EQ(memorystream(4).GetSize(), std::streampos(4));
    EXPECT_EQ(memorystream(1).GetSize(), std::streampos(1));
    EXPECT_EQ(memorystream(0).GetSize(), std::streampos(0));
    EXPECT_EQ(memorystream(4, true).GetSize(), std::streampos(4));
    EXPECT_EQ(memorystream(true).GetSize(), std::streampos(0));
    EXPECT_EQ(memorystream(false).GetSize(), std::streampos(0));
}

} // namespace
