// Calls that a signal interrupts, or that do a part of what they are asked for, are gone on with: nobody is
// told, and nothing is missing.
#include "quarn/stream/file_stream.h"

#include "tests/faults/resources.h"
#include "tests/properties/private_folders.h"
#include "tests/registry/throw_away_key.h"

#include <cerrno>

namespace {

using Quarn::PropertyData;
using Quarn::Win32::QuarnProperties;

std::vector<Faults::Plan> Interruptions()
{
    using Faults::Kind;
    using Faults::Span;
    return {{Kind::Interruptions, Span::One, 1, EINTR}, {Kind::Interruptions, Span::One, 1, 0}};
}

class Interrupted : public PrivateFolders
{
protected:
    // The work succeeds, whichever call is the one.
    template<typename Work, typename Check>
    void Expect(Work work, Check check)
    {
        auto const figures = Faults::ForEveryFault(
            Interruptions(), [] {}, work,
            [&](bool isDone, char const* /*struck*/) {
                EXPECT_TRUE(isDone);
                check();
            });
        EXPECT_GT(figures.faults, 2);
        RecordFigures(figures);
    }
};

TEST_F(Interrupted, SavesBackupsRestoringsAndLoadsSucceed)
{
    QuarnProperties store(m_file, "Store");
    store.SetAutoPersist(false);
    int number = 0;
    char backup[MAX_PATH] = "";
    Expect(
        [&] {
            store.SetValue("number", PropertyData(++number), true);
            bool const isSaved = store.Persist(false) && store.BackupXML(backup);
            store.SetValue("number", PropertyData(-1), true);
            return isSaved && store.Persist(false) && store.RestoreXML(backup) && store.Populate();
        },
        [&] {
            EXPECT_EQ(store.GetValueInt32("number", 0), number);
            EXPECT_EQ(Names(), std::set<std::string>{m_file});
        });
}

TEST_F(Interrupted, StreamsWriteAndReadAll)
{
    ScratchFolder const folder;
    std::string const path = folder / "records";
    Quarn::string const text(20'000, 'x'); // more than a stream's buffer holds
    Quarn::string found;
    Expect(
        [&] {
            {
                Quarn::ofstream stream(path.c_str(), std::ios_base::binary | std::ios_base::trunc);
                stream << 7 << text;
            }
            Quarn::ifstream stream(path.c_str(), std::ios_base::binary);
            int number = 0;
            stream >> number >> found;
            return number == 7;
        },
        [&] { EXPECT_TRUE(found == text) << found.size(); });
}

TEST_F(Interrupted, RegistryValuesAreWrittenAndRead)
{
    std::string const path = "Software\\QuarnUtilInterrupted";
    std::string const written(10'000, 'x'); // several pages of the file
    std::string found;
    Expect(
        [&] {
            HKEY key = nullptr;
            bool const isWritten = CreateKey(HKEY_CURRENT_USER, path.c_str(), key) == 0 &&
                                   SetBytes(key, "a", REG_BINARY, written) == 0;
            found = DataOf(key, "a");
            return ::RegCloseKey(key) == 0 && isWritten;
        },
        [&] {
            EXPECT_TRUE(found == written) << found.size();
            RemoveTree(HKEY_CURRENT_USER, path.c_str());
        });
}

} // namespace
