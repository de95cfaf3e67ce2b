// The library as a module of this process.
#include "quarn/platform/module.h"
#include "quarn/platform/win32_api.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <gtest/gtest.h>

#if !defined(_WIN32)
#include <dlfcn.h>
#endif

namespace {

std::string FileOf(HINSTANCE module)
{
    char path[MAX_PATH] = "";
    ::GetModuleFileNameA(module, path, MAX_PATH);
    return path;
}

TEST(Module, TheLibraryKnowsItsOwnInstance)
{
    HINSTANCE const library = QuarnUtil::GetLibraryInstance();
    ASSERT_NE(library, nullptr);
    EXPECT_NE(library, ::GetModuleHandleA(nullptr));
    EXPECT_TRUE(std::filesystem::equivalent(FileOf(library), QUARN_LIBRARY)) << FileOf(library);
    EXPECT_EQ(QuarnUtil::GetLibraryInstance(), library);
}

TEST(Module, PathsOfModulesAreAbsoluteAndCutAtTheBuffersEnd)
{
    HINSTANCE const library = QuarnUtil::GetLibraryInstance();
    for (HINSTANCE const module : {library, HINSTANCE{nullptr}}) {
        std::string const whole = FileOf(module);
        EXPECT_TRUE(std::filesystem::path(whole).is_absolute()) << whole;
        std::string buffer(whole.size() + 1, 'x');
        auto const exact = static_cast<DWORD>(whole.size() + 1);
        EXPECT_EQ(::GetModuleFileNameA(module, buffer.data(), exact), exact - 1);
        EXPECT_EQ(buffer.c_str(), whole);
        EXPECT_EQ(::GetModuleFileNameA(module, buffer.data(), 6), 6U);
        EXPECT_EQ(::GetLastError(), ERROR_INSUFFICIENT_BUFFER);
        // Whether the sixth byte is a terminator depends on the version of the system.
        EXPECT_EQ(buffer.substr(0, 5), whole.substr(0, 5));
        EXPECT_EQ(::GetModuleFileNameA(module, buffer.data(), 0), 0U);
    }
}

TEST(Module, WhatIsNoModuleIsNotLoaded)
{
    EXPECT_EQ(::LoadLibraryA("module_test_no_such_module"), nullptr);
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(::LoadLibraryA("no/such/folder/module"), nullptr);
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(::LoadLibraryA(QUARN_TEST_SOURCE), nullptr);
    EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
}

TEST(Module, ExportsAreFoundByTheirExactNamesInTheModuleItself)
{
    HINSTANCE const library = QuarnUtil::GetLibraryInstance();
    EXPECT_NE(::GetProcAddress(library, "_ZN9QuarnUtil18GetLibraryInstanceEv"), nullptr);
    for (char const* const name : {"_zn9quarnutil18getlibraryinstanceev", "none", "", "malloc"}) {
        ::SetLastError(7777);
        EXPECT_EQ(::GetProcAddress(library, name), nullptr) << name;
        EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND)) << name;
    }
}

#if defined(_WIN32)

// What goes to the debugger is an exception first, which the process itself may see.
LONG CALLBACK ShowDebuggerText(EXCEPTION_POINTERS* exception)
{
    constexpr DWORD DebuggerText = 0x40010006;
    EXCEPTION_RECORD const& record = *exception->ExceptionRecord;
    if (record.ExceptionCode == DebuggerText && record.NumberParameters >= 2) {
        DWORD written = 0;
        ::WriteFile(::GetStdHandle(STD_ERROR_HANDLE),
                    reinterpret_cast<void const*>(record.ExceptionInformation[1]),
                    static_cast<DWORD>(record.ExceptionInformation[0] - 1), &written, nullptr);
    }
    return EXCEPTION_CONTINUE_SEARCH;
}

void WatchDebuggerOutput()
{
    ::AddVectoredExceptionHandler(1, ShowDebuggerText);
}

bool IsLoaded(char const* path)
{
    return ::GetModuleHandleA(path) != nullptr;
}

#else

void WatchDebuggerOutput()
{
    ::setenv("QUARN_DEBUG_OUTPUT", "1", 1);
}

bool IsLoaded(char const* path)
{
    void* const module = ::dlopen(path, RTLD_NOW | RTLD_NOLOAD);
    if (module != nullptr) {
        ::dlclose(module);
    }
    return module != nullptr;
}

#endif

TEST(ModuleDeathTest, WritesItsBannerAtDetach)
{
    std::string banner =
        "\r\n** Dumping Win32Util Memory **\r\n------------------------------\r\n(No leaks)\r\n";
#if defined(_WIN32)
    // The test's capture reads text.
    banner.erase(std::remove(banner.begin(), banner.end(), '\r'), banner.end());
#endif
    EXPECT_EXIT(
        {
            WatchDebuggerOutput();
            std::exit(0);
        },
        testing::ExitedWithCode(0), testing::Eq(banner));
}

#if !defined(_WIN32)

TEST(ModuleDeathTest, WritesNothingUnlessAskedTo)
{
    EXPECT_EXIT(
        {
            ::setenv("QUARN_DEBUG_OUTPUT", "0", 1);
            std::exit(0);
        },
        testing::ExitedWithCode(0), testing::Eq(std::string()));
}

#endif

TEST(ModuleDeathTest, LoadsTheLanguageModuleBesideTheLibrary)
{
    EXPECT_EXIT(
        {
            bool const before = IsLoaded(QUARN_GERMAN_MODULE);
            QuarnUtil::InitLanguage("DEU");
            std::exit(!before && IsLoaded(QUARN_GERMAN_MODULE) ? 0 : 1);
        },
        testing::ExitedWithCode(0), "");
}

} // namespace
