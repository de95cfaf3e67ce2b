// A writer of settings that is killed, again and again, while it saves, backs up and restores.
#include "quarn/properties/win32/property_stores.h"
#include "quarn/properties/win32/xml_persist.h"

#include "reliability/commands.h"
#include "reliability/kill.h"

#include <map>
#include <sstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

using Quarn::PropertyCollection;
using Quarn::PropertyData;
using Quarn::PropertyKey;

constexpr char const* File = "Kills.xml";
constexpr int KeyCount = 10;
constexpr int ValueCount = 100; // in each

fs::path DataFolder()
{
    char folder[MAX_PATH] = "";
    Quarn::Win32::QuarnProperties::GetXMLFolder(folder);
    return folder;
}

// ---- in the child

Quarn::string Name(int number)
{
    Quarn::string name;
    name.Format("entry %02d", number);
    return name;
}

// A thousand values that all tell the state's number.
void SetState(PropertyCollection& store, long state)
{
    Quarn::string text;
    for (int i = 0; i < KeyCount; ++i) {
        PropertyKey* const key = store.AddSubKey(Name(i).c_str());
        for (int j = 0; j < ValueCount; ++j) {
            text.Format("%ld: %d, %d", state, i, j);
            key->SetValue(Name(j), PropertyData(text), true);
        }
    }
}

// The state's number; -1 where it is not whole.
long StateOf(PropertyCollection& store)
{
    long const state = std::atol(store.GetValueString(Name(0) + ":" + Name(0), "-1").c_str());
    Quarn::string text;
    for (int i = 0; i < KeyCount; ++i) {
        PropertyKey* const key = store.GetSubKey(Name(i).c_str());
        for (int j = 0; j < ValueCount; ++j) {
            text.Format("%ld: %d, %d", state, i, j);
            if (key == nullptr || key->GetValueString(Name(j), "") != text) {
                return -1;
            }
        }
    }
    return state;
}

std::vector<fs::path> Backups()
{
    std::vector<fs::path> backups;
    for (auto const& entry : fs::directory_iterator(DataFolder())) {
        if (entry.path().filename().string().rfind("Kills_", 0) == 0) {
            backups.push_back(entry.path());
        }
    }
    return backups;
}

void TellWhatThereIs(std::string const& folder, Quarn::Win32::QuarnProperties& store)
{
    std::ostringstream found;
    if (store.Populate()) {
        found << File << " " << StateOf(store) << "\n";
    }
    for (fs::path const& backup : Backups()) {
        PropertyCollection collection;
        bool const isLoaded = Quarn::Win32::XMLPropPersist(backup.string()).Populate(&collection);
        found << backup.filename().string() << " " << (isLoaded ? StateOf(collection) : -1) << "\n";
    }
    WriteContent(folder + "/found", found.str());
}

} // namespace

int KeepSettings(std::string const& folder, long number)
{
    Quarn::Win32::QuarnProperties store(File, "Kills");
    store.SetAutoPersist(false);
    number *= 100'000; // no life has a state of another
    TellWhatThereIs(folder, store);
    SetState(store, number);
    if (number == 0) {
        return store.Persist(true) ? 0 : 1;
    }
    for (fs::path const& backup : Backups()) {
        fs::remove(backup); // a second one of the same second would not be made
    }
    Announcer announcer(folder);
    auto const tell = [&](char const* what, bool isDone, std::string const& name) {
        announcer.Tell((isDone ? what : std::string("failed: ") + what) + (" " + name) + " " +
                       std::to_string(StateOf(store)));
        return isDone;
    };
    for (;;) {
        char backup[MAX_PATH] = "";
        if (!tell("saved", store.Persist(false), File)) {
            return 1;
        }
        bool const isBackedUp = store.BackupXML(backup);
        if (!tell("backed", isBackedUp, fs::path(backup).filename().string())) {
            return 1;
        }
        SetState(store, ++number);
        if (!tell("changed", store.Persist(false), File) ||
            !tell("restored", store.RestoreXML(backup), File)) {
            return 1;
        }
        SetState(store, ++number);
    }
}

namespace {

// ---- in the test

struct Announced
{
    std::string what;
    std::string name;
    long state = -1;
};

Announced Parse(std::string const& line)
{
    Announced result;
    std::istringstream(line) >> result.what >> result.name >> result.state;
    return result;
}

// Why the announced states are not all there; empty where they are.
std::string Loss(std::vector<std::string> const& announced, std::vector<std::string> const& found)
{
    std::map<std::string, long> states;
    for (std::string const& line : found) {
        std::string name;
        long state = -1;
        std::istringstream(line) >> name >> state;
        if (state < 0) {
            return line + " is not whole";
        }
        states[name] = state;
    }
    if (states.count(File) == 0) {
        return "no settings";
    }
    Announced const last = Parse(announced.back());
    long const state = states[File];
    // What the last announced step left, or what the one in flight was to leave.
    if (last.what == "saved" && state != last.state) {
        return "what was saved is lost";
    }
    if (last.what == "backed" && ((state != last.state && state != last.state + 1) ||
                                  states.count(last.name) == 0 || states[last.name] != last.state)) {
        return "what was backed up is lost";
    }
    if (last.what == "changed") {
        Announced const backed = Parse(announced[announced.size() - 2]);
        bool const hasBackup = states.count(backed.name) != 0 && states[backed.name] == backed.state;
        if (!(state == last.state && hasBackup) && state != backed.state) {
            return "what was saved behind a backup is lost";
        }
    }
    if (last.what == "restored" && state != last.state && state != last.state + 2) {
        return "what was restored is lost";
    }
    return last.what == "failed:" ? "a step has failed" : "";
}

TEST(Kills, LoseNoSettingsThatWereSavedOrBackedUp)
{
    Lives lives("settings", 4);
    std::map<std::string, int> killedBehind;
    int losses = 0;
    int halfWritten = 0;
    int const count = Times("QUARN_KILLS", 100);
    lives.Run(
        count,
        [&] {
            for (auto const& entry : fs::directory_iterator(DataFolder())) {
                halfWritten += entry.path().filename().string().rfind(".~", 0) == 0 ? 1 : 0;
            }
        },
        [&](std::vector<std::string> const& announced, std::vector<std::string> const& found) {
            ASSERT_FALSE(announced.empty());
            ++killedBehind[Parse(announced.back()).what];
            if (std::string const loss = Loss(announced, found); !loss.empty()) {
                ++losses;
                ADD_FAILURE() << loss << "; announced: " << testing::PrintToString(announced)
                              << ", found: " << testing::PrintToString(found);
            }
        });
    EXPECT_EQ(losses, 0);
    ShowFigure(count, " kills of a settings' writer, ", losses, " losses (killed after a save ",
               killedBehind["saved"] + killedBehind["changed"], ", a backup ", killedBehind["backed"],
               ", a restoring ", killedBehind["restored"], "; with a file half-written ", halfWritten, ")");
    // The last life has saved once, which takes away what the killed ones have left.
    for (auto const& entry : fs::directory_iterator(DataFolder())) {
        EXPECT_EQ(entry.path().filename().string().rfind("Kills", 0), 0U) << entry.path();
        fs::remove(entry.path());
    }
}

} // namespace
