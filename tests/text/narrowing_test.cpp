#include "quarn/platform/message.h"
#include "quarn/text/narrowing.h"

#include <atomic>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>
#include <type_traits>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::Int64ToUInt32;

static_assert(std::is_same_v<decltype(Int64ToUInt32(0, "", 0)), unsigned int>);

char const* const Message = "Int64 Conversion Error, quarn/text/narrowing.h: 488";

std::vector<std::string> g_reports;
std::thread::id g_reportingThread;

void Record(char const* text, char const* caption)
{
    g_reports.emplace_back(text);
    g_reports.emplace_back(caption);
    g_reportingThread = std::this_thread::get_id();
}

class Narrowing : public testing::Test
{
protected:
    Narrowing() { m_previous = Quarn::SetMessageHandler(Record); }
    ~Narrowing() override
    {
        Quarn::SetMessageHandler(m_previous);
        g_reports.clear();
    }

private:
    Quarn::MessageHandler m_previous;
};

TEST_F(Narrowing, OnlyValuesAbove32BitsAreReported)
{
    struct Row
    {
        std::int64_t value;
        unsigned int result;
        bool isReported;
    };
    Row const rows[] = {
        {0, 0, false},
        {1, 1, false},
        {2147483647, 2147483647, false},
        {2147483648, 2147483648U, false},
        {4294967294, 4294967294U, false},
        {4294967295, 4294967295U, false},
        {4294967296, 0, true},
        {4294967297, 1, true},
        {0x123456789ABCDEF0, 0x9ABCDEF0U, true},
        {INT64_MAX, 0xFFFFFFFFU, true},
        {-1, 4294967295U, false},
        {-2147483648LL, 2147483648U, false},
        {-4294967296LL, 0, false},
        {INT64_MIN, 0, false},
        {INT64_MIN + 5, 5, false},
    };
    for (Row const& row : rows) {
        g_reports.clear();
        EXPECT_EQ(Int64ToUInt32(row.value, "file.cpp", 1), row.result) << row.value;
        EXPECT_EQ(g_reports.size(), row.isReported ? 2U : 0U) << row.value;
    }
}

TEST_F(Narrowing, MessageDeliberatelyNamesTheHeaderWhoeverCalls)
{
    Int64ToUInt32(4294967296, "caller.cpp", 7);
    Int64ToUInt32(4294967296, nullptr, -1);
    Int64ToUInt32(4294967296, std::string(1000, '%').c_str(), 2147483647);
    EXPECT_EQ(g_reports, std::vector<std::string>(6, Message)); // text and caption alike, three times
}

TEST_F(Narrowing, ReportRunsOnTheCallingThread)
{
    std::thread::id caller;
    std::thread([&] {
        caller = std::this_thread::get_id();
        Int64ToUInt32(4294967296, "", 0);
    }).join();
    EXPECT_EQ(g_reportingThread, caller);
    EXPECT_NE(g_reportingThread, std::this_thread::get_id());
}

TEST_F(Narrowing, HandlerIsReplacedAndGivenBack)
{
    Quarn::MessageHandler const silent = [](char const*, char const*) {};
    EXPECT_EQ(Quarn::SetMessageHandler(silent), &Record);
    Int64ToUInt32(4294967296, "", 0);
    EXPECT_TRUE(g_reports.empty());
    EXPECT_EQ(Quarn::SetMessageHandler(nullptr), silent);
    EXPECT_EQ(Quarn::SetMessageHandler(Record), nullptr);
    Int64ToUInt32(4294967296, "", 0);
    EXPECT_EQ(g_reports.size(), 2U);
}

TEST_F(Narrowing, WhatAHandlerThrowsIsDropped)
{
    Quarn::SetMessageHandler([](char const*, char const*) { throw std::runtime_error("from the handler"); });
    EXPECT_EQ(Int64ToUInt32(4294967301, "", 0), 5U);
    Quarn::SetMessageHandler([](char const*, char const*) { throw 42; });
    EXPECT_EQ(Int64ToUInt32(4294967301, "", 0), 5U);
    EXPECT_NO_THROW(Quarn::ShowBlockingMessage("text", "caption"));
}

TEST_F(Narrowing, BlockingMessageKeepsTextAndCaptionApart)
{
    Quarn::ShowBlockingMessage("the text", "the caption");
    EXPECT_EQ(g_reports, (std::vector<std::string>{"the text", "the caption"}));
}

std::atomic<int> g_firstCalls = 0;
std::atomic<int> g_secondCalls = 0;

TEST_F(Narrowing, HandlersChangeWhileOtherThreadsReport)
{
    Quarn::MessageHandler const first = [](char const*, char const*) { ++g_firstCalls; };
    Quarn::MessageHandler const second = [](char const*, char const*) { ++g_secondCalls; };
    g_firstCalls = 0;
    g_secondCalls = 0;
    Quarn::SetMessageHandler(first);

    constexpr int threadCount = 4;
    constexpr int reportsEach = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back([] {
            for (int i = 0; i < reportsEach; ++i) {
                Int64ToUInt32(4294967296 + i, "", 0);
            }
        });
    }
    Quarn::MessageHandler next = second;
    for (int i = 0; i < 1000; ++i) {
        Quarn::MessageHandler const previous = Quarn::SetMessageHandler(next);
        EXPECT_EQ(previous, next == first ? second : first);
        next = previous;
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(g_firstCalls + g_secondCalls, threadCount * reportsEach);
}

} // namespace
