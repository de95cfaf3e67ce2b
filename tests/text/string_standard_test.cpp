// The standard string's operations on Quarn::string: every overload, results of our own type, and one text
// for every bad position.
#include "quarn/text/string.h"

#include <climits>
#include <concepts>
#include <cstdint>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include <gtest/gtest.h>

// Declared for the checks of types below, never called.
namespace declared {

Quarn::string& Object();
Quarn::string const& Constant();
std::string const& Standard();
char const* Pointer();

} // namespace declared

namespace {

using namespace declared;
using Quarn::string;

// Results that are strings are ours, by reference to the object where it was changed.
using Own = string&;
static_assert(std::same_as<decltype(Object() = Constant()), Own>);
static_assert(std::same_as<decltype(Object() = string()), Own>);
static_assert(std::same_as<decltype(Object() = Standard()), Own>);
static_assert(std::same_as<decltype(Object() = std::string()), Own>);
static_assert(std::same_as<decltype(Object() = 'c'), Own>);
static_assert(std::same_as<decltype(Object() = "text"), Own>);
static_assert(std::same_as<decltype(Object() = Pointer()), Own>);
static_assert(std::same_as<decltype(Object().assign(Constant())), Own>);
static_assert(std::same_as<decltype(Object().assign(Standard())), Own>);
static_assert(std::same_as<decltype(Object().assign(Standard(), 1)), Own>);
static_assert(std::same_as<decltype(Object().assign(Standard(), 0, 1)), Own>);
static_assert(std::same_as<decltype(Object().assign(Pointer())), Own>);
static_assert(std::same_as<decltype(Object().assign(Pointer(), Pointer())), Own>);
static_assert(std::same_as<decltype(Object().assign(Pointer(), 0)), Own>);
static_assert(std::same_as<decltype(Object().assign(0, 'c')), Own>);
static_assert(std::same_as<decltype(Object().assign(3, 'c')), Own>);
static_assert(std::same_as<decltype(Object().append(Constant())), Own>);
static_assert(std::same_as<decltype(Object().append(Standard(), 0, 1)), Own>);
static_assert(std::same_as<decltype(Object().append('c')), Own>);
static_assert(std::same_as<decltype(Object().append(Pointer(), Pointer())), Own>);
static_assert(std::same_as<decltype(Object().append(Pointer())), Own>);
static_assert(std::same_as<decltype(Object().append(Pointer(), 0)), Own>);
static_assert(std::same_as<decltype(Object().append(0, 'c')), Own>);
static_assert(std::same_as<decltype(Object() += Constant()), Own>);
static_assert(std::same_as<decltype(Object() += Standard()), Own>);
static_assert(std::same_as<decltype(Object() += Pointer()), Own>);
static_assert(std::same_as<decltype(Object() += 'c'), Own>);
static_assert(std::same_as<decltype(Object().erase()), Own>);
static_assert(std::same_as<decltype(Object().erase(0)), Own>);
static_assert(std::same_as<decltype(Object().erase(0, 1)), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Constant())), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Standard())), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Standard(), 0)), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Standard(), 0, 1)), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Pointer())), Own>);
static_assert(std::same_as<decltype(Object().insert(0, Pointer(), 0)), Own>);
static_assert(std::same_as<decltype(Object().insert(0, 1, 'c')), Own>);
static_assert(std::same_as<decltype(Constant().substr()), string>);
static_assert(std::same_as<decltype(Constant().substr(0)), string>);
static_assert(std::same_as<decltype(Constant().substr(0, 1)), string>);

// "Not found" is 64 bits wide whatever the system's own type.
static_assert(std::same_as<decltype(string::npos), std::uint64_t const>);
static_assert(std::same_as<decltype(string::NPOS), std::uint64_t const>);
static_assert(string::npos == UINT64_MAX && string::NPOS == UINT64_MAX);
static_assert(static_cast<std::uint32_t>(string::NPOS) == 0xFFFFFFFFU);
static_assert(std::string::npos == string::npos);

static_assert(std::derived_from<string, std::string>);
static_assert(std::is_nothrow_move_constructible_v<string> && std::is_nothrow_move_assignable_v<string>);
static_assert(std::convertible_to<char const*, string> && std::convertible_to<std::string, string>);

