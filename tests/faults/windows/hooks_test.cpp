// The hooks themselves: what they reach, and that what is counted is counted.
#include "quarn/platform/win32_api.h"
#include "quarn/properties/property_collection.h"

#include "tests/faults/resources.h"
#include "tests/faults/windows/imports.h"
#include "tests/platform/scratch_folder.h"

#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

namespace {

// What the library imports and no hook has to stand for.
constexpr char const* Harmless[] = {
    // They fail for no reason but a caller's mistake, or there is nothing to do about it.
    "AddVectoredExceptionHandler", "DeleteCriticalSection", "EnterCriticalSection", "FindClose",
    "GetCurrentProcess", "GetCurrentProcessId", "GetLastError", "InitializeCriticalSection",
    "IsDBCSLeadByteEx", "IsValidCodePage", "LeaveCriticalSection", "OutputDebugStringA", "PathAddBackslashA",
    "ReleaseMutex", "RemoveVectoredExceptionHandler", "RtlCaptureContext", "SetLastError", "TlsGetValue",
    "VirtualProtect", "VirtualQuery",
    // The time and what it is made of.
    "FileTimeToLocalFileTime", "FileTimeToSystemTime", "GetLocalTime", "GetSystemTime",
    "GetSystemTimeAsFileTime", "GetTimeZoneInformation", "LocalFileTimeToFileTime", "SystemTimeToFileTime",
    // Modules, their resources, messages and the environment: nothing is saved or loaded by them.
    "GetEnvironmentVariableA", "GetFileVersionInfoA", "GetFileVersionInfoSizeA", "GetModuleHandleA",
    "GetProcAddress", "GetVersionExA", "LoadCursorA", "LoadLibraryA", "LoadStringA", "MessageBoxA",
    "SetCursor", "VerQueryValueA",
    // The XML library's conversion of texts, which allocates nothing, and its files, which nobody reads: it
    // gets the bytes.
    "CreateFileW", "DuplicateHandle", "GetCurrentDirectoryA", "GetCurrentDirectoryW", "GetFileSize",
    "GetFullPathNameW", "GetStdHandle", "MultiByteToWideChar", "SetFilePointer", "WideCharToMultiByte"};

TEST(FaultHooks, StandForEveryFunctionThatTheLibraryImportsAndThatCanFail)
{
    EXPECT_EQ(Faults::IdleHooks(), std::vector<std::string>());
    for (std::string const& name : Faults::UnhookedImports()) {
        bool const isHarmless = std::any_of(std::begin(Harmless), std::end(Harmless),
                                            [&name](char const* known) { return name == known; });
        EXPECT_TRUE(isHarmless) << name << " never fails in these tests";
    }
}

TEST(FaultHooks, CountWhatTheLibraryAllocatesAndWhatThisProgramDoes)
{
    for (bool const isFirst : {true, false}) { // the first time something is made for good
        std::ptrdiff_t const before = Faults::LiveBlocks();
        auto tree = std::make_unique<Quarn::PropertyCollection>("a name that is not short", "a description");
        std::ptrdiff_t const with = Faults::LiveBlocks();
        EXPECT_GT(with, before);
        tree->AddSubKey("another name that is not short"); // in the library
        EXPECT_GT(Faults::LiveBlocks(), with);
        tree.reset();
        EXPECT_TRUE(isFirst || Faults::LiveBlocks() == before);
    }
}

TEST(FaultHooks, CountOpenHandles)
{
    ScratchFolder const folder;
    std::string const path = folder.Make("file");
    std::ptrdiff_t const before = OpenFiles();
    HANDLE const file =
        ::CreateFileA(path.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    HKEY key = nullptr;
    EXPECT_EQ(::RegOpenKeyExA(HKEY_CURRENT_USER, "Software", 0, KEY_READ, &key), 0);
    EXPECT_EQ(OpenFiles(), before + 2);
    ::RegCloseKey(key);
    ::CloseHandle(file);
    EXPECT_EQ(OpenFiles(), before);
}

} // namespace
