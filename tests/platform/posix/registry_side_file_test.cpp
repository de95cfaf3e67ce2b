// What lies beside a registry file under the names of its log, its journal and its shared memory, left there
// by a crash, a copy that was cut short, or on purpose.
#include "tests/platform/posix/registry_child.h"
#include "tests/platform/posix/side_files.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

namespace {

constexpr std::size_t PageSize = 4096;
constexpr int Values = 5;

// Registries of the user, which has a log, and of the machine, which has a journal, each with the same
// values.
class RegistrySideFile : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directory(m_folder.MachineFolder());
        for (HKEY const root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
            ASSERT_EQ(m_folder.Run([root] {
                HKEY key = nullptr;
                long code = CreateKey(root, TestKeyPath, key);
                for (int i = 0; code == 0 && i < Values; ++i) {
                    code = SetText(key, Numbered("v", i).c_str(), Numbered("v", i));
                }
                std::exit(static_cast<int>(code)); // closes the registry
                return 0;
            }),
                      0);
            ASSERT_GT(ContentOf(File(root)).size(), 3 * PageSize);
        }
    }

    std::string File(HKEY root) const
    {
        return root == HKEY_CURRENT_USER ? m_folder.UserFile() : m_folder.MachineFile();
    }

    // In a process of its own, which must come to an end: all values are there, and one can be written.
    void ExpectWhole(HKEY root, char const* what) const
    {
        EXPECT_EQ(m_folder.Run([root] {
            ::alarm(20);
            HKEY key = nullptr;
            bool const isWhole = OpenKey(root, TestKeyPath, key) == 0 && ValueNames(key).size() == Values &&
                                 CountNumbered(key, "v", Values) == Values &&
                                 SetText(key, "w", "text") == 0 && ::RegDeleteValueA(key, "w") == 0;
            std::exit(isWhole ? 1 : 0);
            return 0;
        }),
                  1)
            << what;
    }

    // The codes of reading and of writing.
    struct Codes
    {
        long read;
        long write;
    };

    void ExpectCodes(HKEY root, Codes const& codes) const
    {
        EXPECT_EQ(m_folder.Run([&] {
            ::alarm(20);
            HKEY key = nullptr;
            Codes const found = {TryOpen(root, TestKeyPath), CreateKey(root, "Software\\new", key)};
            bool const areThese = found.read == codes.read && found.write == codes.write;
            if (!areThese) {
                std::fprintf(stderr, "codes %ld and %ld\n", found.read, found.write);
            }
            std::exit(areThese ? 1 : 0);
            return 0;
        }),
                  1);
    }

    RegistryFolder m_folder;
};

TEST_F(RegistrySideFile, AJournalBesideAFileWithALogIsNoPartOfItAndIsRemoved)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::string const page(PageSize, '\0');
    for (std::string const& journal :
         {SideFiles::Journal({}, 0, PageSize), SideFiles::Journal({}, 1, PageSize),
          SideFiles::Journal({{1, page}, {2, page}}, 2, PageSize), std::string("no journal")}) {
        Write(file + "-journal", journal);
        ExpectWhole(HKEY_CURRENT_USER, "first");
        EXPECT_FALSE(std::filesystem::exists(file + "-journal"));
        ExpectWhole(HKEY_CURRENT_USER, "again");
    }
}

TEST_F(RegistrySideFile, ALogBesideAFileWithAJournalIsNoPartOfIt)
{
    std::string const file = File(HKEY_LOCAL_MACHINE);
    std::string const page(PageSize, '\0');
    for (std::string const& log :
         {SideFiles::Log({{1, page}}, 1, PageSize), SideFiles::Log({{2, page}, {3, page}}, 3, PageSize),
          std::string("no log")}) {
        Write(file + "-wal", log);
        ExpectWhole(HKEY_LOCAL_MACHINE, "first");
        ExpectWhole(HKEY_LOCAL_MACHINE, "again");
    }
}

