// What a process must not lose one by one: memory and open files.
#pragma once

#include "quarn/platform/win32_api.h"

#include "tests/faults/fault_loop.h"

#include <optional>
#include <string>

#include <gtest/gtest.h>

// The open files of this process.
std::ptrdiff_t OpenFiles();
// The files of this settings file's lock, where all processes look for them.
std::ptrdiff_t LockFiles(std::string const& settingsFile);

// What is in use at the first question must be in use at every later one. The first comes after a whole round
// of the work, so that what is kept for good is there.
class Resources
{
public:
    explicit Resources(std::string settingsFile = {}) : m_settingsFile(std::move(settingsFile)) {}

    void ExpectSame()
    {
        // A mutex that is closed is forgotten when the next one is made.
        ::CloseHandle(::CreateMutexA(nullptr, FALSE, "QuarnUtilFaultTest"));
        Use const now{Faults::LiveBlocks(), OpenFiles(), LockFiles(m_settingsFile)};
        if (!m_first) {
            m_first = now;
        }
        EXPECT_EQ(now.blocks, m_first->blocks) << "memory";
        EXPECT_EQ(now.files, m_first->files) << "open files";
        EXPECT_EQ(now.locks, m_first->locks) << "lock files";
    }

private:
    struct Use
    {
        std::ptrdiff_t blocks;
        std::ptrdiff_t files;
        std::ptrdiff_t locks;
    };
    std::string m_settingsFile;
    std::optional<Use> m_first;
};
