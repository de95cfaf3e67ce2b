// The list of companion libraries: one object per name, counted.
#include "quarn/platform/library.h"

#include "tests/slot.h"

#include <functional>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::Library;
using Quarn::LibraryFactory;

class Companion : public Library
{
public:
    Companion(Quarn::string const& name, Quarn::string const& language) : Library(name, language) {}

    bool Load() override { return false; }
    bool Unload() override { return false; }
    void (*GetFunction(int) const)() override { return nullptr; }
    void (*GetFunction(Quarn::string const&) const)() override { return nullptr; }
    bool IsLoaded() const override { return false; }
};

// Notes what it is asked for; what it makes can be chosen.
class Factory : public LibraryFactory
{
public:
    Library* MakeLibrary(Quarn::string const& name, Quarn::string const& language) const override
    {
        made.push_back(name);
        return make(name, language);
    }
    void DeleteLibrary(Library* library) const override
    {
        deleted.push_back(library);
        discard(library);
    }

    std::function<Library*(Quarn::string const&, Quarn::string const&)> make =
        [](Quarn::string const& name, Quarn::string const& language) {
            return new Companion(name, language);
        };
    std::function<void(Library*)> discard = [](Library* library) { delete library; };
    mutable std::vector<Quarn::string> made;
    mutable std::vector<Library*> deleted;
};

TEST(Library, NamesThatDifferInCaseAloneShareOneObject)
{
    Factory const factory;
    Library* const library = Library::Create("Plot.dll", factory);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(Library::Create("PLOT.DLL", factory), library);
    EXPECT_EQ(factory.made, std::vector<Quarn::string>{"Plot.dll"});
    EXPECT_EQ(library->GetLibName(), "Plot.dll") << "as given first";
    EXPECT_FALSE(Library::Release(library)) << "deliberately: one reference is left";
    EXPECT_TRUE(factory.deleted.empty());
    EXPECT_TRUE(Library::Release(library));
    EXPECT_EQ(factory.deleted, std::vector{library});
    EXPECT_FALSE(Library::Release(library)) << "it is unknown now";
}

TEST(Library, AReleasedNameIsMadeAnew)
{
    Factory const factory;
    for (int i = 0; i < 3; ++i) {
        Library* const library = Library::Create("Plot", factory);
        EXPECT_TRUE(Library::Release(library));
    }
    EXPECT_EQ(factory.made.size(), 3U);
    EXPECT_EQ(factory.deleted.size(), 3U);
}

TEST(Library, OtherNamesAreOtherLibraries)
{
    Factory const factory;
    // Letters beyond ASCII differ in case, bytes behind a zero byte count.
    std::vector<Quarn::string> const names = {"Plot",
                                              "Plot.dll",
                                              "Plot ",
                                              "",
                                              "\xC4",
                                              "\xE4",
                                              Quarn::string("Plot\0a", 6),
                                              Quarn::string("Plot\0b", 6)};
    std::vector<Library*> libraries;
    for (Quarn::string const& name : names) {
        libraries.push_back(Library::Create(name, factory));
        EXPECT_EQ(libraries.back()->GetLibName(), name);
    }
    EXPECT_EQ(factory.made, names);
    for (Library* const library : libraries) {
        EXPECT_TRUE(Library::Release(library));
    }
    EXPECT_EQ(factory.deleted, libraries);
}

TEST(Library, TheLanguageIsEmpty)
{
    Factory const factory;
    Library* const library = Library::Create("Plot", factory);
    EXPECT_EQ(library->GetLanguage(), "");
    EXPECT_EQ(&library->GetLanguage(), &library->GetLanguage());
    EXPECT_TRUE(Library::Release(library));
    Companion const german("Plot", "DEU");
    EXPECT_EQ(german.GetLanguage(), "DEU");
}

TEST(Library, TheFactoryThatMadeItDeletesIt)
{
    Factory const first;
    Factory const second;
    Library* const library = Library::Create("Plot", first);
    EXPECT_EQ(Library::Create("plot", second), library);
    EXPECT_TRUE(second.made.empty());
    EXPECT_FALSE(Library::Release(library));
    EXPECT_TRUE(Library::Release(library));
    EXPECT_EQ(first.deleted, std::vector{library});
    EXPECT_TRUE(second.deleted.empty());
}

TEST(Library, AnUnknownPointerIsNotReleased)
{
    Factory const factory;
    Companion other("Plot", "");
    Library* const library = Library::Create("Plot", factory);
    EXPECT_FALSE(Library::Release(&other));
    EXPECT_FALSE(Library::Release(nullptr));
    EXPECT_TRUE(factory.deleted.empty());
    EXPECT_TRUE(Library::Release(library));
}