// A number is no text, neither at construction nor in an assignment, nor as an argument.
enum Plain
{
    zero
};
enum class Scoped
{
    zero
};
template<typename T>
constexpr bool isRefused = !std::constructible_from<string, T> && !std::convertible_to<T, string> &&
                           !std::is_assignable_v<string&, T>;
static_assert(isRefused<int> && isRefused<unsigned> && isRefused<long> && isRefused<unsigned long>);
static_assert(isRefused<short> && isRefused<long long> && isRefused<std::uint64_t> && isRefused<bool>);
static_assert(isRefused<signed char> && isRefused<unsigned char> && isRefused<wchar_t>);
static_assert(isRefused<char8_t> && isRefused<char16_t> && isRefused<char32_t>);
static_assert(isRefused<float> && isRefused<double> && isRefused<long double>);
static_assert(isRefused<Plain> && isRefused<Scoped>);
static_assert(!isRefused<char> && !isRefused<char const*> && !isRefused<char*> && !isRefused<std::string>);

void ExpectBadPosition(auto operation)
{
    try {
        operation();
        FAIL() << "no exception";
    } catch (std::out_of_range const& error) {
        EXPECT_STREQ(error.what(), "invalid string position");
    }
}

TEST(StringStandard, Construction)
{
    EXPECT_EQ(string().size(), 0U);
    EXPECT_EQ(string('c'), "c");
    EXPECT_EQ(string('\0').size(), 1U);
    EXPECT_EQ(string("ab\0cd"), "ab");
    EXPECT_EQ(string("ab\0cd", 5).size(), 5U);
    EXPECT_EQ(string("abc", 0), "");
    EXPECT_EQ(string(3, 'x'), "xxx");
    EXPECT_EQ(string(0, 'x'), "");
    std::string const standard("a\0b", 3);
    EXPECT_EQ(string(standard), standard);
    string const original(standard);
    string const copy(original);
    EXPECT_EQ(copy, original);
    EXPECT_NE(copy.data(), original.data());
    string source(100, 'm');
    string const moved(std::move(source));
    EXPECT_EQ(moved, string(100, 'm'));
    EXPECT_EQ(string(std::string(100, 's')), string(100, 's'));
}

TEST(StringStandard, Assignment)
{
    string text;
    EXPECT_EQ(&(text = string("own")), &text);
    EXPECT_EQ(text, "own");
    EXPECT_EQ(&(text = std::string("a\0b", 3)), &text);
    EXPECT_EQ(text, std::string("a\0b", 3));
    EXPECT_EQ(&(text = 'c'), &text);
    EXPECT_EQ(text, "c");
    EXPECT_EQ(&(text = "pointer"), &text);
    EXPECT_EQ(text, "pointer");
    text = text.c_str() + 3;
    EXPECT_EQ(text, "nter");
    text = *&text;
    EXPECT_EQ(text, "nter");

    char const letters[] = "abcdef";
    EXPECT_EQ(text.assign(string("own")), "own");
    EXPECT_EQ(text.assign(std::string("standard")), "standard");
    EXPECT_EQ(text.assign(std::string("standard"), 5), "ard");
    EXPECT_EQ(text.assign(std::string("standard"), 2, 3), "and");
    EXPECT_EQ(text.assign(std::string("abc"), 3), "");
    EXPECT_EQ(text.assign(letters, letters + 2), "ab");
    EXPECT_EQ(text.assign(letters, letters), "");
    EXPECT_EQ(text.assign(letters), "abcdef");
    EXPECT_EQ(text.assign(letters, 3), "abc");
    EXPECT_EQ(text.assign(letters, 0), "");
    EXPECT_EQ(text.assign(4, 'x'), "xxxx");
    EXPECT_EQ(text.assign(0, 'x'), "");
    std::string const standard = "iterators";
    EXPECT_EQ(text.assign(standard.begin(), standard.end()), "iterators");
    EXPECT_EQ(&text.assign(text.data() + 1, text.data() + 3), &text);
    EXPECT_EQ(text, "te");
}

