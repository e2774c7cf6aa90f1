#include "krender/pixels/private/ResizeFloatRows.h"

#include "krender/pixels/private/Lanes.h"
#include "krender/pixels/private/ResizePlain.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace krPixels
{

namespace
{

/// Finds out whether all components are finite and not negative.
class Watch
{
public:
    [[gnu::always_inline]] void see(const Float4& pixel) noexcept
    {
        const auto bits = loadLanes<UInt4>(&pixel);
        fGreatest = bits > fGreatest ? bits : fGreatest;
    }

    [[nodiscard]] bool sawOrdinaryOnly() const noexcept
    {
        // As integers, infinity, NaN and all values with the sign bit are above the other values.
        constexpr std::uint32_t kInfinity = 0x7f800000;
        return std::max({fGreatest[0], fGreatest[1], fGreatest[2], fGreatest[3]}) < kInfinity;
    }

private:
    UInt4 fGreatest = {};
};

/// Four doubles in registers that every processor has.
struct NarrowDoubles
{
    Double4 lanes;

    static void widen(Float4 x, NarrowDoubles& to) noexcept { to.lanes = widened(x); }
    static void load(const double* from, NarrowDoubles& to) noexcept
    {
        to.lanes = {loadLanes<Double2>(from), loadLanes<Double2>(from + 2)};
    }
    static void store(const NarrowDoubles& x, double* to) noexcept { std::memcpy(to, &x, sizeof x); }
    static void round(const NarrowDoubles& x, Float4& to) noexcept { to = rounded(x.lanes); }
    void scale(double factor) noexcept { lanes = lanes * factor; }
    void add(double summand) noexcept { lanes += summand; }
    void add(const NarrowDoubles& other) noexcept { lanes += other.lanes; }
};

#if defined(__x86_64__)
/// Four doubles in one register. They are passed by reference only, as the way to pass them by value depends on the
/// instructions that a function is compiled for.
struct WideDoubles
{
    __m256d lanes;

    [[gnu::target("avx2")]] static void widen(Float4 x, WideDoubles& to) noexcept { to.lanes = _mm256_cvtps_pd(x); }
    [[gnu::target("avx2")]] static void load(const double* from, WideDoubles& to) noexcept
    {
        to.lanes = _mm256_loadu_pd(from);
    }
    [[gnu::target("avx2")]] static void store(const WideDoubles& x, double* to) noexcept
    {
        _mm256_storeu_pd(to, x.lanes);
    }
    [[gnu::target("avx2")]] static void round(const WideDoubles& x, Float4& to) noexcept
    {
        to = _mm256_cvtpd_ps(x.lanes);
    }
    [[gnu::always_inline]] void scale(double factor) noexcept { lanes *= factor; }
    [[gnu::always_inline]] void add(double summand) noexcept { lanes += summand; }
    [[gnu::always_inline]] void add(const WideDoubles& other) noexcept { lanes += other.lanes; }
};
#endif

template <class Doubles>
[[gnu::always_inline]] inline bool addRowIn(FloatColumns& columns, const float* row, double weight)
{
    // The processor's own prefetching stops at the end of each page.
    constexpr std::size_t kAhead = 2048;
    Watch watch;
    double* sums = columns.sums.data();
    for (const FloatRun& run : columns.runs)
    {
        const float* pixel = row + 4 * std::size_t{run.first};
        const float* last = row + 4 * std::size_t{run.last};
        __builtin_prefetch(pixel + kAhead);
        const auto load = [&watch](const float* from, Doubles& to) __attribute__((always_inline))
        {
            const auto components = loadLanes<Float4>(from);
            watch.see(components);
            Doubles::widen(components, to);
        };
        Doubles sum;
        Doubles value;
        load(pixel, sum);
        sum.scale(run.firstWeight);
        if (pixel != last)
        {
            for (pixel += 4; pixel != last; pixel += 4)
            {
                load(pixel, value);
                sum.add(value);
            }
            load(last, value);
            value.scale(run.lastWeight);
            sum.add(value);
        }
        sum.scale(weight);
        Doubles::load(sums, value);
        sum.add(value);
        Doubles::store(sum, sums);
        sums += 4;
    }
    if (columns.runs.back().touchesNext)
        watch.see(loadLanes<Float4>(row + 4 * (std::size_t{columns.runs.back().last} + 1)));
    return watch.sawOrdinaryOnly();
}

/// Lowers levels to 1; NaN stays, and so differs from itself.
[[gnu::always_inline]] inline void clamp(Float4& levels) noexcept
{
    levels = levels > 1.0f ? Float4{1.0f, 1.0f, 1.0f, 1.0f} : levels;
}

template <class Doubles>
[[gnu::always_inline]] inline void storeAveragesIn(const FloatColumns& columns, double rowInverse, float* dst,
                                                   std::vector<std::size_t>& undecided)
{
    const double* sums = columns.sums.data();
    for (const FloatRun& run : columns.runs)
    {
        Doubles low;
        Doubles::load(sums, low);
        sums += 4;
        low.scale(rowInverse * run.inverse);
        low.add(kResizeNudge);
        Doubles high = low;
        low.scale(1.0 - columns.tolerance);
        high.scale(1.0 + columns.tolerance);
        Float4 least;
        Float4 greatest;
        Doubles::round(low, least);
        Doubles::round(high, greatest);
        clamp(least);
        clamp(greatest);
        for (std::uint32_t n = 0; n < run.count; ++n, dst += 4)
            storeLanes(least, dst);
        const Int4 same = least == greatest;
        if ((same[0] & same[1] & same[2] & same[3]) == 0)
            undecided.push_back(static_cast<std::size_t>(&run - columns.runs.data()));
    }
}

bool addRow(FloatColumns& columns, const float* row, double weight)
{
    return addRowIn<NarrowDoubles>(columns, row, weight);
}

void storeAverages(const FloatColumns& columns, double rowInverse, float* dst, std::vector<std::size_t>& undecided)
{
    storeAveragesIn<NarrowDoubles>(columns, rowInverse, dst, undecided);
}

#if defined(__x86_64__)
[[gnu::target("avx2")]] bool addRowWide(FloatColumns& columns, const float* row, double weight)
{
    return addRowIn<WideDoubles>(columns, row, weight);
}

[[gnu::target("avx2")]] void storeAveragesWide(const FloatColumns& columns, double rowInverse, float* dst,
                                               std::vector<std::size_t>& undecided)
{
    storeAveragesIn<WideDoubles>(columns, rowInverse, dst, undecided);
}
#endif

} // namespace

#if defined(__x86_64__)

bool hasWideRegisters() noexcept { return __builtin_cpu_supports("avx2") != 0; }

FloatRowSteps floatRowSteps(bool wide) noexcept
{
    return wide ? FloatRowSteps{addRowWide, storeAveragesWide} : FloatRowSteps{addRow, storeAverages};
}

#else

bool hasWideRegisters() noexcept { return false; }

FloatRowSteps floatRowSteps(bool /*wide*/) noexcept { return {addRow, storeAverages}; }

#endif

} // namespace krPixels