TEST(Library, WhereTheFactoryMakesNoneThatIsKeptDeliberately)
{
    Factory factory;
    factory.make = [](auto const&...) { return nullptr; };
    EXPECT_EQ(Library::Create("Plot", factory), nullptr);
    EXPECT_EQ(Library::Create("PLOT", factory), nullptr);
    EXPECT_EQ(factory.made.size(), 1U) << "it is not asked again";
    EXPECT_FALSE(Library::Release(nullptr));
    EXPECT_TRUE(Library::Release(nullptr));
    EXPECT_EQ(factory.deleted, std::vector<Library*>{nullptr}) << "the factory is given it back";
    EXPECT_FALSE(Library::Release(nullptr));
}

TEST(Library, AFactoryThatThrowsLeavesNothing)
{
    Factory factory;
    auto const make = factory.make;
    factory.make = [](auto const&...) -> Library* { throw std::runtime_error("no"); };
    EXPECT_THROW(Library::Create("Plot", factory), std::runtime_error);
    factory.make = make;
    Library* const library = Library::Create("Plot", factory);
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(factory.made.size(), 2U);
    EXPECT_TRUE(Library::Release(library));
}

// Deliberate: whoever gives one object for several names counts its uses himself.
TEST(Library, OnePointerUnderTwoNamesCountsDownUnderBothUntilOneIsUsedUp)
{
    Companion shared("shared", "");
    Factory first;
    first.make = [&](auto const&...) { return &shared; };
    first.discard = [](Library*) {};
    Factory second = first;
    Library::Create("one", first);
    Library::Create("ONE", first);
    Library::Create("two", second);
    EXPECT_TRUE(Library::Release(&shared)) << "one: 1, two: 0";
    EXPECT_TRUE(first.deleted.empty());
    EXPECT_EQ(second.deleted.size(), 1U);
    EXPECT_TRUE(Library::Release(&shared)) << "one: 0";
    EXPECT_EQ(first.deleted.size(), 1U);
    EXPECT_FALSE(Library::Release(&shared));
}

TEST(Library, TheListIsWalkedInTheOrderOfCreation)
{
    Companion shared("shared", "");
    Factory first;
    first.make = [&](auto const&...) { return &shared; };
    first.discard = [](Library*) {};
    Factory second = first;
    Library::Create("b", second);
    Library::Create("a", first);
    EXPECT_TRUE(Library::Release(&shared));
    EXPECT_EQ(second.deleted.size(), 1U);
    EXPECT_TRUE(first.deleted.empty());
    EXPECT_TRUE(Library::Release(&shared));
    EXPECT_EQ(first.deleted.size(), 1U);
}

TEST(Library, AFactoryMayCreateAndReleaseOthersWhileItMakesAndDeletes)
{
    Factory const inner;
    Factory outer;
    Library* needed = nullptr;
    outer.make = [&](Quarn::string const& name, Quarn::string const& language) {
        needed = Library::Create("needed", inner);
        return new Companion(name, language);
    };
    outer.discard = [&](Library* library) {
        EXPECT_FALSE(Library::Release(library)) << "it is released already";
        EXPECT_TRUE(Library::Release(needed));
        delete library;
    };
    Library* const library = Library::Create("Plot", outer);
    EXPECT_EQ(Library::Create("needed", inner), needed);
    EXPECT_FALSE(Library::Release(needed));
    EXPECT_TRUE(Library::Release(library));
    EXPECT_EQ(inner.deleted, std::vector{needed});
}

TEST(Library, ANameThatIsCreatedWhileItsLibraryIsDeletedIsMadeAnew)
{
    Factory factory;
    Library* again = nullptr;
    factory.discard = [&](Library* library) {
        if (again == nullptr) {
            again = Library::Create("Plot", factory);
            EXPECT_NE(again, library);
        }
        delete library;
    };
    EXPECT_TRUE(Library::Release(Library::Create("Plot", factory)));
    EXPECT_EQ(factory.made.size(), 2U);
    EXPECT_TRUE(Library::Release(again));
}

TEST(Library, ManyNamesAndReferences)
{
    Factory const factory;
    std::vector<Library*> libraries;
    for (int i = 0; i < 200; ++i) {
        for (int reference = 0; reference <= i % 5; ++reference) {
            libraries.push_back(Library::Create("Plot" + std::to_string(i), factory));
        }
    }
    EXPECT_EQ(factory.made.size(), 200U);
    int last = 0;
    for (Library* const library : libraries) {
        last += Library::Release(library) ? 1 : 0;
    }
    EXPECT_EQ(last, 200);
    EXPECT_EQ(factory.deleted.size(), 200U);
}

TEST(SlotOrder, OfTheLibraryAndItsFactory)
{
    EXPECT_EQ(Slot(&Library::Load), 2U);
    EXPECT_EQ(Slot(&Library::Unload), 3U);
    EXPECT_EQ(Slot<void (*(Library::*)(int) const)()>(&Library::GetFunction), 4U);
    EXPECT_EQ(Slot<void (*(Library::*)(Quarn::string const&) const)()>(&Library::GetFunction), 5U);
    EXPECT_EQ(Slot(&Library::IsLoaded), 6U);
    EXPECT_EQ(Slot(&LibraryFactory::MakeLibrary), 0U);
    EXPECT_EQ(Slot(&LibraryFactory::DeleteLibrary), 1U);
}

} // namespace
