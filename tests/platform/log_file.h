// The log with a file of its own for each test, which starts and ends in the state of a new process.
#pragma once

#include "quarn/platform/log.h"

#include "tests/platform/scratch_folder.h"

#include <string>

#include <gtest/gtest.h>

namespace Log = Win32Quarn::Log;

// The bits of the options, as clients write them.
constexpr int Closing = 1;
constexpr int TimeStamp = 2;
constexpr int DateStamp = 4;
constexpr int Truncating = 8;
constexpr int LineFeed = 16;

class LogFile : public testing::Test
{
protected:
    LogFile() { Log::SetPath(m_path.c_str()); }
    ~LogFile() override
    {
        Log::Close();
        Log::SetPath("");
        Log::SetOutputLevel(0);
        Log::SetOutputOptions(17);
    }

    // What the file holds, without closing the log.
    std::string Content() const { return ContentOf(m_path); }

    ScratchFolder const m_folder;
    std::string const m_path = m_folder / "a.log";
};
