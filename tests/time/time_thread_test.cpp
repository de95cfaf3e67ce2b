// The conversions from seconds in many threads at once: they share one lock, so none sees another's result.
#include "quarn/time/time.h"

#include "tests/time/time_text.h"

#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::Time;

TEST(TimeThreads, EightConvertAtOnceAndGetTheirOwnTimes)
{
    constexpr int threadCount = 8;
    constexpr int momentCount = 50;
    constexpr int rounds = 20;
    std::vector<std::thread> threads;
    std::vector<int> wrong(threadCount, 0);
    for (int number = 0; number < threadCount; ++number) {
        // Expectations are made before any thread runs.
        std::vector<std::int64_t> moments;
        std::vector<Time> utc;
        std::vector<Time> local;
        for (int i = 0; i < momentCount; ++i) {
            moments.push_back(100000 + std::int64_t{number} * 400000007 + std::int64_t{i} * 86399);
            utc.emplace_back(moments.back(), true);
            local.emplace_back(moments.back(), false);
        }
        threads.emplace_back([moments, utc, local, &errors = wrong[static_cast<std::size_t>(number)]] {
            for (int round = 0; round < rounds; ++round) {
                for (std::size_t i = 0; i < moments.size(); ++i) {
                    Time time;
                    time.SetUTC(moments[i]);
                    errors += time == utc[i] ? 0 : 1;
                    time.SetLocal(moments[i]);
                    errors += time == local[i] ? 0 : 1;
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(threadCount, 0));
}

} // namespace
