// File streams and the log on files that cannot be opened, written, read or closed, at every single call: no
// failure is silent, and the next attempt succeeds.
#include "quarn/platform/log.h"
#include "quarn/stream/file_stream.h"
#include "quarn/stream/stream_exception.h"

#include "tests/faults/resources.h"
#include "tests/platform/scratch_folder.h"

#include <new>

#include <gtest/gtest.h>

namespace Log = Win32Quarn::Log;

namespace {

constexpr int Records = 40; // more than a stream's buffer holds

Quarn::string const& Text()
{
    static Quarn::string const text(500, 'x');
    return text;
}

bool Write(char const* path)
{
    try {
        Quarn::ofstream stream(path, std::ios_base::binary | std::ios_base::trunc);
        for (int i = 0; i < Records; ++i) {
            stream << i << Text();
        }
        stream.flush();
        stream.close();
        return stream.IsValidOutput();
    } catch (Quarn::StreamException const&) {
        return false;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

bool Read(char const* path)
{
    try {
        Quarn::ifstream stream(path, std::ios_base::binary);
        Quarn::string text;
        bool isRight = true;
        for (int i = 0; i < Records; ++i) {
            int number = -1;
            stream >> number >> text;
            isRight = isRight && number == i && text == Text();
        }
        int first = -1;
        stream.seekg(0, 0);
        stream >> first;
        isRight = isRight && first == 0;
        EXPECT_TRUE(isRight) << "what is read is what was written, or an error";
        return stream.IsValidInput();
    } catch (Quarn::StreamException const&) {
        return false;
    } catch (std::bad_alloc const&) {
        return false;
    }
}

TEST(StreamFaults, NoWriteIsLostSilently)
{
    ScratchFolder const folder;
    std::string const path = folder / "records";
    ASSERT_TRUE(Write(path.c_str()));
    std::string const whole = ContentOf(path);
    Resources resources;
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(), [&] { std::filesystem::remove(path); }, [&] { return Write(path.c_str()); },
        [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            if (isWritten) {
                EXPECT_EQ(ContentOf(path), whole);
            }
            EXPECT_TRUE(Write(path.c_str()));
            EXPECT_EQ(ContentOf(path), whole);
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 20 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST(StreamFaults, NoReadIsWrongSilently)
{
    ScratchFolder const folder;
    std::string const path = folder / "records";
    ASSERT_TRUE(Write(path.c_str()));
    Resources resources;
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(), [] {}, [&] { return Read(path.c_str()); },
        [&](bool isRead, char const* struck) {
            EXPECT_TRUE(isRead || struck != nullptr);
            EXPECT_TRUE(Read(path.c_str()));
            resources.ExpectSame();
        });
    EXPECT_GT(figures.refusals, 20 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

// Three messages: into a file that stays open, with a date, and one that closes the file.
int WriteLog()
{
    for (int const options : {16, 4 | 16}) {
        int const result = Log::Output(0, options, "first %d of all");
        if (result != 0) {
            return result;
        }
    }
    int const result = Log::Close();
    return result != 0 ? result : Log::Output(0, 17, "last");
}

TEST(LogFaults, EveryFailureIsReportedAndTheNextMessageIsWritten)
{
    ScratchFolder const folder;
    std::string const path = folder / "a.log";
    Resources resources;
    int result = 0;
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(),
        [&] {
            std::filesystem::remove(path);
            ASSERT_EQ(Log::SetPath(path.c_str()), 0);
        },
        [&] {
            result = WriteLog();
            return result == 0;
        },
        [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            EXPECT_GE(result, -4);
            if (isWritten) {
                EXPECT_EQ(ContentOf(path), "last\n");
            } else {
                EXPECT_NE(Log::GetErrorInformation(), 0U);
                EXPECT_EQ(Log::Output(0, "refused"), -5);
                EXPECT_EQ(Log::Close(), -2) << "the file is closed";
            }
            Log::ClearError();
            EXPECT_EQ(Log::Output(0, 17, "again"), 0);
            EXPECT_EQ(ContentOf(path), "again\n");
            resources.ExpectSame();
        });
    EXPECT_EQ(Log::SetPath(""), 0);
    EXPECT_GT(figures.refusals, 20 / Faults::AllocationStep());
    Faults::RecordFigures(figures);
}

TEST(LogFaults, WithoutMemoryForItsPathTheLogFailsAndTriesAgain)
{
    Resources resources;
    std::string path;
    auto const figures = Faults::ForEveryFault(
        Faults::Plans(), [] { ASSERT_EQ(Log::SetPath(""), 0); }, [&] { return Log::Output(0, 17, "x") == 0; },
        [&](bool isWritten, char const* struck) {
            EXPECT_TRUE(isWritten || struck != nullptr);
            Log::ClearError();
            EXPECT_EQ(Log::Output(0, 17, "x"), 0);
            if (path.empty()) {
                path = Log::GetPath();
            }
            EXPECT_EQ(Log::GetPath(), path) << "no fault leads to another folder";
            EXPECT_EQ(ContentOf(path), "x\n");
        });
    EXPECT_EQ(Log::SetPath(""), 0);
    EXPECT_GT(figures.refusals, 0);
    Faults::RecordFigures(figures);
}

} // namespace
