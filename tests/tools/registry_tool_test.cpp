// quarn registry show, export, import, as a user runs them.
#include "quarn/platform/win32_api.h"
#include "quarn/registry/registry_key.h"
#include "quarn/registry/registry_value.h"

#include "json_reader.h"
#include "run_quarn.h"

#include <gtest/gtest.h>

namespace {

// Keys of the test's own below the user's.
class RegistryTool : public QuarnTool
{
protected:
    RegistryTool() { m_top += '\\' + std::to_string(::GetCurrentProcessId()); }
    ~RegistryTool() override { Remove(m_top); }

    static void Remove(std::string const& path)
    {
        HKEY key = nullptr;
        char name[256];
        DWORD size = sizeof name;
        if (::RegOpenKeyExA(HKEY_CURRENT_USER, path.c_str(), 0, KEY_ALL_ACCESS, &key) != ERROR_SUCCESS) {
            return;
        }
        while (::RegEnumKeyExA(key, 0, name, &size, nullptr, nullptr, nullptr, nullptr) == ERROR_SUCCESS) {
            Remove(path + '\\' + name);
            size = sizeof name;
        }
        ::RegCloseKey(key);
        ::RegDeleteKeyA(HKEY_CURRENT_USER, path.c_str());
    }
    std::string Path(std::string const& name) const { return "HKCU\\" + m_top + '\\' + name; }

    void Write(std::string const& name, std::string const& value, DWORD type, std::string const& bytes)
    {
        HKEY key = nullptr;
        ASSERT_EQ(::RegCreateKeyExA(HKEY_CURRENT_USER, (m_top + '\\' + name).c_str(), 0, nullptr,
                                    REG_OPTION_NON_VOLATILE, KEY_ALL_ACCESS, nullptr, &key, nullptr),
                  ERROR_SUCCESS);
        EXPECT_EQ(::RegSetValueExA(key, value.c_str(), 0, type, reinterpret_cast<BYTE const*>(bytes.data()),
                                   static_cast<DWORD>(bytes.size())),
                  ERROR_SUCCESS);
        ::RegCloseKey(key);
    }
    void WriteSample()
    {
        using namespace std::string_literals;
        Write("Pump", "", REG_SZ, "the default\0"s);
        Write("Pump", "Name", REG_SZ, "<north> & \"south\"\0"s);
        // In the order of the names, too, by which some systems list them.
        Write("Pump\\Link", "None", REG_BINARY, "");
        Write("Pump\\Link", "Port", REG_DWORD, "\xF4\xFF\xFF\xFF"s);
        Write("Pump\\Link", "Token", REG_BINARY, "\x0A\xFF"s);
    }

    std::string m_top = "Software\\QuarnUtilTest";
};

TEST_F(RegistryTool, ShowsAKeyWithAllBelow)
{
    WriteSample();
    std::string const full = "HKEY_CURRENT_USER\\" + m_top + "\\Pump";
    EXPECT_EQ(Run({"registry", "show", Path("Pump")}).output,
              full +
                  "\n"
                  "  (default)                 REG_SZ         \"the default\"\n"
                  "  Name                      REG_SZ         \"<north> & \\\"south\\\"\"\n" +
                  full +
                  "\\Link\n"
                  "  None                      REG_BINARY     \n"
                  "  Port                      REG_DWORD      -12\n"
                  "  Token                     REG_BINARY     0aff\n");
    JsonValue const json = ReadJson(Run({"registry", "show", "--json", Path("Pump")}).output);
    EXPECT_EQ(json["keys"][1]["path"].text, "Link");
    EXPECT_EQ(json["keys"][1]["values"][1]["value"].text, "-12");
    EXPECT_EQ(json["keys"][0]["values"][1]["value"].text, "<north> & \"south\"");
    EXPECT_TRUE(Has(Run({"registry", "show", Path("Missing")}, 3).errors,
                    "Missing: cannot be read: there is no such key"));
    HKEY key = nullptr; // looking makes nothing
    EXPECT_NE(::RegOpenKeyExA(HKEY_CURRENT_USER, (m_top + "\\Missing").c_str(), 0, KEY_READ, &key),
              ERROR_SUCCESS);
}

TEST_F(RegistryTool, ExportAndImportGiveTheSameKeyAgain)
{
    WriteSample();
    std::string const first = m_folder / "first.xml";
    std::string const second = m_folder / "second.xml";
    EXPECT_EQ(Run({"registry", "export", Path("Pump"), first}).output, "5 values\n");
    EXPECT_EQ(Run({"settings", "get", first, "Link:Port"}).output, "-12\n");
    EXPECT_EQ(Run({"registry", "import", Path("Copy\\Pump"), first}).output, "5 values\n");
    EXPECT_EQ(Run({"registry", "export", Path("Copy\\Pump"), second}).output, "5 values\n");
    EXPECT_EQ(Run({"settings", "diff", first, second}).output, "");
    EXPECT_EQ(ContentOf(first), ContentOf(second));
}

TEST_F(RegistryTool, ExportNamesWhatSettingsCannotHold)
{
    using namespace std::string_literals;
    WriteSample();
    Write("Pump", "Big", REG_QWORD, "12345678");
    std::string const file = m_folder / "seed.xml";
    Outcome const outcome = Run({"registry", "export", Path("Pump"), file, "--json"}, 1);
    EXPECT_TRUE(Has(outcome.errors, ":Big is left out: settings have no values of type REG_QWORD"));
    JsonValue const json = ReadJson(outcome.output);
    EXPECT_EQ(json["values"].text, "5");
    EXPECT_EQ(json["left_out"][0]["address"].text, ":Big");
    Run({"settings", "check", file});
    // More than a seeding reads ends it, for what comes later too.
    Write("Long", "Long", REG_BINARY, std::string(8193, 'x'));
    EXPECT_TRUE(
        Has(Run({"registry", "export", Path("Long"), m_folder / "long.xml"}, 1).errors, ":Long is left out"));
}

TEST_F(RegistryTool, ExportReplacesSettingsAloneAndImportNeedsWholeOnes)
{
    WriteSample();
    std::string const text = m_folder.Make("notes.txt", "not to be lost");
    EXPECT_TRUE(Has(Run({"registry", "export", Path("Pump"), text}, 3).errors, "it is not replaced"));
    EXPECT_EQ(ContentOf(text), "not to be lost");
    Run({"registry", "import", Path("Copy"), text}, 3);
    Run({"registry", "show", Path("Copy")}, 3);
    std::string const settings = MakeSettings("s.xml", "    <Value Name=\"u\" Type=\"unknown\"></Value>");
    EXPECT_TRUE(Has(Run({"registry", "import", Path("Copy"), settings}, 1).errors, ":u is left out"));
    Run({"registry", "export", Path("Pump"), settings});
    EXPECT_EQ(Run({"settings", "get", settings, "Link:Token"}).output, "0aff\n");
}

} // namespace
