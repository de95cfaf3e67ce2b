// The conversions from seconds in many threads at once: they share one lock, so none sees another's result.
#include "quarn/time/time.h"

#include "tests/time/time_text.h"

#include <cstdint>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

namespace {

using Quarn::Time;

// The moments of one thread, and what they are.
struct Share
{
    explicit Share(int number)
    {
        for (int i = 0; i < 50; ++i) {
            moments.push_back(100000 + std::int64_t{number} * 400000007 + std::int64_t{i} * 86399);
            utc.emplace_back(moments.back(), true);
            local.emplace_back(moments.back(), false);
        }
    }

    int Errors() const
    {
        int errors = 0;
        for (std::size_t i = 0; i < moments.size(); ++i) {
            Time time;
            time.SetUTC(moments[i]);
            errors += time == utc[i] ? 0 : 1;
            time.SetLocal(moments[i]);
            errors += time == local[i] ? 0 : 1;
        }
        return errors;
    }

    std::vector<std::int64_t> moments;
    std::vector<Time> utc;
    std::vector<Time> local;
};

TEST(TimeThreads, EightConvertAtOnceAndGetTheirOwnTimes)
{
    constexpr int threadCount = 8;
    constexpr int rounds = 20;
    std::vector<Share> shares; // made before any thread runs
    for (int number = 0; number < threadCount; ++number) {
        shares.emplace_back(number);
    }
    std::vector<int> wrong(threadCount, 0);
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < shares.size(); ++number) {
        threads.emplace_back([&share = shares[number], &errors = wrong[number]] {
            for (int round = 0; round < rounds; ++round) {
                errors += share.Errors();
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, std::vector<int>(threadCount, 0));
}

} // namespace
