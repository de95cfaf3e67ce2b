// Attributes, deleting, moving, copying and linking through the seam, the same on both systems.
#include "platform/scratch_folder.h"

#include <chrono>

#include <gtest/gtest.h>

namespace {

bool Exists(std::string const& path)
{
    return ::GetFileAttributesA(path.c_str()) != INVALID_FILE_ATTRIBUTES;
}

DWORD AttributesError(char const* path)
{
    return ErrorOf([&] { EXPECT_EQ(::GetFileAttributesA(path), INVALID_FILE_ATTRIBUTES); });
}

DWORD DeleteError(char const* path)
{
    return ErrorOf([&] { EXPECT_FALSE(::DeleteFileA(path)); });
}

DWORD MoveError(std::string const& from, std::string const& to, DWORD flags)
{
    return ErrorOf([&] { EXPECT_FALSE(::MoveFileExA(from.c_str(), to.c_str(), flags)); });
}

DWORD CopyError(std::string const& from, std::string const& to, BOOL failIfExists)
{
    return ErrorOf([&] { EXPECT_FALSE(::CopyFileA(from.c_str(), to.c_str(), failIfExists)); });
}

DWORD LinkError(std::string const& name, std::string const& existing)
{
    return ErrorOf([&] { EXPECT_FALSE(::CreateHardLinkA(name.c_str(), existing.c_str(), nullptr)); });
}

TEST(SeamFileName, AttributesTellFilesFoldersAndReadOnlyFiles)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    std::string const inner = folder.MakeFolder("f");
    EXPECT_EQ(::GetFileAttributesA(file.c_str()), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_EQ(::GetFileAttributesA(inner.c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(::GetFileAttributesA((inner + "/").c_str()), FILE_ATTRIBUTE_DIRECTORY);
    MakeReadOnly(file);
    EXPECT_EQ(::GetFileAttributesA(file.c_str()), FILE_ATTRIBUTE_ARCHIVE | FILE_ATTRIBUTE_READONLY);
}

TEST(SeamFileName, AttributesOfWhatIsMissing)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    EXPECT_EQ(AttributesError((folder / "none").c_str()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(AttributesError((folder / "none/a").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError((file + "/a").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(AttributesError(nullptr), ERROR_PATH_NOT_FOUND);
}

TEST(SeamFileName, FilesBecomeReadOnlyAndWritableAgain)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    std::string const inner = folder.MakeFolder("f");
    EXPECT_TRUE(::SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_NE(::GetFileAttributesA(file.c_str()) & FILE_ATTRIBUTE_READONLY, 0U);
    EXPECT_EQ(DeleteError(file.c_str()), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(::SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE));
    EXPECT_EQ(::GetFileAttributesA(file.c_str()), FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_TRUE(::SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_ARCHIVE));
    EXPECT_EQ(::GetFileAttributesA(file.c_str()), FILE_ATTRIBUTE_ARCHIVE);
    EXPECT_TRUE(::SetFileAttributesA(inner.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_EQ(::GetFileAttributesA(inner.c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_TRUE(::SetFileAttributesA(file.c_str(), FILE_ATTRIBUTE_NORMAL));
    EXPECT_TRUE(::DeleteFileA(file.c_str()));
}

TEST(SeamFileName, AttributesOfWhatIsMissingCannotBeSet)
{
    ScratchFolder const folder;
    auto const error = [](char const* path) {
        return ErrorOf([&] { EXPECT_FALSE(::SetFileAttributesA(path, FILE_ATTRIBUTE_NORMAL)); });
    };
    EXPECT_EQ(error((folder / "none").c_str()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(error((folder / "none/a").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error(nullptr), ERROR_PATH_NOT_FOUND);
}

TEST(SeamFileName, DeleteRemovesFilesAlone)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    EXPECT_TRUE(::DeleteFileA(file.c_str()));
    EXPECT_FALSE(Exists(file));
    EXPECT_EQ(DeleteError(file.c_str()), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(DeleteError((folder / "none/a").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(DeleteError(folder.MakeFolder("f").c_str()), ERROR_ACCESS_DENIED);
    EXPECT_EQ(DeleteError(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(DeleteError(nullptr), ERROR_PATH_NOT_FOUND);
}

TEST(SeamFileName, DeleteRefusesReadOnlyFiles)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("a");
    MakeReadOnly(file);
    EXPECT_EQ(DeleteError(file.c_str()), ERROR_ACCESS_DENIED);
    EXPECT_TRUE(Exists(file));
}

TEST(SeamFileName, MoveRenamesFilesAndFolders)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "1");
    std::string const b = folder / "b";
    EXPECT_TRUE(::MoveFileExA(a.c_str(), b.c_str(), 0));
    EXPECT_FALSE(Exists(a));
    EXPECT_EQ(ContentOf(b), "1");
    EXPECT_TRUE(::MoveFileExA(b.c_str(), a.c_str(), MOVEFILE_WRITE_THROUGH));
    EXPECT_EQ(ContentOf(a), "1");
    std::string const f = folder.MakeFolder("f");
    EXPECT_TRUE(::MoveFileExA(f.c_str(), (folder / "g").c_str(), 0));
    EXPECT_TRUE(::MoveFileExA(a.c_str(), (folder / "g/a").c_str(), MOVEFILE_WRITE_THROUGH));
    EXPECT_EQ(ContentOf(folder / "g/a"), "1");
}

TEST(SeamFileName, MoveOverwritesOnlyWhenAsked)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "new");
    std::string const b = folder.Make("b", "old");
    EXPECT_EQ(MoveError(a, b, 0), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(MoveError(a, b, MOVEFILE_WRITE_THROUGH), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(ContentOf(a), "new");
    EXPECT_EQ(ContentOf(b), "old");
    EXPECT_TRUE(::MoveFileExA(a.c_str(), b.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
    EXPECT_FALSE(Exists(a));
    EXPECT_EQ(ContentOf(b), "new");
    EXPECT_TRUE(::MoveFileExA(b.c_str(), b.c_str(), MOVEFILE_REPLACE_EXISTING));
    EXPECT_EQ(ContentOf(b), "new");
}

TEST(SeamFileName, MoveRefusesFoldersAsTargets)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "new");
    std::string const f = folder.MakeFolder("f");
    EXPECT_EQ(MoveError(a, f, 0), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(MoveError(a, f, MOVEFILE_REPLACE_EXISTING), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ContentOf(a), "new");
}

TEST(SeamFileName, MoveOfWhatIsMissing)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a");
    for (DWORD const flags : {DWORD{0}, DWORD{MOVEFILE_REPLACE_EXISTING}}) {
        EXPECT_EQ(MoveError(folder / "none", folder / "b", flags), ERROR_FILE_NOT_FOUND);
        EXPECT_EQ(MoveError(folder / "none/a", folder / "b", flags), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(MoveError(a, folder / "none/b", flags), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(MoveError("", folder / "b", flags), ERROR_PATH_NOT_FOUND);
        EXPECT_EQ(MoveError(a, "", flags), ERROR_PATH_NOT_FOUND);
    }
    EXPECT_EQ(MoveError(folder / "none", folder.MakeFolder("f"), MOVEFILE_REPLACE_EXISTING),
              ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(ErrorOf([&] { EXPECT_FALSE(::MoveFileExA(nullptr, a.c_str(), 0)); }), ERROR_PATH_NOT_FOUND);
    EXPECT_TRUE(Exists(a));
}

TEST(SeamFileName, CopyKeepsContentTimeAndReadOnly)
{
    ScratchFolder const folder;
    std::string content(200'000, 'x');
    content[65'536] = '\0';
    std::string const a = folder.Make("a", content);
    std::string const b = folder / "b";
    namespace fs = std::filesystem;
    fs::last_write_time(a, fs::file_time_type::clock::now() - std::chrono::hours(100));
    MakeReadOnly(a);
    EXPECT_TRUE(::CopyFileA(a.c_str(), b.c_str(), TRUE));
    EXPECT_EQ(ContentOf(b), content);
    EXPECT_EQ(fs::last_write_time(b), fs::last_write_time(a));
    EXPECT_EQ(::GetFileAttributesA(b.c_str()), ::GetFileAttributesA(a.c_str()));
}

TEST(SeamFileName, CopyOverwritesOnlyWhenAllowed)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "new");
    std::string const b = folder.Make("b", "old and longer");
    EXPECT_EQ(CopyError(a, b, TRUE), ERROR_FILE_EXISTS);
    EXPECT_EQ(ContentOf(b), "old and longer");
    EXPECT_TRUE(::CopyFileA(a.c_str(), b.c_str(), FALSE));
    EXPECT_EQ(ContentOf(b), "new");
}

TEST(SeamFileName, CopyOntoItselfIsRefusedAndHarmless)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "kept");
    EXPECT_EQ(CopyError(a, a, FALSE), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(CopyError(a, a, TRUE), ERROR_FILE_EXISTS);
    EXPECT_EQ(ContentOf(a), "kept");
}

TEST(SeamFileName, CopyOfWhatIsMissingOrAFolder)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a");
    std::string const f = folder.MakeFolder("f");
    EXPECT_EQ(CopyError(folder / "none", folder / "b", TRUE), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(CopyError(folder / "none/a", folder / "b", TRUE), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(CopyError(a, folder / "none/b", TRUE), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(CopyError(f, folder / "b", TRUE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(CopyError(a, f, FALSE), ERROR_ACCESS_DENIED);
    EXPECT_EQ(CopyError(a, f, TRUE), ERROR_FILE_EXISTS);
    EXPECT_FALSE(Exists(folder / "b"));
}

TEST(SeamFileName, AHardLinkIsASecondNameOfTheFile)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a", "1");
    std::string const b = folder / "b";
    EXPECT_TRUE(::CreateHardLinkA(b.c_str(), a.c_str(), nullptr));
    std::ofstream(a) << "22";
    EXPECT_EQ(ContentOf(b), "22");
    EXPECT_TRUE(::DeleteFileA(a.c_str()));
    EXPECT_EQ(ContentOf(b), "22");
}

TEST(SeamFileName, HardLinksThatCannotBeMade)
{
    ScratchFolder const folder;
    std::string const a = folder.Make("a");
    std::string const b = folder.Make("b", "kept");
    EXPECT_EQ(LinkError(b, a), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(LinkError(folder / "c", folder / "none"), ERROR_FILE_NOT_FOUND);
    EXPECT_EQ(LinkError(folder / "none/c", a), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(LinkError(folder / "c", folder.MakeFolder("f")), ERROR_ACCESS_DENIED);
    EXPECT_EQ(ContentOf(b), "kept");
}

TEST(SeamFileName, CreateDirectoryMakesOneLevel)
{
    ScratchFolder const folder;
    std::string const file = folder.Make("file");
    std::string const f = folder / "f";
    auto const error = [](char const* path) {
        return ErrorOf([&] { EXPECT_FALSE(::CreateDirectoryA(path, nullptr)); });
    };
    EXPECT_TRUE(::CreateDirectoryA(f.c_str(), nullptr));
    EXPECT_EQ(::GetFileAttributesA(f.c_str()), FILE_ATTRIBUTE_DIRECTORY);
    EXPECT_EQ(error(f.c_str()), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(error(file.c_str()), ERROR_ALREADY_EXISTS);
    EXPECT_EQ(error((folder / "none/f").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error((file + "/f").c_str()), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error(""), ERROR_PATH_NOT_FOUND);
    EXPECT_EQ(error(nullptr), ERROR_PATH_NOT_FOUND);
}

} // namespace
