#include "quarn/text/string_list.h"

#include <concepts>
#include <cstddef>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::string;
using Quarn::StringList;

std::vector<string> Elements(StringList const& list)
{
    return {list.begin(), list.end()};
}

static_assert(
    std::same_as<decltype(std::declval<StringList&>() = std::declval<StringList const&>()), StringList&>);
static_assert(std::same_as<decltype(std::declval<StringList&>() = std::vector<std::string>()), StringList&>);
static_assert(std::same_as<StringList::value_type, string>);
// A number is no element.
static_assert(!std::constructible_from<StringList, std::size_t, int>);

TEST(StringList, IsEmptyAtFirst)
{
    StringList const list;
    EXPECT_TRUE(list.empty());
    EXPECT_EQ(list.begin(), list.end());
}

TEST(StringList, CountAndValue)
{
    EXPECT_EQ(Elements(StringList(3, "x")), (std::vector<string>{"x", "x", "x"}));
    EXPECT_EQ(Elements(StringList(1, string("a\0b", 3))), (std::vector<string>{string("a\0b", 3)}));
    EXPECT_TRUE(StringList(0, "x").empty());
}

TEST(StringList, RangeOfAList)
{
    StringList source;
    for (char const* const text : {"a", "b", "c", "d"}) {
        source.push_back(text);
    }
    StringList const& constant = source;
    EXPECT_EQ(Elements(StringList(source.begin(), source.end())), Elements(source));
    EXPECT_EQ(Elements(StringList(++constant.begin(), --constant.end())), (std::vector<string>{"b", "c"}));
    EXPECT_TRUE(StringList(source.begin(), source.begin()).empty());
}

TEST(StringList, CopiesAreIndependent)
{
    StringList original(2, "x");
    StringList copy(original);
    copy.front() = "changed";
    copy.push_back("more");
    EXPECT_EQ(Elements(original), (std::vector<string>{"x", "x"}));
    EXPECT_EQ(Elements(copy), (std::vector<string>{"changed", "x", "more"}));

    StringList assigned(5, "old");
    EXPECT_EQ(&(assigned = copy), &assigned);
    copy.clear();
    EXPECT_EQ(Elements(assigned), (std::vector<string>{"changed", "x", "more"}));
    assigned = *&assigned;
    EXPECT_EQ(assigned.size(), 3U);
    StringList const moved(std::move(assigned));
    EXPECT_EQ(moved.size(), 3U);
}

TEST(StringList, PushBackAppendsACopyInOrder)
{
    StringList list;
    string text = "one";
    list.push_back(text);
    text = "two";
    list.push_back(text);
    list.push_back(std::string("three"));
    list.push_back(string("a\0b", 3));
    EXPECT_EQ(Elements(list), (std::vector<string>{"one", "two", "three", string("a\0b", 3)}));
}

TEST(StringList, VectorElementIsDeliberatelyCutAtItsFirstZeroByte)
{
    std::vector<std::string> const texts = {std::string("a\0b", 3), std::string("\0", 1), "whole", ""};
    std::vector<string> const expected = {"a", "", "whole", ""};
    EXPECT_EQ(Elements(StringList(texts)), expected);
    StringList list(7, "old");
    EXPECT_EQ(&(list = texts), &list);
    EXPECT_EQ(Elements(list), expected);
}

// The documented temporary buffer changes its place at 512 characters; the element must not.
TEST(StringList, VectorElementsOfEveryLengthComeThrough)
{
    std::vector<std::string> texts;
    for (std::size_t const length : {0, 1, 15, 16, 510, 511, 512, 513, 514, 100'000}) {
        texts.emplace_back(length, 'x');
        texts.push_back(texts.back() + std::string(1, '\0') + "cut");
    }
    StringList const list(texts);
    ASSERT_EQ(list.size(), texts.size());
    std::size_t i = 0;
    for (string const& element : list) {
        EXPECT_EQ(element, texts[i / 2 * 2]) << i;
        ++i;
    }
}

TEST(StringList, EmptyVectorEmptiesTheList)
{
    EXPECT_TRUE(StringList(std::vector<std::string>()).empty());
    StringList list(2, "x");
    list = std::vector<std::string>();
    EXPECT_TRUE(list.empty());
}

TEST(StringList, IteratorsStayValidWhileTheListGrows)
{
    StringList list(1, "first");
    StringList::iterator const first = list.begin();
    string const* const address = &*first;
    for (int i = 0; i < 1000; ++i) {
        list.push_back("more");
        list.push_front("before");
    }
    EXPECT_EQ(&*first, address);
    EXPECT_EQ(*first, "first");
}

} // namespace