TEST(StringStandard, Appending)
{
    char const letters[] = "abcdef";
    string text;
    EXPECT_EQ(&text.append(string("1")), &text);
    EXPECT_EQ(text.append(std::string("2")), "12");
    EXPECT_EQ(text.append('3'), "123");
    EXPECT_EQ(text.append(letters, letters + 2), "123ab");
    EXPECT_EQ(text.append(letters + 4), "123abef");
    EXPECT_EQ(text.append(letters, 1), "123abefa");
    EXPECT_EQ(text.append(letters, 0), "123abefa");
    EXPECT_EQ(text.append(2, 'x'), "123abefaxx");
    EXPECT_EQ(text.append(0, 'x'), "123abefaxx");
    EXPECT_EQ(text.append(std::string("standard"), 6), "123abefaxxrd");
    EXPECT_EQ(text.append(std::string("standard"), 0, 2), "123abefaxxrdst");
    text = "a";
    text += string("b");
    text += std::string("c");
    text += "d";
    text += 'e';
    EXPECT_EQ(text, "abcde");
    text.append(text);
    EXPECT_EQ(text, "abcdeabcde");
    string const sum = string("a") + "b" + 'c' + std::string("d") + string("e");
    EXPECT_EQ(sum, "abcde");
}

TEST(StringStandard, Comparison)
{
    string const text = "abc";
    EXPECT_TRUE(text == string("abc"));
    EXPECT_TRUE(text == std::string("abc"));
    EXPECT_TRUE(std::string("abc") == text);
    EXPECT_TRUE(text == "abc");
    EXPECT_TRUE("abc" == text);
    EXPECT_FALSE(text == string("abC"));
    EXPECT_TRUE(text != string("ab"));
    EXPECT_TRUE(text != std::string("abcd"));
    EXPECT_TRUE(text != "");
    EXPECT_FALSE(text != "abc");
    EXPECT_FALSE(text == string("abc\0", 4));

    EXPECT_TRUE(text < string("abd"));
    EXPECT_TRUE(text < string("abcd"));
    EXPECT_FALSE(text < text);
    EXPECT_TRUE(text > string("abb"));
    EXPECT_TRUE(text > string("ABC"));
    EXPECT_FALSE(text > text);
    EXPECT_TRUE(string("\xE4") > string("z"));
}

TEST(StringStandard, Compare)
{
    string const text = "abc";
    EXPECT_EQ(text.compare(string("abc")), 0);
    EXPECT_LT(text.compare(std::string("b")), 0);
    EXPECT_GT(text.compare("ab"), 0);
    EXPECT_EQ(text.compare(1, 2, string("bc")), 0);
    EXPECT_EQ(text.compare(0, 1, "a"), 0);
    EXPECT_EQ(text.compare(0, string::npos, "abc"), 0);
    EXPECT_EQ(text.compare(0, 2, "abx", 2), 0);
    EXPECT_EQ(text.compare(1, 2, std::string("xbcx"), 1, 2), 0);
    EXPECT_EQ(text.compare(1, 2, string("xbc"), 1), 0);
    EXPECT_LT(text.compare(3, 1, "x"), 0);
    EXPECT_EQ(text.compare(3, 1, ""), 0);
}

TEST(StringStandard, Access)
{
    string text = "abc";
    string const& constant = text;
    text[0] = 'A';
    text.at(1) = 'B';
    EXPECT_EQ(constant[0], 'A');
    EXPECT_EQ(constant.at(1), 'B');
    EXPECT_STREQ(constant.c_str(), "ABc");
    EXPECT_EQ(constant[3], '\0');
    EXPECT_EQ(constant.size(), 3U);
    EXPECT_FALSE(constant.empty());
    text.reserve(1000);
    EXPECT_GE(text.capacity(), 1000U);
    EXPECT_EQ(text, "ABc");
    text.clear();
    EXPECT_TRUE(constant.empty());
    EXPECT_EQ(constant.size(), 0U);
}

