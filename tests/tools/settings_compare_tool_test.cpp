// quarn settings diff, check, backup, restore, as a user runs them.
#include "json_reader.h"
#include "run_quarn.h"

#include <gtest/gtest.h>

namespace {

using SettingsKeepingTool = QuarnTool;

std::string Value(std::string const& name, std::string const& type, std::string const& text)
{
    return "    <Value Name=\"" + name + "\" Type=\"" + type + "\">" + text + "</Value>\n";
}

TEST_F(SettingsKeepingTool, DiffReadsLikeAListOfChanges)
{
    std::string const before = MakeSettings(
        "a.xml", Value("Gone", "string", "x y") + Value("Port", "int32", "1") + Value("Kind", "int32", "2") +
                     Value("Same", "binary", "0aff") + "<Key Name=\"Old\"><Key Name=\"Deep\">" +
                     Value("v", "int32", "3") + "</Key></Key>");
    std::string const after = MakeSettings(
        "b.xml", Value("SAME", "binary", "0AFF") + Value("kind", "string", "2") +
                     Value("Port", "int32", "7") + "<Key Name=\"New\"/>" + Value("Added", "string", ""));
    EXPECT_EQ(Run({"settings", "diff", before, after}, 1).output,
              "--- " + before + "\n+++ " + after +
                  "\n"
                  "- :Gone = \"x y\" (string)\n"
                  "~ :Port = 1 -> 7 (int32)\n"
                  "~ :Kind = 2 (int32) -> \"2\" (string)\n"
                  "+ :Added = \"\" (string)\n"
                  "- Old\\\n"
                  "- Old\\Deep\\\n"
                  "- Old\\Deep:v = 3 (int32)\n"
                  "+ New\\\n");
    JsonValue const json = ReadJson(Run({"settings", "diff", "--json", before, after}, 1).output);
    EXPECT_EQ(json["equal"].text, "false");
    ASSERT_EQ(json["changes"].items.size(), 8U);
    EXPECT_EQ(json["changes"][1]["change"].text, "changed");
    EXPECT_EQ(json["changes"][1]["old"]["value"].text, "1");
    EXPECT_EQ(json["changes"][1]["new"]["value"].text, "7");
    EXPECT_EQ(json["changes"][4]["key"].text, "Old\\");
}

TEST_F(SettingsKeepingTool, DiffOfEqualTreesSaysNothing)
{
    std::string const first =
        MakeSettings("a.xml", Value("A", "int32", "1") + Value("B", "string", "\xC3\xA4"));
    std::string const second =
        MakeSettings("b.xml", Value("b", "string", "\xC3\xA4") + Value("a", "int32", "01"));
    EXPECT_EQ(Run({"settings", "diff", first, second}).output, "");
    EXPECT_EQ(ReadJson(Run({"settings", "diff", first, second, "--json"}).output)["equal"].text, "true");
    Run({"settings", "diff", first, m_folder / "missing.xml"}, 3);
}

TEST_F(SettingsKeepingTool, DiffTellsOtherNamesOfTheCollection)
{
    std::string const first = MakeSettings("a.xml", "");
    std::string const second = m_folder.Make("b.xml", "<Other><Key Name=\"Pumps\"/></Other>");
    EXPECT_TRUE(Has(Run({"settings", "diff", first, second}, 1).output,
                    "~ (document) = \"Quarn_Properties\" -> \"Other\" (string)\n"
                    "~ (name) = \"Station\" -> \"Pumps\" (string)\n"));
}

TEST_F(SettingsKeepingTool, CheckTellsLineAndReasonOfWhatWouldNotLoad)
{
    std::string const good = MakeSettings("good.xml", Value("A", "int32", "1"));
    std::string const malformed =
        MakeSettings("malformed.xml", Value("A", "int32", "1") + "    <Value Name='b'");
    std::string const untyped = MakeSettings("untyped.xml", "\n    <Value Name=\"b\">1</Value>");
    std::string const typed =
        m_folder.Make("doctype.xml", "<!DOCTYPE a [<!ENTITY b 'c'>]>\n<a><Key Name='b'/></a>");
    std::string const keyless = m_folder.Make("keyless.xml", "<a>\n<b/></a>");
    std::string const zero = m_folder.Make("zero.xml", std::string("<a><Key Name='b'/></a>\0", 23));
    std::string const empty = m_folder.Make("empty.xml", "");
    EXPECT_EQ(Run({"settings", "check", good}).output, good + ": loads\n");
    std::string const output = Run({"settings", "check", good, malformed, untyped, typed, keyless, zero,
                                    empty, m_folder / "missing.xml", m_folder.Path()},
                                   1)
                                   .output;
    EXPECT_TRUE(Has(output, good + ": loads\n")) << output;
    EXPECT_TRUE(Has(output, malformed + ":7:3: ")) << output; // where the tag that never ends meets the next
    EXPECT_TRUE(Has(output, "(does not load)")) << output;
    EXPECT_TRUE(Has(output, untyped + ":6:")) << output;
    EXPECT_TRUE(Has(output, ": a value without Type (loads in part)\n")) << output;
    EXPECT_TRUE(Has(output, typed + ":1:")) << output;
    EXPECT_TRUE(Has(output, "a document type declaration (does not load)\n")) << output;
    EXPECT_TRUE(Has(output, keyless + ":2:")) << output;
    EXPECT_TRUE(Has(output, "no key in the root element")) << output;
    EXPECT_TRUE(Has(output, zero + ": a zero character, ")) << output;
    EXPECT_TRUE(Has(output, empty + ":")) << output;
    EXPECT_TRUE(Has(output, "missing.xml: there is no such file (does not load)\n")) << output;
    EXPECT_TRUE(Has(output, m_folder.Path() + ": it cannot be read")) << output;
    JsonValue const json = ReadJson(Run({"settings", "check", "--json", good, untyped}, 1).output);
    EXPECT_EQ(json[0]["result"].text, "loads");
    EXPECT_EQ(json[1]["result"].text, "loads in part");
    EXPECT_EQ(json[1]["line"].text, "6");
    EXPECT_EQ(json[1]["reason"].text, "a value without Type");
}

TEST_F(SettingsKeepingTool, BackupIsACopyBesideTheFileThatRestorePutsBack)
{
    std::string const file = MakeSettings("s.xml", Value("A", "int32", "1"));
    std::string const content = ContentOf(file);
    std::string backup = Run({"settings", "backup", file}).output;
    ASSERT_TRUE(backup.ends_with(".xml\n")) << backup;
    backup.pop_back();
    EXPECT_EQ(backup.find(m_folder / "s_"), 0U) << backup;
    EXPECT_EQ(ContentOf(backup), content);

    std::string const spoiled = content.substr(0, content.size() / 2);
    WriteContent(file, spoiled);
    JsonValue const json = ReadJson(Run({"settings", "restore", file, "--json"}).output);
    EXPECT_EQ(json["restored_from"].text, backup);
    EXPECT_EQ(ContentOf(file), content);
    EXPECT_EQ(ContentOf(json["kept_as"].text), spoiled); // nothing is lost
    EXPECT_EQ(ContentOf(backup), content);
}

TEST_F(SettingsKeepingTool, RestoreTakesTheNewestBackupThatLoads)
{
    std::string const file = MakeSettings("s.xml", Value("A", "int32", "1"));
    std::string const old = MakeSettings("s_9.xml", Value("A", "int32", "9"));
    std::string const newer = MakeSettings("s_1a.xml", Value("A", "int32", "26"));
    MakeSettings("s_1b.xml", "<Value");
    MakeSettings("s_other.xml", Value("A", "int32", "0"));
    EXPECT_TRUE(Has(Run({"settings", "restore", file}).output, "restored from " + newer + "\n"));
    EXPECT_EQ(ContentOf(file), ContentOf(newer));
    Run({"settings", "restore", file, old});
    EXPECT_EQ(ContentOf(file), ContentOf(old));
}

TEST_F(SettingsKeepingTool, RestoreRefusesABackupThatWouldNotLoad)
{
    std::string const file = MakeSettings("s.xml", Value("A", "int32", "1"));
    std::string const bad = MakeSettings("s_1b.xml", "<Value");
    std::string const content = ContentOf(file);
    EXPECT_TRUE(Has(Run({"settings", "restore", file, bad}, 3).errors, bad + ":"));
    EXPECT_TRUE(Has(Run({"settings", "restore", file}, 3).errors, "no backup that loads"));
    Run({"settings", "backup", m_folder / "missing.xml"}, 3);
    EXPECT_EQ(ContentOf(file), content);
    EXPECT_EQ(m_folder.Names().size(), 2U);
}

} // namespace
