// quarn settings show, get, set, unset, as a user runs them.
#include "quarn/properties/property_collection.h"
#include "quarn/properties/win32/xml_persist.h"

#include "json_reader.h"
#include "run_quarn.h"

#include <gtest/gtest.h>

namespace {

using SettingsTool = QuarnTool;

constexpr char const* Values = R"(    <Value Name="Owner" Type="string">anna &amp; "otto"</Value>
    <Key Name="Link">
      <Value Name="Port" Type="int32">4001</Value>
      <Value Name="Token" Type="binary">0aff</Value>
      <Value Name="Nothing" Type="unknown"></Value>
      <Value Name="a:b=c" Type="string">colon</Value>
      <Key Name="Empty"/>
    </Key>)";

Quarn::PropertyCollection Load(std::string const& path)
{
    Quarn::PropertyCollection settings;
    EXPECT_TRUE(Quarn::Win32::XMLPropPersist(path).Populate(&settings));
    return settings;
}

TEST_F(SettingsTool, ShowsATableOfAddressesTypesAndValues)
{
    std::string const file = MakeSettings("s.xml", Values);
    EXPECT_EQ(Run({"settings", "show", file}).output, "Quarn_Properties, Station\n"
                                                      "ADDRESS       TYPE     VALUE\n"
                                                      ":Owner        string   \"anna & \\\"otto\\\"\"\n"
                                                      "Link:Port     int32    4001\n"
                                                      "Link:Token    binary   0aff\n"
                                                      "Link:Nothing  unknown  \n"
                                                      "Link:a:b=c    string   \"colon\"\n"
                                                      "Link\\Empty\\            (an empty key)\n");
    EXPECT_EQ(Run({"settings", "show", file, "link/empty"}).output,
              "Quarn_Properties, Station\n"
              "ADDRESS      TYPE     VALUE\n"
              "link/empty\\           (an empty key)\n");
    EXPECT_TRUE(Has(Run({"settings", "show", file, "Lonk"}, 1).errors, "there is no key Lonk"));
}

TEST_F(SettingsTool, ShowsEverythingAsJson)
{
    std::string const file = MakeSettings("s.xml", Values);
    JsonValue const json = ReadJson(Run({"settings", "show", "--json", file}).output);
    EXPECT_EQ(json["file"].text, file);
    EXPECT_EQ(json["name"].text, "Station");
    EXPECT_EQ(json["complete"].text, "true");
    JsonValue const& keys = json["keys"];
    ASSERT_EQ(keys.items.size(), 3U);
    EXPECT_EQ(keys[0]["path"].text, "");
    EXPECT_EQ(keys[0]["values"][0]["value"].text, "anna & \"otto\"");
    JsonValue const& link = keys[1]["values"];
    ASSERT_EQ(link.items.size(), 4U);
    EXPECT_EQ(link[0]["address"].text, "Link:Port");
    EXPECT_EQ(link[0]["type"].text, "int32");
    EXPECT_EQ(link[0]["value"].text, "4001");
    EXPECT_EQ(link[0]["value"].kind, JsonValue::Word);
    EXPECT_EQ(link[1]["value"].text, "0aff");
    EXPECT_EQ(link[2]["value"].text, "null");
    EXPECT_EQ(link[3]["name"].text, "a:b=c");
    EXPECT_EQ(keys[2]["path"].text, "Link\\Empty");
}

TEST_F(SettingsTool, GetsAValueByItsAddress)
{
    std::string const file = MakeSettings("s.xml", Values);
    EXPECT_EQ(Run({"settings", "get", file, "LINK:port"}).output, "4001\n");
    EXPECT_EQ(Run({"settings", "get", file, ":owner"}).output, "anna & \"otto\"\n");
    EXPECT_EQ(Run({"settings", "get", file, "Owner"}).output, "anna & \"otto\"\n");
    EXPECT_EQ(Run({"settings", "get", file, "Link:a:b=c"}).output, "colon\n");
    JsonValue const json = ReadJson(Run({"settings", "get", file, "Link:Token", "--json"}).output);
    EXPECT_EQ(json["type"].text, "binary");
    EXPECT_EQ(json["value"].text, "0aff");
    Outcome const missing = Run({"settings", "get", file, "Link:Part"}, 1);
    EXPECT_EQ(missing.output, "");
    EXPECT_EQ(missing.errors, "quarn: " + file + ": there is no value Link:Part\n");
}

TEST_F(SettingsTool, SetKeepsTheTypeOfAValue)
{
    std::string const file = MakeSettings("s.xml", Values);
    EXPECT_EQ(Run({"settings", "set", file, "link:port", "-12"}).output,
              "changed link:Port from 4001 to -12 (int32)\n");
    Run({"settings", "set", file, "Link:Token", "00FE"});
    Run({"settings", "set", file, ":Owner", "<&> \"\\"});
    Quarn::PropertyCollection const settings = Load(file);
    EXPECT_EQ(settings.GetValue("Link:Port")->GetDataType(), Quarn::PropertyData::TypeInt32);
    EXPECT_EQ(settings.GetValueInt32("Link:Port", 0), -12);
    EXPECT_EQ(settings.GetValue("Link:Token")->GetDataType(), Quarn::PropertyData::TypeBinary);
    EXPECT_EQ(settings.GetValueString("Link:Token", ""), "00fe");
    EXPECT_EQ(settings.GetValueString(":Owner", ""), "<&> \"\\");
    EXPECT_EQ(settings.GetValueString("Link:Nothing", "?"), ""); // what was not named is as it was
}