TEST(StringStandard, EraseAndInsert)
{
    string text = "abcdef";
    EXPECT_EQ(&text.erase(4), &text);
    EXPECT_EQ(text, "abcd");
    EXPECT_EQ(text.erase(1, 2), "ad");
    EXPECT_EQ(text.erase(2), "ad");
    EXPECT_EQ(*text.erase(text.begin()), 'd');
    EXPECT_EQ(text, "d");
    text.erase(text.begin(), text.end());
    EXPECT_EQ(text, "");
    text = "x";
    EXPECT_EQ(text.erase(), "");

    EXPECT_EQ(&text.insert(0, string("own")), &text);
    EXPECT_EQ(text.insert(3, std::string("s")), "owns");
    EXPECT_EQ(text.insert(0, "<"), "<owns");
    EXPECT_EQ(text.insert(1, ">!", 1), "<>owns");
    EXPECT_EQ(text.insert(6, 2, '.'), "<>owns..");
    EXPECT_EQ(text.insert(0, std::string("abc"), 2), "c<>owns..");
    EXPECT_EQ(text.insert(0, std::string("abc"), 0, 2), "abc<>owns..");
    EXPECT_EQ(*text.insert(text.begin(), '*'), '*');
    EXPECT_EQ(text, "*abc<>owns..");
    text = "ab";
    EXPECT_EQ(text.insert(1, text), "aabb");
}

TEST(StringStandard, FindAndSubstr)
{
    string const text = "abcabc";
    EXPECT_EQ(text.find('c'), 2U);
    EXPECT_EQ(text.find('c', 3), 5U);
    EXPECT_EQ(text.find("bc"), 1U);
    EXPECT_EQ(text.find("bcx", 2, 2), 4U);
    EXPECT_EQ(text.find(string("ca")), 2U);
    EXPECT_EQ(text.find(std::string("ca"), 3), string::npos);
    EXPECT_EQ(text.find('x'), string::NPOS);
    EXPECT_EQ(text.find("", 6), 6U);
    EXPECT_EQ(text.find("", 7), string::npos);
    EXPECT_EQ(text.rfind('a'), 3U);
    EXPECT_EQ(text.find_first_of("xc"), 2U);
    EXPECT_EQ(text.find_last_not_of("bc"), 3U);
    EXPECT_EQ(text.substr(), "abcabc");
    EXPECT_EQ(text.substr(4), "bc");
    EXPECT_EQ(text.substr(1, 2), "bc");
    EXPECT_EQ(text.substr(6), "");
    EXPECT_EQ(text.substr(0, 0), "");
    EXPECT_EQ(text.substr(2, string::NPOS), "cabc");
    EXPECT_EQ(string("a\0b", 3).substr(1), string("\0b", 2));
}

TEST(StringStandard, EveryBadPositionHasOneText)
{
    string text = "abc";
    string const& constant = text;
    std::string const other = "xy";
    ExpectBadPosition([&] { text.at(3) = 'x'; });
    ExpectBadPosition([&] { static_cast<void>(constant.at(3)); });
    ExpectBadPosition([&] { static_cast<void>(constant.at(string::npos)); });
    ExpectBadPosition([&] { static_cast<void>(string().at(0)); });
    ExpectBadPosition([&] { text.erase(4); });
    ExpectBadPosition([&] { text.erase(4, 0); });
    ExpectBadPosition([&] { static_cast<void>(constant.substr(4)); });
    ExpectBadPosition([&] { text.insert(4, string("x")); });
    ExpectBadPosition([&] { text.insert(4, "x"); });
    ExpectBadPosition([&] { text.insert(4, "xy", 1); });
    ExpectBadPosition([&] { text.insert(4, 1, 'x'); });
    ExpectBadPosition([&] { text.insert(4, other, 0, 1); });
    ExpectBadPosition([&] { text.insert(0, other, 3, 1); });
    ExpectBadPosition([&] { text.assign(other, 3); });
    ExpectBadPosition([&] { text.append(other, 3); });
    ExpectBadPosition([&] { static_cast<void>(constant.compare(4, 1, other)); });
    ExpectBadPosition([&] { static_cast<void>(constant.compare(4, 1, "x")); });
    ExpectBadPosition([&] { static_cast<void>(constant.compare(4, 1, "x", 1)); });
    ExpectBadPosition([&] { static_cast<void>(constant.compare(4, 1, other, 0, 1)); });
    ExpectBadPosition([&] { static_cast<void>(constant.compare(0, 1, other, 3, 1)); });
    EXPECT_EQ(text, "abc");
}

} // namespace