TEST_F(RegistrySideFile, AJournalOfItsOwnBringsTheFileBack)
{
    std::string const file = File(HKEY_LOCAL_MACHINE);
    std::string content = ContentOf(file);
    std::vector<SideFiles::Page> pages;
    for (std::size_t at = PageSize; at < content.size(); at += PageSize) {
        pages.emplace_back(at / PageSize + 1, content.substr(at, PageSize));
    }
    Write(file + "-journal", SideFiles::Journal(pages, content.size() / PageSize, PageSize));
    std::fill(content.begin() + PageSize, content.end(), 'x');
    Write(file, content + std::string(PageSize, 'x'));
    ExpectWhole(HKEY_LOCAL_MACHINE, "brought back");
    EXPECT_FALSE(std::filesystem::exists(file + "-journal"));
}

TEST_F(RegistrySideFile, ALogOfItsOwnBringsTheFileForward)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::string content = ContentOf(file);
    std::vector<SideFiles::Page> pages;
    for (std::size_t at = 0; at < content.size(); at += PageSize) {
        pages.emplace_back(at / PageSize + 1, content.substr(at, PageSize));
    }
    Write(file + "-wal", SideFiles::Log(pages, content.size() / PageSize, PageSize));
    // The header, too: it decides nothing when it is damaged.
    std::fill(content.begin(), content.end(), 'x');
    Write(file, content);
    ExpectWhole(HKEY_CURRENT_USER, "brought forward");
}

TEST_F(RegistrySideFile, AJournalThatWouldMakeTheFileHugeIsNoPartOfIt)
{
    std::string const file = File(HKEY_LOCAL_MACHINE);
    auto const size = std::filesystem::file_size(file);
    for (std::uint32_t const count : {100u, 0x00100000u, 0xFFFFFFFFu}) {
        Write(file + "-journal", SideFiles::Journal({}, count, PageSize));
        ExpectWhole(HKEY_LOCAL_MACHINE, "first");
        EXPECT_EQ(std::filesystem::file_size(file), size);
        ExpectWhole(HKEY_LOCAL_MACHINE, "again");
    }
}

TEST_F(RegistrySideFile, AJournalThatNamesAnotherFileDoesNotRemoveIt)
{
    std::string const file = File(HKEY_LOCAL_MACHINE);
    std::string const other = m_folder.MachineFolder() / "other";
    std::string const page(PageSize, '\0');
    for (std::string const& content : {std::string("content"), std::string(100, '\0')}) {
        Write(other, content);
        Write(file + "-journal", SideFiles::Journal({{2, page}}, 2, PageSize, other));
        ExpectWhole(HKEY_LOCAL_MACHINE, "first");
        ASSERT_TRUE(std::filesystem::exists(other));
        EXPECT_EQ(ContentOf(other), content);
        ExpectWhole(HKEY_LOCAL_MACHINE, "again");
    }
}

// Every byte of the log's header and of its first frame's, changed; and the log cut anywhere.
TEST_F(RegistrySideFile, ALogWithAWrongSumOrCutShortChangesNothing)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::string const log = SideFiles::Log({{2, std::string(PageSize, '\0')}}, 2, PageSize);
    ASSERT_TRUE(SideFiles::Counts(log));
    std::vector<std::string> logs;
    for (std::size_t i = 0; i < SideFiles::LogHeaderSize + SideFiles::FrameHeaderSize; i += 3) {
        logs.push_back(log);
        logs.back()[i] = static_cast<char>(log[i] ^ 0x10);
    }
    for (std::size_t const size : {1u, 31u, 32u, 40u, 56u, 2000u, 32u + 24u + 4095u}) {
        logs.push_back(log.substr(0, size));
    }
    logs.push_back(log);
    logs.back()[1000] ^= 1;
    for (std::string const& damaged : logs) {
        ASSERT_FALSE(SideFiles::Counts(damaged));
        Write(file + "-wal", damaged);
        ExpectWhole(HKEY_CURRENT_USER, "damaged log");
    }
}

TEST_F(RegistrySideFile, ALogThatMakesNoRegistryOfTheFileStaysBesideIt)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::string const content = ContentOf(file);
    std::string foreign = content.substr(0, PageSize);
    foreign[63] = 2; // the version of the tables
    std::string const page(PageSize, '\0');
    struct
    {
        std::string log;
        long code;
    } const cases[] = {
        {SideFiles::Log({{1, page}}, 1, PageSize), 1017},
        {SideFiles::Log({{1, foreign}}, static_cast<std::uint32_t>(content.size() / PageSize), PageSize),
         1017},
        {SideFiles::Log({{1, content.substr(0, PageSize)}, {2, page}}, 2, PageSize), 1015},
    };
    for (auto const& [log, code] : cases) {
        std::string const before = ContentOf(file);
        Write(file + "-wal", log);
        ExpectCodes(HKEY_CURRENT_USER, {code, code});
        EXPECT_TRUE(ContentOf(file) == before);
        EXPECT_TRUE(ContentOf(file + "-wal") == log);
        std::filesystem::remove(file + "-wal");
        ExpectWhole(HKEY_CURRENT_USER, "without the log");
    }
}