TEST_F(SettingsTool, SetAddsValuesOfEveryTypeAndTheirKeys)
{
    std::string const file = MakeSettings("s.xml", Values);
    EXPECT_EQ(Run({"settings", "set", file, "New\\Deep:Text", "show"}).output,
              "added New\\Deep:Text = \"show\" (string)\n");
    Run({"settings", "set", file, "New:Number", "2147483647", "--type", "int32"});
    Run({"settings", "set", file, "New:Bytes", "", "--type=binary"});
    Run({"settings", "set", file, "New:", "--", "--dashes"});
    EXPECT_EQ(Run({"settings", "get", file, "New\\Deep:Text"}).output, "show\n");
    Quarn::PropertyCollection const settings = Load(file);
    EXPECT_EQ(settings.GetValueInt32("New:Number", 0), 2147483647);
    ASSERT_NE(settings.GetValue("New:Bytes"), nullptr);
    EXPECT_EQ(settings.GetValue("New:Bytes")->GetDataType(), Quarn::PropertyData::TypeBinary);
    EXPECT_EQ(settings.GetValue("New:Bytes")->GetData().GetDataSize(), 0);
    EXPECT_EQ(settings.GetValueString("New:DefaultValue", ""), "--dashes");
}

TEST_F(SettingsTool, SetChangesTheTypeWhereItIsTold)
{
    std::string const file = MakeSettings("s.xml", Values);
    JsonValue const json =
        ReadJson(Run({"settings", "set", file, "Link:Port", "none", "--type", "string", "--json"}).output);
    EXPECT_EQ(json["change"].text, "changed");
    EXPECT_EQ(json["old"]["value"].text, "4001");
    EXPECT_EQ(json["new"]["type"].text, "string");
    EXPECT_EQ(json["new"]["value"].text, "none");
    EXPECT_EQ(Load(file).GetValue("Link:Port")->GetDataType(), Quarn::PropertyData::TypeString);
    EXPECT_TRUE(Has(Run({"settings", "set", file, "Link:Nothing", "1"}, 2).errors, "--type"));
    Run({"settings", "set", file, "Link:Nothing", "1", "--type", "int32"});
    EXPECT_EQ(Load(file).GetValueInt32("Link:Nothing", 0), 1);
}

TEST_F(SettingsTool, SetRefusesWhatIsNoValueOfTheType)
{
    std::string const file = MakeSettings("s.xml", Values);
    std::string const content = ContentOf(file);
    for (char const* const text : {"4o01", "2147483648", "", "1 "}) {
        EXPECT_TRUE(Has(Run({"settings", "set", file, "Link:Port", text}, 2).errors, "is no number from"));
    }
    EXPECT_TRUE(Has(Run({"settings", "set", file, "Link:Token", "0af"}, 2).errors, "hexadecimal"));
    EXPECT_TRUE(Has(Run({"settings", "set", file, ":Owner", "bell\a"}, 2).errors,
                    "\"bell\\x07\" holds what no settings file can hold"));
    EXPECT_EQ(ContentOf(file), content);
}

TEST_F(SettingsTool, UnsetRemovesOneValue)
{
    std::string const file = MakeSettings("s.xml", Values);
    EXPECT_EQ(Run({"settings", "unset", file, "LINK:PORT"}).output,
              "removed LINK:Port, which was 4001 (int32)\n");
    EXPECT_FALSE(Load(file).HasValue("Link:Port"));
    EXPECT_TRUE(Load(file).HasValue("Link:Token"));
    Run({"settings", "unset", file, "Link:Port"}, 1);
}

TEST_F(SettingsTool, NothingOverwritesAFileThatItCouldNotRead)
{
    std::string const broken = MakeSettings("broken.xml", "    <Value Name=\"a\"");
    std::string const partial =
        MakeSettings("partial.xml", "    <Value Name=\"a\" Type=\"string\">1</Value>\n    <!-- by hand -->\n"
                                    "    <Value Name=\"b\" Type=\"string\">2</Value>");
    for (std::string const& file : {broken, partial}) {
        std::string const content = ContentOf(file);
        EXPECT_TRUE(Has(Run({"settings", "set", file, ":a", "2"}, 3).errors, file + ":"));
        Run({"settings", "unset", file, ":a"}, 3);
        EXPECT_EQ(ContentOf(file), content);
    }
    // A part is shown, and it is said that it is one.
    Outcome const shown = Run({"settings", "show", partial});
    EXPECT_TRUE(Has(shown.output, ":a "));
    EXPECT_FALSE(Has(shown.output, ":b "));
    EXPECT_TRUE(Has(shown.errors, partial + ":6:"));
    EXPECT_TRUE(Has(shown.errors, "not all of the file is loaded"));
    EXPECT_EQ(ReadJson(RunQuarn({"settings", "show", "--json", partial}).output)["complete"].text, "false");
    EXPECT_EQ(m_folder.Names().size(), 2U); // no second names, no new files
    EXPECT_TRUE(Has(Run({"settings", "set", m_folder / "missing.xml", ":a", "2"}, 3).errors,
                    "missing.xml: there is no such file"));
    EXPECT_EQ(m_folder.Names().size(), 2U);
}

} // namespace
