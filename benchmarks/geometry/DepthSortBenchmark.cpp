// Sorting points by depth, beside the sorts that a host would take instead. All get the same points and deliver the order
// of their depths; what they allocate and convert on the way is measured with them.
#include <krender/geometry/DepthSorter.h>

#include <benchmark/benchmark.h>
#include <hwy/contrib/sort/vqsort.h>

#include <algorithm>
#include <bit>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <vector>

namespace
{

using krLinear::ProjMatrix;
using Order = std::vector<unsigned>;

/// Fills an order for points under a matrix.
using Sort = void (*)(const ProjMatrix& m, const std::vector<float>& positions, Order& order);

std::vector<float> depthsOf(const ProjMatrix& m, const std::vector<float>& positions)
{
    std::vector<float> depths(positions.size() / 3);
    const bool identity = equivalent(ProjMatrix(1.0), m, krLinear::epsilonTol);
    for (std::size_t i = 0; i < depths.size(); ++i)
    {
        const float* p = &positions[3 * i];
        krLinear::HPoint result(p[0], p[1], p[2], 1.0);
        if (!identity)
            m.preMult(result, result);
        depths[i] = static_cast<float>(result.z);
    }
    return depths;
}

void sortOurs(const ProjMatrix& m, const std::vector<float>& positions, Order& order)
{
    DepthSorter::sortByDepth(m, order.data(), static_cast<unsigned>(order.size()), positions.data(), nullptr, 0);
}

void sortQsort(const ProjMatrix& m, const std::vector<float>& positions, Order& order)
{
    std::vector<float> depths = depthsOf(m, positions);
    DepthSorter::fsPositionXformZ = depths.data();
    std::iota(order.begin(), order.end(), 0u);
    std::qsort(order.data(), order.size(), sizeof order[0], DepthSorter::depthCompareFunction);
    DepthSorter::fsPositionXformZ = nullptr;
}

void sortStd(const ProjMatrix& m, const std::vector<float>& positions, Order& order)
{
    const std::vector<float> depths = depthsOf(m, positions);
    std::iota(order.begin(), order.end(), 0u);
    std::sort(order.begin(), order.end(), [&](unsigned a, unsigned b) { return depths[a] < depths[b]; });
}

/// Depth and place in one word that orders as an integer, for the sorts that move whole words.
std::vector<std::uint64_t> packed(const ProjMatrix& m, const std::vector<float>& positions)
{
    const std::vector<float> depths = depthsOf(m, positions);
    std::vector<std::uint64_t> words(depths.size());
    for (std::size_t i = 0; i < words.size(); ++i)
    {
        const auto bits = std::bit_cast<std::uint32_t>(depths[i] + 0.0f);
        words[i] = std::uint64_t{bits ^ (bits >> 31 ? 0xFFFFFFFFu : 0x80000000u)} << 32 | i;
    }
    return words;
}

void unpack(const std::vector<std::uint64_t>& words, Order& order)
{
    std::transform(words.begin(), words.end(), order.begin(), [](auto word) { return static_cast<unsigned>(word); });
}

void sortStdPacked(const ProjMatrix& m, const std::vector<float>& positions, Order& order)
{
    std::vector<std::uint64_t> words = packed(m, positions);
    std::sort(words.begin(), words.end());
    unpack(words, order);
}

void sortHighway(const ProjMatrix& m, const std::vector<float>& positions, Order& order)
{
    static const hwy::Sorter sorter;
    std::vector<std::uint64_t> words = packed(m, positions);
    sorter(words.data(), words.size(), hwy::SortAscending());
    unpack(words, order);
}

struct Sorter
{
    const char* name;
    Sort sort;
};
constexpr Sorter kSorters[] = {{"ours", sortOurs},
                               {"qsort", sortQsort},
                               {"std::sort", sortStd},
                               {"std::sort, packed", sortStdPacked},
                               {"Highway vqsort, packed", sortHighway}};

/// Points and the matrix that they are sorted under.
struct Workload
{
    std::string name;
    ProjMatrix m;
    std::vector<float> positions;
};

std::vector<Workload> workloads()
{
    std::mt19937 random(17);
    std::uniform_real_distribution<float> uniform(-100.0f, 100.0f);
    const auto points = [&](std::size_t n, const std::function<float(float)>& depth)
    {
        std::vector<float> positions;
        for (std::size_t i = 0; i < n; ++i)
            positions.insert(positions.end(),
                             {uniform(random), uniform(random), depth(static_cast<float>(i) / static_cast<float>(n))});
        return positions;
    };
    const auto any = [&](float) { return uniform(random); };
    ProjMatrix view(1.0);
    for (unsigned i = 0; i < 16; ++i)
        view(i / 4, i % 4) = 0.01 * uniform(random);

    std::vector<Workload> result;
    result.push_back({"1000000 random under a matrix", view, points(1'000'000, any)});
    const std::pair<const char*, std::function<float(float)>> kinds[] = {
        {"random", any},
        {"sorted", [](float at) { return at; }},
        {"reversed", [](float at) { return -at; }},
        {"all equal", [](float) { return -2.5f; }},
        {"few-valued", [&](float) { return static_cast<float>(static_cast<int>(uniform(random)) % 8); }}};
    for (const std::size_t n : {8UL, 64UL, 500UL, 700UL, 2000UL, 16000UL, 1'000'000UL})
        for (const auto& [kind, depth] : kinds)
            result.push_back({std::to_string(n) + " " + kind, ProjMatrix(1.0), points(n, depth)});
    return result;
}

/// Ends the program where a sort does not deliver what the plain one does.
void check(const Workload& workload, const Sorter& sorter)
{
    const std::vector<float> depths = depthsOf(workload.m, workload.positions);
    Order reference(depths.size());
    Order order(depths.size());
    sortQsort(workload.m, workload.positions, reference);
    sorter.sort(workload.m, workload.positions, order);
    const auto sameDepth = [&](unsigned a, unsigned b) { return depths[a] == depths[b]; };
    if (std::equal(order.begin(), order.end(), reference.begin(), sameDepth))
        return;
    std::fprintf(stderr, "%s: wrong order of %s\n", sorter.name, workload.name.c_str());
    std::exit(1);
}

/// Collects the medians, in nanoseconds, by workload and sorter.
class Medians : public benchmark::ConsoleReporter
{
public:
    void ReportRuns(const std::vector<Run>& runs) override
    {
        ConsoleReporter::ReportRuns(runs);
        for (const Run& run : runs)
            if (run.aggregate_name == "median")
                times[run.run_name.function_name] = run.GetAdjustedRealTime();
    }

    std::map<std::string, double> times;
};

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    const std::vector<Workload> all = workloads();
    for (const Workload& workload : all)
        for (const Sorter& sorter : kSorters)
        {
            check(workload, sorter);
            benchmark::RegisterBenchmark((workload.name + "/" + sorter.name).c_str(),
                                         [&workload, &sorter](benchmark::State& state)
                                         {
                                             Order order(workload.positions.size() / 3);
                                             for (auto _ : state)
                                                 sorter.sort(workload.m, workload.positions, order);
                                         })
                ->Repetitions(5)
                ->MinTime(0.02)
                ->ReportAggregatesOnly();
        }
    Medians medians;
    benchmark::RunSpecifiedBenchmarks(&medians);

    std::printf("\n%-32s %12s  peer's time / ours\n", "points", "ours, us");
    for (const Workload& workload : all)
    {
        const double ours = medians.times[workload.name + "/ours"];
        std::printf("%-32s %12.2f", workload.name.c_str(), ours / 1000.0);
        for (const Sorter& sorter : kSorters)
            if (sorter.sort != sortOurs)
                std::printf("  %s %.1f", sorter.name, medians.times[workload.name + "/" + sorter.name] / ours);
        std::printf("\n");
    }
}
