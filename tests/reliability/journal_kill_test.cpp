// A writer of a journal that is killed, again and again: the sample station's journal, which the documents
// show.
#include "examples/station/journal.h"
#include "reliability/commands.h"
#include "reliability/kill.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

namespace fs = std::filesystem;

std::string JournalIn(std::string const& folder)
{
    return folder + "/a.journal";
}

// ---- in the child

// A record that tells its number all over, in bytes that do not shrink when they are compressed. One in eight
// does not fit a file's buffer, and is written in two steps.
station::Record MakeRecord(std::uint32_t number)
{
    station::Record record;
    record.run = number;
    std::uint64_t noise = number * 0x9E3779B97F4A7C15U | 1U;
    Quarn::string remark;
    for (std::uint64_t i = number % 8 == 0 ? 1000 + noise % 1000 : noise % 40; i > 0; --i) {
        noise ^= noise << 13U;
        noise ^= noise >> 7U;
        noise ^= noise << 17U;
        std::uint64_t const bytes = noise | 0x0101010101010101U; // a zero byte would end the text
        remark.append(reinterpret_cast<char const*>(&bytes), sizeof bytes);
    }
    record.remarks.push_back(remark);
    return record;
}

bool AreEqual(station::Record const& a, station::Record const& b)
{
    return a.run == b.run && a.remarks.size() == b.remarks.size() && a.remarks.front() == b.remarks.front();
}

} // namespace

int KeepJournal(std::string const& folder, bool isLast)
{
    std::string const path = JournalIn(folder);
    std::uint32_t count = 0;
    bool isInOrder = true;
    station::JournalSummary const summary = station::ReadJournal(path, [&](station::Record const& record) {
        isInOrder = isInOrder && AreEqual(record, MakeRecord(++count));
    });
    fs::remove(station::SetAside(path, summary));
    WriteContent(folder + "/found",
                 std::to_string(isInOrder ? count : 0) + " " + std::to_string(summary.restBytes) + "\n");
    constexpr std::uint64_t Enough = 500'000; // to be read at every start
    if (summary.goodBytes > Enough) {
        fs::remove(path);
        count = 0;
    }
    Announcer announcer(folder);
    while (!isLast) {
        station::Append(path, MakeRecord(++count));
        announcer.Tell(std::to_string(count));
    }
    return 0;
}

namespace {

// ---- in the test

TEST(Kills, LoseNoRecordOfAJournalThatWasAppended)
{
    Lives lives("journal", 1);
    int losses = 0;
    int tornTails = 0;
    long records = 0;
    int const count = Times("QUARN_KILLS", 100);
    lives.Run(
        count, [] {},
        [&](std::vector<std::string> const& announced, std::vector<std::string> const& found) {
            ASSERT_FALSE(announced.empty());
            ASSERT_EQ(found.size(), 1U);
            long const last = std::atol(announced.back().c_str());
            long whole = 0;
            long rest = 0;
            std::istringstream(found.front()) >> whole >> rest;
            // The one in flight may be whole, or its beginning is a rest that the reader has seen.
            bool const isLoss = whole != last && whole != last + 1;
            losses += isLoss ? 1 : 0;
            EXPECT_FALSE(isLoss) << last << " announced, " << whole << " whole, " << rest << " bytes behind";
            tornTails += rest > 0 ? 1 : 0;
            records += static_cast<long>(announced.size());
        });
    EXPECT_EQ(losses, 0);
    EXPECT_GT(records, 0);
    ShowFigure(count, " kills of a journal's writer, ", losses, " losses among ", records,
               " records (torn tails ", tornTails, ")");
}

// What a write in flight may leave where the kill, the disk or the power comes between its parts.
class JournalTail : public ::testing::Test
{
protected:
    void SetUp() override
    {
        for (std::uint32_t number = 1; number <= 3; ++number) {
            m_wholeSize = ContentOf(m_path).size();
            station::Append(m_path, MakeRecord(Before + number));
        }
        m_journal = ContentOf(m_path);
        ASSERT_GT(m_wholeSize, 0U);
    }

    // Of a journal with two whole records and something behind them, both are there, and a third can follow.
    void ExpectTwoAndARest(std::string const& content)
    {
        WriteContent(m_path, content);
        station::JournalSummary const summary = Read(2);
        EXPECT_EQ(summary.goodBytes, m_wholeSize);
        EXPECT_EQ(summary.restBytes, content.size() - m_wholeSize);
        std::string const copy = station::SetAside(m_path, summary);
        EXPECT_EQ(copy.empty(), content.size() == m_wholeSize);
        if (!copy.empty()) {
            EXPECT_EQ(ContentOf(copy), content);
            fs::remove(copy);
        }
        station::Append(m_path, MakeRecord(Before + 3));
        EXPECT_EQ(Read(3).restBytes, 0U);
    }

    station::JournalSummary Read(std::uint32_t expected) const
    {
        std::uint32_t count = 0;
        station::JournalSummary const summary =
            station::ReadJournal(m_path, [&](station::Record const& record) {
                EXPECT_TRUE(AreEqual(record, MakeRecord(Before + ++count)));
            });
        EXPECT_EQ(count, expected);
        return summary;
    }

    static constexpr std::uint32_t Before = 196; // so that the third is a short one

    ScratchFolder m_folder;
    std::string m_path = JournalIn(m_folder.Path());
    std::size_t m_wholeSize = 0; // of the first two
    std::string m_journal;
};

TEST_F(JournalTail, OfAnyLengthCostsItsOwnRecordAlone)
{
    for (std::size_t size = m_wholeSize; size < m_journal.size(); ++size) {
        SCOPED_TRACE(size);
        ExpectTwoAndARest(m_journal.substr(0, size));
    }
}

TEST_F(JournalTail, WithAnyByteChangedCostsItsOwnRecordAlone)
{
    for (std::size_t at = m_wholeSize; at < m_journal.size(); ++at) {
        SCOPED_TRACE(at);
        std::string content = m_journal;
        content[at] = static_cast<char>(content[at] ^ 0x10);
        ExpectTwoAndARest(content);
    }
}

} // namespace