TEST_F(RegistrySideFile, ALogThatDamagesAPageIsNotBroughtIntoTheFileByWhoSeesTheDamage)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::string const content = ContentOf(file);
    auto const count = static_cast<std::uint32_t>(content.size() / PageSize);
    int damages = 0;
    for (std::uint32_t number = 2; number <= count; ++number) {
        Write(file + "-wal", SideFiles::Log({{number, std::string(PageSize, 'x')}}, count, PageSize));
        int const damage = m_folder.Run([] {
            HKEY key = nullptr;
            long code = OpenKey(HKEY_CURRENT_USER, TestKeyPath, key);
            for (DWORD index = 0; code == 0; ++index) {
                char name[300];
                DWORD size = sizeof name;
                code = ::RegEnumValueA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr);
                code = code != 0 ? code : Query(key, name, 100).code;
            }
            std::exit(code == 1015 ? 1 : code == 259 ? 0 : 2);
            return 0;
        });
        EXPECT_LT(damage, 2) << number;
        EXPECT_TRUE(damage == 0 || ContentOf(file) == content) << number;
        damages += damage;
        std::filesystem::remove(file + "-wal");
        Write(file, content);
    }
    EXPECT_GT(damages, 1);
}

TEST_F(RegistrySideFile, SharedMemoryThatNobodyUsesIsMadeAnew)
{
    for (HKEY const root : {HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE}) {
        for (std::string const& shared : {std::string("no index"), std::string(32768, '\xFF'),
                                          std::string(32768, '\0'), std::string(100000, 'x')}) {
            Write(File(root) + "-shm", shared);
            ExpectWhole(root, "shared memory");
        }
    }
}

TEST_F(RegistrySideFile, AFolderOrAPipeInAFilesPlaceGivesACodeAndKeepsNobodyWaiting)
{
    struct
    {
        HKEY root;
        char const* suffix;
        Codes ofFolder;
        Codes ofPipe;
    } const cases[] = {
        {HKEY_CURRENT_USER, "-wal", {5, 5}, {5, 5}},     {HKEY_CURRENT_USER, "-shm", {0, 5}, {1016, 1016}},
        {HKEY_CURRENT_USER, "-journal", {0, 0}, {0, 0}}, {HKEY_LOCAL_MACHINE, "-wal", {0, 0}, {0, 0}},
        {HKEY_LOCAL_MACHINE, "-shm", {0, 0}, {0, 0}},    {HKEY_LOCAL_MACHINE, "-journal", {0, 5}, {0, 5}},
    };
    for (auto const& [root, suffix, ofFolder, ofPipe] : cases) {
        for (bool const isPipe : {false, true}) {
            SCOPED_TRACE(std::string(suffix) + (isPipe ? " pipe" : " folder"));
            Codes const& codes = isPipe ? ofPipe : ofFolder;
            std::string const content = ContentOf(File(root));
            std::string const path = File(root) + suffix;
            ASSERT_TRUE(isPipe ? ::mkfifo(path.c_str(), 0600) == 0 : std::filesystem::create_directory(path));
            if (codes.write == 0) {
                ExpectWhole(root, "beside");
            } else {
                ExpectCodes(root, codes);
                EXPECT_TRUE(ContentOf(File(root)) == content);
            }
            std::filesystem::remove(path);
            ExpectWhole(root, "afterwards");
        }
    }
}

TEST_F(RegistrySideFile, APipeInTheRegistrysPlaceGivesACode)
{
    std::string const file = File(HKEY_CURRENT_USER);
    std::filesystem::remove(file);
    ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
    ExpectCodes(HKEY_CURRENT_USER, {5, 5});
    ASSERT_EQ(::chmod(file.c_str(), 0400), 0);
    ExpectCodes(HKEY_CURRENT_USER, {5, 5});
}

} // namespace
