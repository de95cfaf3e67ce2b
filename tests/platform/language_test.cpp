// The choice of the language. It happens once in a process, so each case has a process of its own.
#include "quarn/platform/module.h"
#include "quarn/platform/module_state.h"
#include "quarn/platform/resource_strings.h"
#include "quarn/platform/win32_api.h"

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

namespace {

using Quarn::detail::ResourceModule;
using QuarnUtil::InitLanguage;

// The private parts of this program take the real library's place beside its language modules.
void BecomeTheLibrary()
{
    HINSTANCE const library = ::LoadLibraryA(QUARN_LIBRARY);
    if (library == nullptr) {
        std::fprintf(stderr, "The library cannot be loaded.\n");
        std::exit(2);
    }
    Quarn::detail::Attach(library);
}

std::string TextInForce()
{
    return Win32Quarn::LoadQuarnString(103, ResourceModule());
}

std::string Locale()
{
    return std::setlocale(LC_ALL, nullptr);
}

[[noreturn]] void Expect(bool condition)
{
    if (!condition) {
        std::fprintf(stderr, "text %s, locale %s\n", TextInForce().c_str(), Locale().c_str());
    }
    std::exit(condition ? 0 : 1);
}

// `statement` runs in a process of its own and ends with Expect().
#define EXPECT_IN_PROCESS(statement)                                                                         \
    EXPECT_EXIT(                                                                                             \
        {                                                                                                    \
            BecomeTheLibrary();                                                                              \
            statement;                                                                                       \
        },                                                                                                   \
        testing::ExitedWithCode(0), "")

TEST(LanguageDeathTest, WithoutAChoiceTheTextsAreEnglish)
{
    EXPECT_IN_PROCESS(Expect(TextInForce() == "centimeter"));
}

TEST(LanguageDeathTest, TheLanguageModulesTextsComeIntoForce)
{
    EXPECT_IN_PROCESS({
        InitLanguage("DEU");
        Expect(TextInForce() == "Zentimeter");
    });
}

TEST(LanguageDeathTest, OnlyTheFirstChoiceCounts)
{
    EXPECT_IN_PROCESS({
        InitLanguage("DEU");
        InitLanguage("XXX");
        InitLanguage(nullptr);
        Expect(TextInForce() == "Zentimeter");
    });
}

TEST(LanguageDeathTest, AMissingModuleLeavesTheEnglishTextsAndIsAChoice)
{
    EXPECT_IN_PROCESS({
        InitLanguage("XXX");
        bool const isEnglish = TextInForce() == "centimeter";
        InitLanguage("DEU");
        Expect(isEnglish && TextInForce() == "centimeter");
    });
}

TEST(LanguageDeathTest, NullIsAChoice)
{
    EXPECT_IN_PROCESS({
        InitLanguage(nullptr);
        InitLanguage("DEU");
        Expect(TextInForce() == "centimeter" && Locale() == "C");
    });
}

TEST(LanguageDeathTest, TheEmptyTextAndOneLetterAreChoices)
{
    EXPECT_IN_PROCESS({
        InitLanguage("");
        InitLanguage("DEU");
        Expect(TextInForce() == "centimeter" && Locale() == "C");
    });
    EXPECT_IN_PROCESS({
        InitLanguage("D");
        InitLanguage("DEU");
        Expect(TextInForce() == "centimeter" && Locale() == "C");
    });
}

TEST(LanguageDeathTest, AnUnknownLocaleLeavesTheLocale)
{
    EXPECT_IN_PROCESS({
        InitLanguage("Nowhere");
        Expect(Locale() == "C");
    });
}

#if defined(_WIN32)
constexpr char const* KnownLocale = "Ger-man 1";
constexpr char const* LocaleBefore = "C";

// It is the user's, set by the system.
void ChooseEnvironmentLocale() {}
#else
constexpr char const* KnownLocale = "PO-SIX 1";
constexpr char const* LocaleBefore = "C.UTF-8";

void ChooseEnvironmentLocale()
{
    ::setenv("LC_ALL", "C.UTF-8", 1);
}
#endif

TEST(LanguageDeathTest, TheLocaleIsThatOfTheLanguagesLettersEvenWithoutAModule)
{
    EXPECT_IN_PROCESS({
        std::setlocale(LC_ALL, LocaleBefore);
        std::string const before = Locale();
        InitLanguage(KnownLocale);
        Expect(before == LocaleBefore && Locale() != before && TextInForce() == "centimeter");
    });
}

TEST(LanguageDeathTest, WithoutLettersTheEnvironmentsLocaleIsSetDeliberately)
{
    EXPECT_IN_PROCESS({
        ChooseEnvironmentLocale();
        InitLanguage("12");
        Expect(Locale() != "C");
    });
}

TEST(LanguageDeathTest, TextsThatAreNoLanguageLoadNothing)
{
    EXPECT_IN_PROCESS({
        InitLanguage("/../QuarnUtil");
        Expect(TextInForce() == "centimeter");
    });
    EXPECT_IN_PROCESS({
        InitLanguage(std::string(100'000, 'D').c_str());
        Expect(TextInForce() == "centimeter");
    });
    EXPECT_IN_PROCESS({
        InitLanguage("%s%n\xff\xfe");
        Expect(TextInForce() == "centimeter");
    });
}

} // namespace
