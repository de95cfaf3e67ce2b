// Version blocks of modules that are made for it; this program's own is that of a product Tool by Acme.
#include "quarn/platform/module.h"
#include "quarn/platform/version_info.h"

#include "tests/platform/process_text.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>

#include <gtest/gtest.h>

namespace {

using Win32Quarn::CVersionInfo;

using Getter = Quarn::string (CVersionInfo::*)() const;

constexpr std::array<std::pair<char const*, Getter>, 11> Getters = {{
    {"Comments", &CVersionInfo::GetComments},
    {"CompanyName", &CVersionInfo::GetCompanyName},
    {"LegalCopyright", &CVersionInfo::GetCopyright},
    {"FileDescription", &CVersionInfo::GetFileDescription},
    {"FileVersion", &CVersionInfo::GetFileVersion},
    {"InternalName", &CVersionInfo::GetInternalName},
    {"LegalTrademarks", &CVersionInfo::GetLegalTrademarks},
    {"PrivateBuild", &CVersionInfo::GetPrivateBuild},
    {"ProductName", &CVersionInfo::GetProductName},
    {"ProductVersion", &CVersionInfo::GetProductVersion},
    {"SpecialBuild", &CVersionInfo::GetSpecialBuild},
}};

// GetValue is there for derived classes.
class OpenVersionInfo : public CVersionInfo
{
public:
    using CVersionInfo::CVersionInfo;
    using CVersionInfo::GetValue;
};

void ExpectNothing(CVersionInfo const& info)
{
    for (auto const& [key, getter] : Getters) {
        EXPECT_EQ((info.*getter)(), "???") << key;
    }
}

TEST(VersionInfo, ReadsEveryEntryOfAModule)
{
    CVersionInfo const info(QUARN_FULL_MODULE);
    EXPECT_EQ(info.GetCompanyName(), "A company");
    EXPECT_EQ(info.GetCopyright(), ProcessText(u"Copyright \u00a9"));
    EXPECT_EQ(info.GetFileDescription(), ProcessText(u"Gr\u00f6\u00dfe in \u00b5m"));
    EXPECT_EQ(info.GetFileVersion(), "1.2.3.4");
    EXPECT_EQ(info.GetInternalName(), "full");
    EXPECT_EQ(info.GetLegalTrademarks(), ProcessText(u"A trademark\u2122"));
    EXPECT_EQ(info.GetPrivateBuild(), "private");
    EXPECT_EQ(info.GetProductName(), "A product");
    EXPECT_EQ(info.GetProductVersion(), "5.6.7.8");
    EXPECT_EQ(info.GetSpecialBuild(), "");
}

TEST(VersionInfo, GivesTheQueryPathDeliberatelyForAMissingEntry)
{
    EXPECT_EQ(CVersionInfo(QUARN_FULL_MODULE).GetComments(), "\\StringFileInfo\\040904b0\\Comments");
}

TEST(VersionInfo, FindsOtherEntriesForDerivedClasses)
{
    OpenVersionInfo const info(QUARN_FULL_MODULE);
    EXPECT_EQ(info.GetValue("Ours"), "an entry of the application's own");
    EXPECT_EQ(info.GetValue("oURS"), "an entry of the application's own");
    EXPECT_EQ(info.GetValue("Our"), "\\StringFileInfo\\040904b0\\Our");
    EXPECT_EQ(info.GetValue("Ours\\more"), "\\StringFileInfo\\040904b0\\Ours\\more");
    std::string const longKey(10'000, 'k');
    EXPECT_EQ(info.GetValue(longKey), "\\StringFileInfo\\040904b0\\" + longKey);
}

TEST(VersionInfo, WithoutATranslationThePathLacksTheLanguage)
{
    CVersionInfo const info(QUARN_NO_TRANSLATION_MODULE);
    for (auto const& [key, getter] : Getters) {
        EXPECT_EQ((info.*getter)(), std::string("\\StringFileInfo\\\\") + key);
    }
}

TEST(VersionInfo, WithoutABlockEveryEntryIsThreeQuestionMarks)
{
    ExpectNothing(QUARN_NO_BLOCK_MODULE);
}

TEST(VersionInfo, WhatIsNoModuleHasNoBlock)
{
    ExpectNothing(nullptr);
    ExpectNothing("");
    ExpectNothing("no such file");
    ExpectNothing("no such folder/file");
    ExpectNothing(".");
    ExpectNothing(std::string(100'000, 'x').c_str());
}

TEST(VersionInfo, FilesThatOnlyBeginLikeModulesHaveNoBlock)
{
    std::string const folder = "version_info_test_beginnings";
    std::filesystem::create_directory(folder);
    for (std::string const& bytes :
         {std::string(), std::string("M"), std::string("MZ"), std::string("MZ") + std::string(62, '\xff'),
          std::string("\x7f"
                      "ELF"),
          std::string("\x7f"
                      "ELF\2\1") +
              std::string(100, '\xff'),
          std::string(4096, '\0'), std::string("just a text")}) {
        std::string const path = folder + "/module.dll";
        std::ofstream(path, std::ios::binary) << bytes;
        ExpectNothing(path.c_str());
    }
    std::filesystem::remove_all(folder);
}

TEST(VersionInfo, TheExecutableIsTheDefault)
{
    CVersionInfo const info;
    EXPECT_EQ(info.GetCompanyName(), "Acme");
    EXPECT_EQ(info.GetProductName(), "Tool");
    EXPECT_EQ(info.GetProductVersion(), "4.2");
    EXPECT_EQ(info.GetCopyright(), "\\StringFileInfo\\040904b0\\LegalCopyright");
}

TEST(VersionInfo, TheLibraryHasABlock)
{
    char path[MAX_PATH];
    ASSERT_NE(::GetModuleFileNameA(QuarnUtil::GetLibraryInstance(), path, MAX_PATH), 0U);
    CVersionInfo const info(path);
    EXPECT_EQ(info.GetCompanyName(), "Tessary");
    EXPECT_EQ(info.GetProductName(), "QuarnUtil");
    EXPECT_EQ(info.GetFileVersion(), QUARN_PROJECT_VERSION);
    EXPECT_EQ(info.GetComments(), "\\StringFileInfo\\040904b0\\Comments");
}

TEST(VersionInfo, TheLanguageModuleHasABlockOfItsLanguage)
{
    CVersionInfo const info(QUARN_GERMAN_MODULE);
    EXPECT_EQ(info.GetInternalName(), "QuarnUtilDEU");
    EXPECT_EQ(info.GetComments(), "\\StringFileInfo\\040704b0\\Comments");
}

TEST(VersionInfo, CopiesShareTheBlockAndOutliveTheFirstObject)
{
    auto first = std::make_unique<CVersionInfo>(QUARN_FULL_MODULE);
    CVersionInfo const copy(*first);
    CVersionInfo assigned;
    assigned = *first;
    first.reset();
    EXPECT_EQ(copy.GetProductName(), "A product");
    EXPECT_EQ(copy.GetComments(), "\\StringFileInfo\\040904b0\\Comments");
    EXPECT_EQ(assigned.GetProductName(), "A product");
    CVersionInfo& itself = assigned;
    assigned = itself;
    EXPECT_EQ(assigned.GetProductName(), "A product");
}

TEST(VersionInfo, AFileThatGoesAwayDoesNotMatterAfterwards)
{
    std::string const path = "version_info_test_gone.dll";
    std::filesystem::copy_file(QUARN_FULL_MODULE, path, std::filesystem::copy_options::overwrite_existing);
    CVersionInfo const info(path.c_str());
    ASSERT_TRUE(std::filesystem::remove(path));
    EXPECT_EQ(info.GetProductName(), "A product");
}

// Whatever a damaged module says, the answer is a text: of the module, the query path, or "???".
void ExpectAnswers(std::string const& path)
{
    CVersionInfo const info(path.c_str());
    for (auto const& [key, getter] : Getters) {
        EXPECT_LE((info.*getter)().size(), 400'000U) << key;
    }
}

TEST(VersionInfo, CutOffModulesGiveAnAnswer)
{
    std::string const path = "version_info_test_cut.dll";
    std::filesystem::copy_file(QUARN_FULL_MODULE, path, std::filesystem::copy_options::overwrite_existing);
    // All lengths near the ends of the file, and steps in between.
    std::uintmax_t size = std::filesystem::file_size(path);
    while (size > 0) {
        size -= size > 4'000 && size % 64 == 0 ? 64 : 1;
        std::filesystem::resize_file(path, size);
        if (size % 16 < 2) {
            ExpectAnswers(path);
        }
    }
    ExpectNothing(path.c_str());
    std::filesystem::remove(path);
}

} // namespace
