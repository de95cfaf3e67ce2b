// Pack: what it writes, refuses, and does not take at all.
#include "tests/registry/record_places.h"

#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

namespace {

using Quarn::HighFirst;
using Quarn::LowFirst;
using Quarn::string;

template<typename Place>
class Packing : public testing::Test
{
protected:
    Place m_place;
};

using Places = testing::Types<PropertyRecord, RegistryRecord>;
TYPED_TEST_SUITE(Packing, Places);

TYPED_TEST(Packing, EachItemEndsInAComma)
{
    EXPECT_TRUE(this->m_place.Pack(1));
    EXPECT_EQ(this->m_place.Stored(), "1,");
    EXPECT_TRUE(this->m_place.Pack(-1, 4294967295U, true, 1234567.891, 0.5F, HighFirst{0x100000002},
                                   LowFirst{0x100000002}, string("abc")));
    EXPECT_EQ(this->m_place.Stored(), "-1,4294967295,1,1234567.875000,0.500000,1:2,2:1,\"abc\",");
}

TYPED_TEST(Packing, ALongHas32Bits)
{
    EXPECT_TRUE(this->m_place.Pack(-2147483647L - 1, 2147483647L, 4294967295UL, 0L));
    EXPECT_EQ(this->m_place.Stored(), "-2147483648,2147483647,4294967295,0,");
    if constexpr (sizeof(long) > 4) {
        EXPECT_FALSE(this->m_place.Pack(1, std::numeric_limits<long>::max()));
        EXPECT_FALSE(this->m_place.Pack(-2147483647L - 2));
        EXPECT_FALSE(this->m_place.Pack(2147483648L));
        EXPECT_FALSE(this->m_place.Pack(std::numeric_limits<unsigned long>::max(), 1));
        EXPECT_EQ(this->m_place.Stored(), "-2147483648,2147483647,4294967295,0,") << "refused, not cut";
    }
}

TYPED_TEST(Packing, ATextIsAnythingThatIsOne)
{
    std::string const standard = "standard";
    char characters[] = "characters";
    char const* const plain = "plain";
    EXPECT_TRUE(this->m_place.Pack("first", standard, std::string_view("view of more").substr(0, 4),
                                   characters, plain, string()));
    EXPECT_EQ(this->m_place.Stored(), ",\"first\",\"standard\",\"view\",\"characters\",\"plain\",\"\",");
}

TYPED_TEST(Packing, TextsAreWrittenAsTheyAre)
{
    EXPECT_TRUE(this->m_place.Pack(1, "a\"b,c\\"));
    EXPECT_EQ(this->m_place.Stored(), "1,\"a\"b,c\\\",");
    EXPECT_TRUE(this->m_place.Pack(std::string("ab\0cd", 5), 1));
    EXPECT_EQ(this->m_place.Stored(), ",\"ab\",1,");
    std::string const large(100000, 'x');
    EXPECT_TRUE(this->m_place.Pack(large));
    EXPECT_EQ(this->m_place.Stored(), ",\"" + large + "\",");
}

TEST(PackingSettings, MarksTheValueAndItsKeysDirty)
{
    Quarn::PropertyKey root("root", nullptr);
    Quarn::PropertyValue* const value = root.AddSubKey("key")->AddValue("v");
    root.ClearDirty();
    int number = 0;
    EXPECT_FALSE(Quarn::Unpack(*value, number));
    EXPECT_FALSE(root.Dirty());
    EXPECT_TRUE(Quarn::Pack(*value, 1));
    EXPECT_TRUE(root.Dirty());
    EXPECT_TRUE(Quarn::Unpack(std::as_const(*value), number));
}

TEST(PackingRegistryValues, RecordsTheErrorOfAClosedKey)
{
    Win32Quarn::CurrentUserKey key("Software\\QuarnUtilTest.closed");
    Win32Quarn::DWORDRegistryValue value(key, "value");
    EXPECT_FALSE(Quarn::Pack(value, 1));
    EXPECT_EQ(key.GetLastError(), 6);
    int number = 0;
    EXPECT_EQ(Quarn::Unpack(value, number).reason, Quarn::UnpackResult::Unreadable);
}

// What compiles, and what does not.

template<typename Item>
concept Packs = requires(Quarn::PropertyValue& property, Win32Quarn::RegistryValue& registry, Item& item)
{
    Quarn::Pack(property, item);
    Quarn::Pack(registry, 1, item);
};
template<typename Item>
concept Unpacks = requires(Quarn::PropertyValue& property, Win32Quarn::RegistryValue& registry, Item& item)
{
    Quarn::Unpack(property, item);
    Quarn::Unpack(registry, item, item);
};
template<typename... Items>
constexpr bool AllPack = (Packs<Items> && ...);
template<typename... Items>
constexpr bool AllUnpack = (Unpacks<Items> && ...);

static_assert(AllPack<int, unsigned int, long, unsigned long, bool, double, float, HighFirst, LowFirst> &&
              AllUnpack<int, unsigned int, long, unsigned long, bool, double, float, HighFirst, LowFirst>);
static_assert(AllPack<string, std::string, std::string_view, char const*, char[4]> &&
              AllUnpack<string, std::string>);
static_assert(!Unpacks<std::string_view> && !Unpacks<char const*> && !Unpacks<char[4]>);

enum Plain
{
    PlainOne
};

static_assert(!Packs<long long> && !Packs<unsigned long long> && !Packs<short> && !Packs<char> &&
              !Packs<unsigned char> && !Packs<wchar_t> && !Packs<long double> && !Packs<Plain> &&
              !Packs<string*> && !Packs<float*> && !Packs<void*> && !Packs<std::nullptr_t>);
static_assert(!Unpacks<long long> && !Unpacks<short> && !Unpacks<char> && !Unpacks<long double> &&
              !Unpacks<Plain> && !Unpacks<int*> && !Unpacks<string*> && !Unpacks<int const> &&
              !Unpacks<string const>);

template<typename Value, typename... Items>
concept PacksInto = requires(Value& value, Items&... items)
{
    Quarn::Pack(value, items...);
};
template<typename Value, typename... Items>
concept UnpacksFrom = requires(Value& value, Items&... items)
{
    Quarn::Unpack(value, items...);
};

static_assert(PacksInto<Win32Quarn::DWORDRegistryValue, int> && UnpacksFrom<Quarn::PropertyValue const, int>);
static_assert(!PacksInto<Quarn::PropertyValue> && !UnpacksFrom<Quarn::PropertyValue>, "no items");
static_assert(!PacksInto<Quarn::PropertyValue const, int> && !PacksInto<Quarn::PropertyKey, int> &&
              !UnpacksFrom<Win32Quarn::RegistryValue const, int>);

} // namespace
