#include "quarn/text/exception.h"

#include <exception>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Quarn::QuarnException;

static_assert(std::is_base_of_v<std::runtime_error, QuarnException>);
static_assert(std::is_base_of_v<std::exception, QuarnException>);
static_assert(std::has_virtual_destructor_v<QuarnException>);
static_assert(std::is_nothrow_copy_constructible_v<QuarnException>);
static_assert(std::is_convertible_v<QuarnException, bool>);
static_assert(std::is_same_v<decltype(std::declval<QuarnException const&>().GetString()), char const*>);
// No fields of its own.
static_assert(sizeof(QuarnException) == sizeof(std::runtime_error));

TEST(QuarnException, WithoutAMessageIsFalse)
{
    QuarnException const error;
    EXPECT_FALSE(error);
    EXPECT_STREQ(error.GetString(), "");
    EXPECT_STREQ(error.what(), "");
    EXPECT_FALSE(QuarnException(""));
}

TEST(QuarnException, CarriesItsMessage)
{
    QuarnException const error("x");
    EXPECT_TRUE(error);
    EXPECT_STREQ(error.GetString(), "x");
    EXPECT_STREQ(error.what(), "x");
    EXPECT_EQ(error.GetString(), error.what());

    Quarn::string const longMessage(100'000, 'm');
    EXPECT_EQ(QuarnException(longMessage).GetString(), longMessage);
    EXPECT_STREQ(QuarnException(std::string("standard")).GetString(), "standard");
}

TEST(QuarnException, MessageEndsAtAZeroByte)
{
    EXPECT_STREQ(QuarnException(Quarn::string("a\0b", 3)).GetString(), "a");
    EXPECT_FALSE(QuarnException(Quarn::string("\0b", 2)));
}

TEST(QuarnException, CopiesCarryTheMessage)
{
    QuarnException second("second");
    {
        QuarnException const first("first");
        QuarnException const copy(first);
        EXPECT_STREQ(copy.GetString(), "first");
        EXPECT_EQ(&(second = first), &second);
        second = *&second;
    }
    EXPECT_STREQ(second.GetString(), "first");
    second = QuarnException();
    EXPECT_FALSE(second);
}

// A subclass of a client that words its message itself.
class Worded : public QuarnException
{
public:
    explicit Worded(char const* text) : QuarnException("base"), m_text(text) {}
    char const* what() const noexcept override { return m_text; }

private:
    char const* m_text;
};

TEST(QuarnException, AnOverrideOfWhatIsHonouredThroughTheBase)
{
    Worded const worded("own words");
    QuarnException const& base = worded;
    EXPECT_STREQ(base.GetString(), "own words");
    EXPECT_TRUE(base);

    Worded const empty("");
    EXPECT_FALSE(static_cast<QuarnException const&>(empty));
    Worded const null(nullptr);
    EXPECT_FALSE(static_cast<QuarnException const&>(null));
    EXPECT_EQ(static_cast<QuarnException const&>(null).GetString(), nullptr);
}

TEST(QuarnException, IsCaughtAsEachOfItsBases)
{
    EXPECT_THROW(throw QuarnException("x"), QuarnException);
    EXPECT_THROW(throw QuarnException("x"), std::runtime_error);
    EXPECT_THROW(throw QuarnException("x"), std::exception);
    EXPECT_THROW(throw Worded("x"), QuarnException);
    try {
        throw QuarnException("message");
    } catch (std::exception const& error) {
        EXPECT_STREQ(error.what(), "message");
        EXPECT_NE(dynamic_cast<QuarnException const*>(&error), nullptr);
    }
}

TEST(QuarnException, SurvivesAnExceptionPointer)
{
    std::exception_ptr pointer;
    try {
        throw QuarnException("kept");
    } catch (...) {
        pointer = std::current_exception();
    }
    try {
        std::rethrow_exception(pointer);
    } catch (QuarnException const& error) {
        EXPECT_STREQ(error.GetString(), "kept");
    }
}

// Thrown inside the library, by the only operations of the text room that throw.
TEST(LibraryBoundary, StandardExceptionsAreCaughtByTheirTypeAndBases)
{
    Quarn::string text = "abc";
    EXPECT_THROW(text.at(3), std::out_of_range);
    EXPECT_THROW(text.at(3), std::logic_error);
    EXPECT_THROW(text.at(3), std::exception);
    EXPECT_THROW(text.reserve(Quarn::string::npos), std::length_error);
}

} // namespace
