// Pack against Writef and Unpack against Readf, for every kind of item, beside texts and numbers, over
// generated values, and for damaged records.
#include "tests/registry/record_places.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <random>
#include <string>

namespace {

using Quarn::string;

using Random = std::mt19937_64;

// Boundaries as often as any other bits.
std::uint64_t AnyBits(Random& random)
{
    constexpr std::uint64_t special[] = {0,          1,          0x7FFFFFFF,  0x80000000, 0xFFFFFFFF,
                                         0x80000001, 0xFFFFFFFE, 0x100000000, UINT64_MAX, UINT64_MAX << 32U};
    return random() % 2 == 0 ? special[random() % std::size(special)] : random();
}

// The kinds of items: the type that Pack takes, the letter and type of Writef and Readf.

template<typename T, char letter, typename ReadType = T>
struct Number
{
    using Type = T;
    using Read = ReadType;
    static constexpr char Letter = letter;
    static T Make(Random& random) { return static_cast<T>(static_cast<ReadType>(AnyBits(random))); }
    static ReadType Argument(T const& item) { return static_cast<ReadType>(item); }
    static bool Same(T const& item, ReadType const& read) { return item == static_cast<T>(read); }
    static bool ComesBack(T const& /*item*/, bool /*isFirst*/, bool /*drivePaths*/) { return true; }
};

struct Flag : Number<bool, 'b'>
{
    static bool Make(Random& random) { return random() % 2 == 0; }
};

struct Double : Number<double, 'd'>
{
    static double Make(Random& random)
    {
        return random() % 2 == 0 ? std::bit_cast<double>(random()) : static_cast<double>(random()) / 3e15;
    }
    // Bit for bit.
    static bool Same(double item, double read) { return std::memcmp(&item, &read, sizeof item) == 0; }
};

struct Float : Number<float, 'f'>
{
    static float Make(Random& random) { return std::bit_cast<float>(static_cast<std::uint32_t>(random())); }
    static float const* Argument(float const& item) { return &item; }
    static bool Same(float item, float read) { return std::memcmp(&item, &read, sizeof item) == 0; }
};

template<typename T, char letter>
struct Halves
{
    using Type = T;
    using Read = std::uint64_t;
    static constexpr char Letter = letter;
    static T Make(Random& random) { return T{AnyBits(random)}; }
    static std::uint64_t Argument(T const& item) { return item.value; }
    static bool Same(T const& item, std::uint64_t read) { return item.value == read; }
    static bool ComesBack(T const& /*item*/, bool /*isFirst*/, bool /*drivePaths*/) { return true; }
};

struct Text
{
    using Type = string;
    using Read = string;
    static constexpr char Letter = 't';
    static string Make(Random& random)
    {
        static std::string const alphabet("ab,\"\\: C\n\xE4%\0", 12);
        string text = random() % 4 == 0 ? "C:\\" : "";
        for (std::size_t length = random() % 3 == 0 ? 0 : random() % 7; length != 0; --length) {
            text.push_back(random() % 3 == 0 ? 'x' : alphabet[random() % alphabet.size()]);
        }
        return text;
    }
    static string const* Argument(string const& item) { return &item; }
    static bool Same(string const& item, string const& read) { return item == read; }
    // What the language has room for.
    static bool ComesBack(string const& item, bool isFirst, bool drivePaths)
    {
        string const text = item.c_str();
        bool const isPath = drivePaths && text.size() > 2 && text[1] == ':' && text[2] == '\\';
        return text.find('"') == std::string::npos && (isFirst || text.find(',') == std::string::npos) &&
               (isPath || !text.ends_with('\\'));
    }
};

template<typename... Kinds>
struct List
{};
using AllKinds = List<Number<int, 'i'>, Number<long, 'i', int>, Number<unsigned int, 'D'>,
                      Number<unsigned long, 'L', std::uint32_t>, Flag, Double, Float,
                      Halves<Quarn::HighFirst, 'T'>, Halves<Quarn::LowFirst, 'v'>, Text>;

template<typename Place>
constexpr bool DrivePaths = std::is_same_v<Place, PropertyRecord>;

// Whether Unpack takes the stored record; then Readf takes it too and reads the same.
template<typename A, typename B, typename Place>
bool UnpacksAsReadf(Place& place)
{
    constexpr char format[] = {A::Letter, B::Letter, '\0'};
    typename A::Type a{};
    typename B::Type b{};
    if (!place.Unpack(a, b)) {
        return false;
    }
    typename A::Read readA{};
    typename B::Read readB{};
    EXPECT_TRUE(place.Readf(format, &readA, &readB)) << place.Stored();
    EXPECT_TRUE(A::Same(a, readA)) << place.Stored();
    EXPECT_TRUE(B::Same(b, readB)) << place.Stored();
    return true;
}

template<typename A, typename B, typename Place>
void CheckPair(Place& place, Random& random)
{
    constexpr char format[] = {A::Letter, B::Letter, '\0'};
    SCOPED_TRACE(format);
    for (int round = 0; round < 12; ++round) {
        typename A::Type const a = A::Make(random);
        typename B::Type const b = B::Make(random);
        ASSERT_TRUE(place.Writef(format, A::Argument(a), B::Argument(b)));
        string const written = place.Stored();
        place.Store("");
        ASSERT_TRUE(place.Pack(a, b));
        ASSERT_EQ(place.Stored(), written);

        bool const isTaken = UnpacksAsReadf<A, B>(place);
        bool const comesBack =
            A::ComesBack(a, true, DrivePaths<Place>) && B::ComesBack(b, false, DrivePaths<Place>);
        EXPECT_TRUE(isTaken || !comesBack) << written;
    }
}

// What is beside an item matters by being text or none; all pairs would take a minute to compile.
template<typename... Kinds, typename Place>
void CheckEachKind(List<Kinds...> /*kinds*/, Place& place, Random& random)
{
    ((CheckPair<Kinds, Text>(place, random), CheckPair<Text, Kinds>(place, random),
      CheckPair<Kinds, Float>(place, random)),
     ...);
}

template<typename Place>
class GeneratedPacking : public testing::Test
{
protected:
    Place m_place;
    Random m_random{20240703};
};

using Places = testing::Types<PropertyRecord, RegistryRecord>;
TYPED_TEST_SUITE(GeneratedPacking, Places);

TYPED_TEST(GeneratedPacking, EqualsTheVariadicFormsForEveryKindBesideTextsAndNumbers)
{
    CheckEachKind(AllKinds{}, this->m_place, this->m_random);
}

TEST(GeneratedUnpacking, TakesNoDamagedRecordThatReadfReadsOtherwise)
{
    PropertyRecord place;
    Random random(20240704);
    std::string const alphabet = "0123456789,\":\\.-C a";
    int taken = 0;
    int refused = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string record = round % 2 == 0 ? ",\"C:\\a\",-12," : "12,\"a\",";
        for (std::uint64_t changes = random() % 4; changes != 0; --changes) {
            record[random() % record.size()] = alphabet[random() % alphabet.size()];
        }
        place.Store(record);
        bool const isTaken = round % 2 == 0 ? UnpacksAsReadf<Text, Number<int, 'i'>>(place)
                                            : UnpacksAsReadf<Number<unsigned int, 'D'>, Text>(place);
        (isTaken ? taken : refused) += 1;
    }
    EXPECT_GT(taken, 5000);
    EXPECT_GT(refused, 5000);
}

} // namespace
