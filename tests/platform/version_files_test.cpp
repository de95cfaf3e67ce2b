// Version blocks of all the modules of the installed Wine, hundreds of real files, against a plain search of
// their bytes.
#include "quarn/platform/version_info.h"

#include "tests/platform/process_text.h"
#include "tests/platform/system_modules.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string Utf16Bytes(std::string_view ascii)
{
    std::string bytes;
    for (char const c : ascii) {
        bytes += c;
        bytes += '\0';
    }
    return bytes;
}

std::string ReadFile(std::string const& path)
{
    std::string bytes(std::filesystem::file_size(path), '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    EXPECT_TRUE(file) << path;
    return bytes;
}

// The blocks in a file's bytes, each from its length on: found by the key of the root and the signature of
// the numbers behind it.
std::vector<std::string_view> FindBlocks(std::string_view bytes)
{
    static std::string const head = Utf16Bytes({"VS_VERSION_INFO\0\0", 17}) + "\xBD\x04\xEF\xFE";
    std::vector<std::string_view> blocks;
    for (std::size_t at = bytes.find(head); at != bytes.npos; at = bytes.find(head, at + 1)) {
        std::string_view const block = bytes.substr(at - 6);
        blocks.push_back(block.substr(0, static_cast<unsigned char>(block[0]) |
                                             static_cast<unsigned char>(block[1]) << 8));
    }
    return blocks;
}

// Where the value of the first node of this key begins; npos where there is none.
std::size_t FindValue(std::string_view block, std::string const& key)
{
    std::size_t const at = block.find(Utf16Bytes(key + '\0'));
    return at == block.npos ? at : (at + 2 * key.size() + 2 + 3) / 4 * 4;
}

std::string ReadText(std::string_view block, std::size_t at)
{
    std::u16string text;
    for (;; at += 2) {
        auto const unit = static_cast<char16_t>(static_cast<unsigned char>(block.at(at)) |
                                                static_cast<unsigned char>(block.at(at + 1)) << 8);
        if (unit == 0) {
            return ProcessText(text);
        }
        text += unit;
    }
}

std::string Translation(std::string_view block)
{
    std::size_t const at = FindValue(block, "Translation");
    if (at == block.npos) {
        return "";
    }
    auto const byte = [&](std::size_t i) { return unsigned{static_cast<unsigned char>(block.at(at + i))}; };
    char text[9];
    std::snprintf(text, sizeof text, "%02x%02x%02x%02x", byte(1), byte(0), byte(3), byte(2));
    return text;
}

using Answers = std::map<std::string, std::string>;

// What the getters have to say about a block.
Answers ExpectedAnswers(std::string_view block)
{
    std::string const translation = Translation(block);
    bool const hasLanguage = FindValue(block, translation) != block.npos ||
                             FindValue(block, Quarn::string(translation).Upper()) != block.npos;
    Answers answers;
    for (char const* const key :
         {"Comments", "CompanyName", "LegalCopyright", "FileDescription", "FileVersion", "InternalName",
          "LegalTrademarks", "PrivateBuild", "ProductName", "ProductVersion", "SpecialBuild"}) {
        std::size_t const value = FindValue(block, key);
        answers[key] = value == block.npos || !hasLanguage ? "\\StringFileInfo\\" + translation + "\\" + key
                                                           : ReadText(block, value);
    }
    return answers;
}

Answers ActualAnswers(Win32Quarn::CVersionInfo const& info)
{
    return {
        {"Comments", info.GetComments()},
        {"CompanyName", info.GetCompanyName()},
        {"LegalCopyright", info.GetCopyright()},
        {"FileDescription", info.GetFileDescription()},
        {"FileVersion", info.GetFileVersion()},
        {"InternalName", info.GetInternalName()},
        {"LegalTrademarks", info.GetLegalTrademarks()},
        {"PrivateBuild", info.GetPrivateBuild()},
        {"ProductName", info.GetProductName()},
        {"ProductVersion", info.GetProductVersion()},
        {"SpecialBuild", info.GetSpecialBuild()},
    };
}

TEST(VersionFiles, AgreeWithASearchOfTheirBytes)
{
    std::vector<std::string> const files = SystemModules();
    if (files.empty()) {
        GTEST_SKIP() << "Wine is not installed.";
    }
    int withBlock = 0;
    int withoutBlock = 0;
    int withSeveral = 0;
    for (std::string const& path : files) {
        SCOPED_TRACE(path);
        std::string const bytes = ReadFile(path);
        std::vector<std::string_view> const blocks = FindBlocks(bytes);
        Win32Quarn::CVersionInfo const info(path.c_str());
        if (blocks.empty()) {
            ++withoutBlock;
            EXPECT_EQ(info.GetCompanyName(), "???");
        } else if (blocks.size() == 1) {
            ++withBlock;
            EXPECT_EQ(ActualAnswers(info), ExpectedAnswers(blocks[0]));
        } else {
            // Other modules are packed into this one.
            ++withSeveral;
            Answers const answers = ActualAnswers(info);
            EXPECT_TRUE(std::any_of(blocks.begin(), blocks.end(), [&](std::string_view block) {
                return answers == ExpectedAnswers(block);
            }));
        }
    }
    EXPECT_GT(withBlock, 100);
    EXPECT_GT(withoutBlock, 100);
    EXPECT_LT(withSeveral, 20);
}

} // namespace
