// The order of the virtual operations is part of the interface.
#include "quarn/stream/compress.h"
#include "quarn/stream/istream.h"
#include "quarn/stream/ostream.h"
#include "quarn/text/exception.h"
#include "quarn/units/unit_enumerators.h"

#include "tests/slot.h"

#include <gtest/gtest.h>

namespace {

class InputProbe : public Quarn::istream
{
public:
    static std::size_t InputSlot() { return Slot(&InputProbe::input); }
};

class OutputProbe : public Quarn::ostream
{
public:
    static std::size_t OutputSlot() { return Slot(&OutputProbe::output); }
};

TEST(SlotOrder, OfTheInputStream)
{
    using Quarn::istream;
    EXPECT_EQ(Slot(&istream::gcount), 2U);
    EXPECT_EQ(Slot(&istream::peek), 3U);
    EXPECT_EQ(Slot(&istream::readsome), 4U);
    EXPECT_EQ(Slot(&istream::putback), 5U);
    EXPECT_EQ(Slot(&istream::unget), 6U);
    EXPECT_EQ(Slot(&istream::tellg), 7U);
    EXPECT_EQ(Slot<istream& (istream::*)(unsigned long, unsigned int)>(&istream::seekg), 8U);
    EXPECT_EQ(Slot<istream& (istream::*)(std::streampos)>(&istream::seekg), 9U);
    EXPECT_EQ(Slot(&istream::sync), 10U);
    EXPECT_EQ(Slot(&istream::IsValidInput), 11U);
    EXPECT_EQ(Slot(&istream::clearstate), 12U);
    EXPECT_EQ(Slot(&istream::close), 13U);
    EXPECT_EQ(Slot(&istream::get_path), 14U);
    EXPECT_EQ(InputProbe::InputSlot(), 15U);
}

TEST(SlotOrder, OfTheOutputStream)
{
    using Quarn::ostream;
    EXPECT_EQ(Slot<ostream& (ostream::*)(Quarn::Stream::HeaderBlock const&)>(&ostream::operator<<), 2U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(Quarn::Time const&)>(&ostream::operator<<), 3U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(char const*)>(&ostream::operator<<), 4U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(std::string const&)>(&ostream::operator<<), 5U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(Quarn::string const&)>(&ostream::operator<<), 6U);
    EXPECT_EQ(Slot(&ostream::flush), 7U);
    EXPECT_EQ(Slot(&ostream::tellp), 8U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(unsigned long, unsigned int)>(&ostream::seekp), 9U);
    EXPECT_EQ(Slot<ostream& (ostream::*)(std::streampos)>(&ostream::seekp), 10U);
    EXPECT_EQ(Slot(&ostream::IsValidOutput), 11U);
    EXPECT_EQ(Slot(&ostream::clearstate), 12U);
    EXPECT_EQ(Slot(&ostream::close), 13U);
    EXPECT_EQ(Slot(&ostream::get_path), 14U);
    EXPECT_EQ(OutputProbe::OutputSlot(), 15U);
}

TEST(SlotOrder, OfTheCompressorBeginsWithItsFiveOperations)
{
    using Quarn::StreamCompress;
    EXPECT_EQ(Slot(&StreamCompress::Compress), 0U);
    EXPECT_EQ(Slot(&StreamCompress::Decompress), 1U);
    EXPECT_EQ(Slot(&StreamCompress::Reset), 2U);
    EXPECT_EQ(Slot(&StreamCompress::GetMinimumSize), 3U);
    EXPECT_EQ(Slot(&StreamCompress::Release), 4U);
}

TEST(SlotOrder, OfTheUnitEnumeratorsBeginsWithTheirOneOperation)
{
    EXPECT_EQ(Slot(&Quarn::DistanceUnitEnumerator::Enumerate), 0U);
    EXPECT_EQ(Slot(&Quarn::LargeDistanceUnitEnumerator::Enumerate), 0U);
    EXPECT_EQ(Slot(&Quarn::MediumDistanceUnitEnumerator::Enumerate), 0U);
    EXPECT_EQ(Slot(&Quarn::SmallDistanceUnitEnumerator::Enumerate), 0U);
    EXPECT_EQ(Slot(&Quarn::VelocityUnitEnumerator::Enumerate), 0U);
    EXPECT_EQ(Slot(&Quarn::VelocityUnitEnumerator1::Enumerate), 0U);
}

TEST(SlotOrder, OfTheExceptionIsThatOfTheStandardOne)
{
    EXPECT_EQ(Slot(&Quarn::QuarnException::what), 2U);
}

} // namespace
