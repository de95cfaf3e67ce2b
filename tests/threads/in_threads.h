// The same work in eight threads at once, and one after the other.
#pragma once

#include <string>
#include <thread>
#include <vector>

constexpr int ThreadCount = 8;

// Runs the function in every thread at once; what each returned, in the threads' order.
template<typename Function>
std::vector<std::string> InEachThread(Function function)
{
    std::vector<std::string> results(ThreadCount);
    std::vector<std::thread> threads;
    for (int number = 0; number < ThreadCount; ++number) {
        threads.emplace_back(
            [&results, &function, number] { results[static_cast<std::size_t>(number)] = function(number); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    return results;
}

template<typename Function>
std::vector<std::string> OneAfterTheOther(Function function)
{
    std::vector<std::string> results;
    for (int number = 0; number < ThreadCount; ++number) {
        results.push_back(function(number));
    }
    return results;
}
