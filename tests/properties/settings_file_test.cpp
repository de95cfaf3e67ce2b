// Settings files by their paths: what stands against them, their backups, their restoring.
#include "quarn/properties/win32/settings_file.h"

#include "tests/platform/scratch_folder.h"

#include <gtest/gtest.h>

namespace {

using Quarn::Win32::BackupSettingsFile;
using Quarn::Win32::CheckSettingsFile;
using Quarn::Win32::RestoreSettingsFile;
using Quarn::Win32::SettingsReport;

constexpr char const* Good =
    "\n<S>\n  <Key Name=\"K\">\n    <Value Name=\"a\" Type=\"int32\">1</Value>\n  </Key>\n</S>";

struct Case
{
    std::string document;
    SettingsReport::Result result;
    std::string reason; // a part of it
    std::uint64_t line;
};

class SettingsFile : public ::testing::Test
{
protected:
    ScratchFolder m_folder;
};

TEST_F(SettingsFile, ReportSaysWhatIsNotLoadedAndWhere)
{
    std::string deep;
    for (int i = 0; i < 1001; ++i) {
        deep += "<Key Name='k'>\n";
    }
    Case const cases[] = {
        {Good, SettingsReport::Loads, "", 0},
        {"<S>\n<Key Name='K'>\n<Value Name='a'>1</Value></Key></S>", SettingsReport::LoadsInPart,
         "a value without Type", 3},
        {"<S>\n<Key Name='K'>\n\n<Key/></Key></S>", SettingsReport::LoadsInPart, "an element without Name",
         4},
        {"<S>\n<Key Name='K'>\n<!-- c --></Key></S>", SettingsReport::LoadsInPart, "a comment", 3},
        {"<S>\n<a/></S>", SettingsReport::DoesNotLoad, "no key in the root", 2},
        {"<S></S>", SettingsReport::DoesNotLoad, "no key in the root", 0},
        {"<S>\n<Key Name='K'>\n</S>", SettingsReport::DoesNotLoad, "", 3},
        {"<S>\n<Key Name='K'>&other;</Key></S>", SettingsReport::DoesNotLoad, "", 2},
        {"<?xml version='1.0'?>\n<!DOCTYPE S>\n<S><Key Name='K'/></S>", SettingsReport::DoesNotLoad,
         "a document type declaration", 2},
        {"<?xml version='1.2'?>\n<S><Key Name='K'/></S>", SettingsReport::DoesNotLoad,
         "another version of XML", 1},
        {"<!-- c -->\n<S><Key Name='K'/></S>", SettingsReport::DoesNotLoad, "beside the root element", 1},
        {"<S>\n" + deep, SettingsReport::DoesNotLoad, "1,000 levels of keys", 1002},
        {std::string("<S><Key Name='K'/></S>\0", 23), SettingsReport::DoesNotLoad, "a zero character", 0},
        {"", SettingsReport::DoesNotLoad, "", 1},
    };
    for (Case const& one : cases) {
        SettingsReport const report = CheckSettingsFile(m_folder.Make("s.xml", one.document));
        EXPECT_EQ(report.result, one.result) << one.document.substr(0, 80);
        EXPECT_EQ(report.reason.empty(), one.result == SettingsReport::Loads) << one.document.substr(0, 80);
        EXPECT_NE(report.reason.find(one.reason), std::string::npos) << report.reason;
        if (one.line != 0) {
            EXPECT_EQ(report.line, one.line) << one.document.substr(0, 80) << ": " << report.reason;
            EXPECT_GT(report.column, 0U);
        }
    }
}

TEST_F(SettingsFile, ReportOfWhatCannotBeReadHasNoPlace)
{
    for (std::string const& path : {m_folder / "missing.xml", m_folder.Path()}) {
        SettingsReport const report = CheckSettingsFile(path);
        EXPECT_EQ(report.result, SettingsReport::DoesNotLoad);
        EXPECT_FALSE(report.reason.empty());
        EXPECT_EQ(report.line, 0U);
        EXPECT_EQ(report.column, 0U);
    }
}

TEST_F(SettingsFile, BackupIsRestoredAndStays)
{
    std::string const path = m_folder.Make("s.xml", Good);
    Quarn::string backup;
    ASSERT_TRUE(BackupSettingsFile(path, backup));
    EXPECT_EQ(ContentOf(backup), Good);
    WriteContent(path, "spoiled");
    ASSERT_TRUE(RestoreSettingsFile(path, backup));
    EXPECT_EQ(ContentOf(path), Good);
    EXPECT_EQ(ContentOf(backup), Good);
}

TEST_F(SettingsFile, WhatIsNoBackupIsNotRestored)
{
    std::string const path = m_folder.Make("s.xml", Good);
    EXPECT_FALSE(RestoreSettingsFile(path, m_folder.Make("bad.xml", "spoiled")));
    EXPECT_FALSE(RestoreSettingsFile(path, path));
    EXPECT_FALSE(RestoreSettingsFile(path, m_folder / "missing.xml"));
    EXPECT_FALSE(RestoreSettingsFile(m_folder / "missing.xml", path));
    Quarn::string backup = "as it was";
    EXPECT_FALSE(BackupSettingsFile(m_folder / "missing.xml", backup));
    EXPECT_EQ(backup, "as it was");
    EXPECT_EQ(ContentOf(path), Good);
    EXPECT_EQ(m_folder.Names().size(), 2U);
}

} // namespace
