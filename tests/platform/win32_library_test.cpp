// Companion libraries as modules of the system.
#include "quarn/platform/win32_library.h"
#include "quarn/text/exception.h"

#include "platform/companions.h"

#include <climits>

namespace {

using Quarn::Library;
using Win32Quarn::Win32LibFactory;
using Win32Quarn::Win32Library;

#if defined(_WIN32)
constexpr DWORD InitialiserFailed = ERROR_DLL_INIT_FAILED;
constexpr std::size_t MachineOffset = 4; // behind the header that the word at 0x3C leads to
#else
constexpr DWORD InitialiserFailed = ERROR_BAD_EXE_FORMAT;
constexpr std::size_t MachineOffset = 18;
#endif

int Call(void (*function)())
{
    return function != nullptr ? reinterpret_cast<int (*)()>(function)() : -1;
}

int Call(void (*function)(), int argument)
{
    return function != nullptr ? reinterpret_cast<int (*)(int)>(function)(argument) : -1;
}

using Win32LibraryTest = Companions;

TEST_F(Win32LibraryTest, IsClosedAtFirst)
{
    Win32Library const library(Put("1"), "DEU");
    EXPECT_EQ(library.GetLibName(), Quarn::string((std::filesystem::path(m_here) / m_file).string()));
    EXPECT_EQ(library.GetLanguage(), "DEU");
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(static_cast<HINSTANCE>(library), nullptr);
    EXPECT_EQ(library.GetRefCount(), 0U);
    EXPECT_EQ(library.GetLastError(), 0U);
    EXPECT_EQ(library.GetFunction("CompanionNumber"), nullptr);
    EXPECT_EQ(library.GetFunction(7), nullptr);
    EXPECT_EQ(library.GetLastError(), 0U) << "nothing has been looked up";
}

TEST_F(Win32LibraryTest, LoadsOnceAndStaysLoadedDeliberately)
{
    Win32Library library(Put("2"), "");
    EXPECT_FALSE(library.Unload());
    EXPECT_TRUE(library.Load());
    HINSTANCE const module = library;
    EXPECT_NE(module, nullptr);
    EXPECT_EQ(library.GetRefCount(), 1U);
    EXPECT_TRUE(library.Load());
    EXPECT_EQ(library.GetRefCount(), 1U);
    EXPECT_TRUE(library.Unload());
    EXPECT_TRUE(library.Unload());
    EXPECT_EQ(library.GetRefCount(), 1U);
    EXPECT_TRUE(library.IsLoaded());
    EXPECT_EQ(static_cast<HINSTANCE>(library), module);
    EXPECT_EQ(Call(library.GetFunction("CompanionNumber")), 2);
}

TEST_F(Win32LibraryTest, FindsFunctionsByName)
{
    Win32Library library(Put("3"), "");
    ASSERT_TRUE(library.Load());
    EXPECT_EQ(Call(library.GetFunction("CompanionNumber")), 3);
    EXPECT_EQ(Call(library.GetFunction("CompanionSquare"), 12), 144);
}

TEST_F(Win32LibraryTest, ANameThatIsNotFoundLeavesItsErrorUntilTheNextFailure)
{
    Win32Library library(Put("1"), "");
    ASSERT_TRUE(library.Load());
    for (Quarn::string const& name :
         {Quarn::string("companionnumber"), Quarn::string("CompanionNumber "), Quarn::string(),
          Quarn::string(100'000, 'a'), Quarn::string("malloc")}) {
        Win32Library asked(library);
        EXPECT_EQ(asked.GetFunction(name), nullptr) << name.substr(0, 20);
        EXPECT_EQ(::GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
        EXPECT_EQ(asked.GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
        EXPECT_NE(asked.GetFunction("CompanionNumber"), nullptr);
        EXPECT_EQ(asked.GetLastError(), static_cast<DWORD>(ERROR_PROC_NOT_FOUND));
    }
    EXPECT_EQ(library.GetLastError(), 0U);
}

TEST_F(Win32LibraryTest, FunctionsByOrdinal)
{
    Win32Library library(Put("4"), "");
    ASSERT_TRUE(library.Load());
#if defined(_WIN32)
    EXPECT_EQ(Call(library.GetFunction(7)), 4);
    EXPECT_EQ(Call(library.GetFunction(12), 5), 25);
    EXPECT_EQ(Call(library.GetFunction(300), 5), 1005);
    EXPECT_EQ(library.GetFunction("CompanionWithoutName"), nullptr);
#else
    EXPECT_EQ(Call(library.GetFunction("CompanionWithoutName"), 5), 1005);
    for (int const ordinal : {1, 7, 12, 300, 65'535}) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(library.GetFunction(ordinal), nullptr); }), ERROR_INVALID_ORDINAL);
    }
#endif
}

TEST_F(Win32LibraryTest, AnOrdinalThatIsNotFoundIsNotRecordedDeliberately)
{
    Win32Library library(Put("1"), "");
    ASSERT_TRUE(library.Load());
    for (int const ordinal : {0, 1, 8, 301, 65'535}) {
        EXPECT_EQ(library.GetFunction(ordinal), nullptr) << ordinal;
    }
    for (int const ordinal : {-1, 65'536, INT_MAX, INT_MIN}) {
        EXPECT_EQ(ErrorOf([&] { EXPECT_EQ(library.GetFunction(ordinal), nullptr); }),
                  static_cast<DWORD>(ERROR_INVALID_ORDINAL))
            << ordinal;
    }
    EXPECT_EQ(library.GetLastError(), 0U);
}

TEST_F(Win32LibraryTest, CopiesShareTheModule)
{
    Win32Library library(Put("1"), "DEU");
    ASSERT_TRUE(library.Load());
    library.GetFunction("none");
    Win32Library copy(library);
    Win32Library assigned("other", "ENG");
    assigned = library;
    for (Win32Library* const other : {&copy, &assigned}) {
        EXPECT_EQ(other->GetLibName(), library.GetLibName());
        EXPECT_EQ(other->GetLanguage(), "DEU");
        EXPECT_EQ(static_cast<HINSTANCE>(*other), static_cast<HINSTANCE>(library));
        EXPECT_EQ(other->GetRefCount(), 1U);
        EXPECT_EQ(other->GetLastError(), library.GetLastError());
        EXPECT_TRUE(other->Load());
        EXPECT_EQ(Call(other->GetFunction("CompanionNumber")), 1);
    }
    Win32Library const closed("closed", "");
    copy = closed;
    EXPECT_FALSE(copy.IsLoaded());
    EXPECT_TRUE(library.IsLoaded());
}

TEST_F(Win32LibraryTest, ModulesOutliveTheirLibraries)
{
    void (*function)() = nullptr;
    {
        Win32Library library(Put("3"), "");
        ASSERT_TRUE(library.Load());
        function = library.GetFunction("CompanionNumber");
    }
    EXPECT_EQ(Call(function), 3);
    Library* const shared = Library::Create((m_folder / m_file).c_str(), Win32LibFactory);
    ASSERT_TRUE(shared->Load());
    EXPECT_EQ(shared->GetFunction("CompanionNumber"), function) << "the same file is the same module";
    EXPECT_TRUE(Library::Release(shared));
    EXPECT_EQ(Call(function), 3);
}

TEST_F(Win32LibraryTest, TheListsLibrariesAreShared)
{
    Put("2");
    Quarn::string const name = m_folder / m_file;
    Library* const first = Library::Create(name, Win32LibFactory);
    Library* const second = Library::Create(name.Upper(), Win32LibFactory);
    ASSERT_EQ(first, second);
    EXPECT_FALSE(first->IsLoaded()) << "to create is not to load";
    EXPECT_TRUE(first->Load());
    EXPECT_EQ(Call(second->GetFunction("CompanionNumber")), 2);
    EXPECT_NE(dynamic_cast<Win32Library*>(second), nullptr);
    EXPECT_FALSE(Library::Release(first));
    EXPECT_TRUE(Library::Release(second));
}

TEST_F(Win32LibraryTest, TheFactoryMakesAndDeletes)
{
    Library* const library = Win32LibFactory.MakeLibrary("Plot", "DEU");
    ASSERT_NE(library, nullptr);
    EXPECT_EQ(library->GetLibName(), "Plot");
    EXPECT_EQ(library->GetLanguage(), "DEU");
    EXPECT_FALSE(library->IsLoaded());
    Win32LibFactory.DeleteLibrary(library);
    Win32LibFactory.DeleteLibrary(nullptr);
    EXPECT_EQ(Win32Library::LibrarySubdir, "bin");
}

TEST_F(Win32LibraryTest, AnInconsistentStateThrowsAtLoad)
{
    InconsistentLibrary library;
    for (int i = 0; i < 2; ++i) {
        try {
            library.Load();
            FAIL() << "did not throw";
        } catch (Quarn::QuarnException const& exception) {
            EXPECT_STREQ(exception.GetString(),
                         "Win32Library::Load() Failed: Lib=Plot.dll, m_hMod = NULL, m_refCount=1");
        }
    }
    EXPECT_FALSE(library.IsLoaded());
    EXPECT_EQ(library.GetFunction("f"), nullptr);
    EXPECT_TRUE(library.Unload()) << "the count alone decides, deliberately";
}

class RefusedLibrary : public Companions
{
protected:
    // The error after a load that fails, twice alike.
    static DWORD ErrorOfLoading(std::string const& name)
    {
        Win32Library library(name, "");
        DWORD const error = ErrorOf([&] { EXPECT_FALSE(library.Load()) << name; });
        EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(library.Load()) << name; }), error);
        EXPECT_FALSE(library.IsLoaded());
        EXPECT_EQ(library.GetRefCount(), 0U);
        EXPECT_EQ(library.GetLastError(), 0U);
        EXPECT_EQ(library.GetFunction("CompanionNumber"), nullptr);
        EXPECT_FALSE(library.Unload());
        return error;
    }
};

TEST_F(RefusedLibrary, WhichIsMissing)
{
    EXPECT_EQ(ErrorOfLoading(m_name), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(ErrorOfLoading(m_file), static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
    EXPECT_EQ(ErrorOfLoading((std::filesystem::path(m_here) / m_file).string()),
              static_cast<DWORD>(ERROR_MOD_NOT_FOUND));
}

TEST_F(RefusedLibrary, WhichIsNoModule)
{
    for (std::string const& content : {std::string("This is a text."), std::string(), std::string(5000, 'x'),
                                       ContentOf(Built("1")).substr(0, 200)}) {
        std::string const path = m_folder.Make(m_file, content);
        EXPECT_EQ(ErrorOfLoading(path), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT)) << content.size();
    }
}

TEST_F(RefusedLibrary, WhichIsOfAnotherProcessor)
{
    std::string content = ContentOf(Built("1"));
    std::size_t machine = MachineOffset;
#if defined(_WIN32)
    machine += static_cast<unsigned char>(content[0x3C]) + (static_cast<unsigned char>(content[0x3D]) << 8);
#endif
    ASSERT_GT(content.size(), machine + 2);
    content[machine] = static_cast<char>(0xF0);
    content[machine + 1] = '\x01'; // PowerPC on Windows, none yet elsewhere
    EXPECT_EQ(ErrorOfLoading(m_folder.Make(m_file, content)), static_cast<DWORD>(ERROR_BAD_EXE_FORMAT));
}

TEST_F(RefusedLibrary, WhichCannotStart)
{
    EXPECT_EQ(ErrorOfLoading(Put("fails")), InitialiserFailed);
}

TEST_F(RefusedLibrary, WhichIsAFolder)
{
    std::filesystem::create_directory(m_folder / m_file);
    Win32Library library(m_folder / m_file, "");
    EXPECT_FALSE(library.Load());
}

TEST_F(RefusedLibrary, WhoseNameIsNoName)
{
    for (std::string const& name :
         {std::string(), std::string("."), std::string(".."), std::string("../"), std::string("/"),
          std::string("//"), std::string("%s%n"), std::string("\x01\xFF"), std::string(259, 'a'),
          std::string(260, 'a'), std::string(300, 'a'), std::string(100'000, 'a'),
          "sub/" + std::string(5000, 'b'), "/" + std::string(5000, 'b')}) {
        Win32Library library(name, "");
        EXPECT_FALSE(library.Load()) << name.substr(0, 20);
        EXPECT_FALSE(library.IsLoaded());
    }
}

TEST_F(RefusedLibrary, CanBeLoadedOnceItIsThere)
{
    Win32Library library(m_folder / m_file, "");
    EXPECT_FALSE(library.Load());
    Put("4");
    EXPECT_TRUE(library.Load());
    EXPECT_EQ(library.GetRefCount(), 1U);
    EXPECT_EQ(Call(library.GetFunction("CompanionNumber")), 4);
}

} // namespace
