// What the headers call safe in any thread, and objects of the registry and of modules in threads of their
// own.
#include "quarn/platform/allocation.h"
#include "quarn/platform/directory.h"
#include "quarn/platform/message.h"
#include "quarn/platform/module.h"
#include "quarn/platform/resource_strings.h"
#include "quarn/platform/version_info.h"
#include "quarn/platform/win32_library.h"
#include "quarn/properties/property_collection.h"
#include "quarn/properties/property_value.h"
#include "quarn/properties/win32/xml_persist.h"
#include "quarn/registry/registry_enum.h"
#include "quarn/registry/registry_key.h"
#include "quarn/registry/registry_value.h"
#include "quarn/text/exception.h"
#include "quarn/text/narrowing.h"
#include "quarn/units/unit_enumerators.h"
#include "quarn/units/unit_names.h"

#include "tests/platform/scratch_folder.h"
#include "tests/registry/throw_away_key.h"
#include "tests/threads/in_threads.h"

#include <atomic>
#include <cstring>

#include <gtest/gtest.h>

namespace {

template<typename Function>
void ExpectTheSameInThreads(Function work)
{
    std::vector<std::string> const together = InEachThread(work);
    EXPECT_EQ(together, OneAfterTheOther(work));
    EXPECT_NE(together[0], "");
}

TEST(Threads, VersionBlocksAndTextsAreReadTogether)
{
    Win32Quarn::CVersionInfo const own;
    Win32Quarn::CVersionInfo const shared = own;
    ExpectTheSameInThreads([&](int) {
        std::string all = own.GetProductName() + shared.GetProductVersion();
        all += Win32Quarn::CVersionInfo().GetCompanyName();
        for (unsigned int id = 0; id < 50; ++id) {
            all += Win32Quarn::LoadQuarnString(id, QuarnUtil::GetLibraryInstance());
        }
        return all + Win32Quarn::GetCommonDirectory("");
    });
}

TEST(Threads, UnitsAreListedTogether)
{
    Quarn::LargeDistanceUnitEnumerator units;
    Quarn::VelocityUnitEnumerator speeds;
    ExpectTheSameInThreads([&](int) {
        std::string all;
        for (int i = 0; units.Enumerate(i) != -1; ++i) {
            all += Win32Quarn::GetUnitsName(units.Enumerate(i));
        }
        for (int i = 0; i < 20; ++i) {
            all += std::to_string(speeds.Enumerate(i).time);
        }
        return all;
    });
}

TEST(Threads, MemoryIsAllocatedInOneAndGivenBackInAnother)
{
    std::vector<std::atomic<void*>> blocks(ThreadCount);
    ExpectTheSameInThreads([&](int number) {
        for (int round = 0; round < 200; ++round) {
            void* const block = Quarn::malloc(100);
            std::memset(block, number, 100);
            std::size_t const place = static_cast<std::size_t>(number + round) % ThreadCount;
            Quarn::free(blocks[place].exchange(block));
        }
        return std::to_string(number);
    });
    for (std::atomic<void*>& block : blocks) {
        Quarn::free(block);
    }
}

TEST(Threads, DirectoriesAreMadeTogether)
{
    ScratchFolder const folder;
    ExpectTheSameInThreads([&](int number) {
        std::string all;
        for (int round = 0; round < 10; ++round) {
            std::string const path = folder / ("a/b/" + std::to_string(round));
            all += Win32Quarn::CreateDirectoryA((path + "/" + std::to_string(number)).c_str()) ? "y" : "n";
        }
        return all;
    });
    EXPECT_TRUE(std::filesystem::is_directory(folder / "a/b/9/7"));
}

std::atomic<int> g_messages = 0;

void CountMessage(char const* text, char const* /*caption*/)
{
    g_messages += *text != '\0' ? 1 : 0;
}

TEST(Threads, MessagesComeFromAnyThreadAndTheHandlerMayChangeMeanwhile)
{
    Quarn::MessageHandler const before = Quarn::SetMessageHandler(CountMessage);
    ExpectTheSameInThreads([](int) {
        std::string all;
        for (int round = 0; round < 20; ++round) {
            EXPECT_EQ(Quarn::SetMessageHandler(CountMessage), &CountMessage);
            all += std::to_string(Quarn::Int64ToUInt32(0x100000000 + round, __FILE__, __LINE__));
        }
        return all;
    });
    EXPECT_EQ(g_messages, 2 * ThreadCount * 20);
    Quarn::SetMessageHandler(before);
}

TEST(Threads, AnExceptionIsReadByAll)
{
    Quarn::QuarnException const exception("a message");
    ExpectTheSameInThreads([&](int) { return std::string(exception ? exception.GetString() : ""); });
}

TEST(Threads, RegistryKeysAndValuesAreUsedIndependently)
{
    ThrowAwayKey const root;
    ExpectTheSameInThreads([&](int number) {
        Win32Quarn::CurrentUserKey key(root.Path());
        std::string all = key.Open("key " + std::to_string(number)) ? "" : "not open";
        for (int round = 0; round < 10; ++round) {
            Quarn::string text;
            unsigned long type = 0;
            Win32Quarn::RegistryValue value(key, "value " + std::to_string(round));
            all +=
                value.Write(Quarn::string(round, 'x')) && value.Read(text, &type) ? text.c_str() : "not read";
            Win32Quarn::DWORDRegistryValue counter(key, "count");
            counter.Write(static_cast<unsigned long>(round));
            all += std::to_string(counter.Increment());
        }
        Quarn::StringList names;
        all += Win32Quarn::RegistryValueEnum(key).Read(names) ? std::to_string(names.size()) : "not listed";
        return all;
    });
}

TEST(Threads, OneModuleIsLoadedAndLookedIntoByAll)
{
#if defined(_WIN32)
    char const* const name = "kernel32.dll";
    char const* const function = "GetTickCount64";
#else
    char const* const name = "libc.so.6";
    char const* const function = "malloc";
#endif
    Win32Quarn::LoadLib(name); // the first time, the environment changes
    Win32Quarn::Win32Library library(name, "");
    ExpectTheSameInThreads([&](int) {
        std::string all;
        for (int round = 0; round < 20; ++round) {
            Win32Quarn::Win32Library own(name, "");
            all += library.Load() && own.Load() && library.IsLoaded() ? "y" : "n";
            all += library.GetFunction(function) == own.GetFunction(function) ? "y" : "n";
        }
        return all;
    });
}

TEST(Threads, SaveAndLoadOneSettingsFile)
{
    ScratchFolder const folder;
    Quarn::string const path = folder / "a.xml";
    ExpectTheSameInThreads([&](int number) {
        std::string all;
        for (int round = 0; round < 2; ++round) {
            Quarn::PropertyCollection settings("Root", "Threads");
            settings.SetValue(
                "text", Quarn::PropertyData(Quarn::string(2000, static_cast<char>('a' + number))), true);
            Quarn::Win32::XMLPropPersist file(path);
            all += file.Persist(&settings) ? "saved " : "not saved ";
            Quarn::PropertyCollection loaded;
            all += file.Populate(&loaded) ? "loaded " : "not loaded ";
            Quarn::string const text = loaded.GetValueString("text", "?");
            all += text == Quarn::string(2000, text[0]) ? "whole " : "torn ";
        }
        return all;
    });
}

TEST(Threads, PackedRecordsAreReadAndWrittenIndependently)
{
    ExpectTheSameInThreads([](int number) {
        std::string all;
        for (int round = 0; round < 50; ++round) {
            Quarn::PropertyValue value("record", Quarn::PropertyData(0), nullptr);
            value.Writef("id", number, round / 3.0);
            int first = 0;
            double second = 0;
            all += value.Readf("id", &first, &second) ? std::to_string(first) + " " + std::to_string(second)
                                                      : "no";
        }
        return all;
    });
}

} // namespace
