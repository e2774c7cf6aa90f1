#pragma once
#include <algorithm>
#include <atomic>
#include <cstddef>
#include <system_error>
#include <thread>
#include <vector>

/// Calls a function with each number below a count, on all processors.
/// @param work  throws nothing, and writes nothing that another call reads or writes
template <class Work>
void inParallel(std::size_t count, const Work& work)
{
    std::atomic<std::size_t> next{0};
    const auto run = [&]
    {
        for (std::size_t i = next++; i < count; i = next++)
            work(i);
    };
    std::vector<std::jthread> others;
    try
    {
        for (std::size_t i = std::min<std::size_t>(std::thread::hardware_concurrency(), count); i > 1; --i)
            others.emplace_back(run);
    }
    catch (const std::system_error&) // there are no more threads to be had
    {
    }
    run();
}
