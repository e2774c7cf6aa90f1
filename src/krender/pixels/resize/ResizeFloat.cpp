#include "krender/pixels/private/Resize.h"
#include "krender/pixels/private/ResizeFloatRows.h"

#include "krender/pixels/private/ResizeFootprint.h"
#include "krender/pixels/private/ResizeRuns.h"

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <numeric>
#include <vector>

namespace krPixels
{

namespace
{

std::vector<FloatRun> floatRuns(std::uint32_t srcSize, std::uint32_t dstSize)
{
    std::vector<FloatRun> runs;
    std::uint32_t i = 0;
    for (const ResizeFootprint& footprint : resizeFootprints(srcSize, dstSize))
    {
        const bool touchesNext = footprint.lastWeight == 0.0;
        const std::uint32_t first = footprint.first;
        const std::uint32_t last = touchesNext ? footprint.last - 1 : footprint.last;
        if (runs.empty() || !extendRun(runs.back(), first, last))
        {
            FloatRun run{{first, last, i, 1}, 1.0, 0.0, 1.0, false};
            if (last != first)
            {
                run.firstWeight = footprint.firstWeight;
                run.lastWeight = footprint.weight(last);
                run.inverse = 1.0 / (run.firstWeight + (last - first - 1.0) + run.lastWeight);
            }
            runs.push_back(run);
        }
        runs.back().touchesNext |= touchesNext;
        ++i;
    }
    return runs;
}

class FloatResizer
{
public:
    FloatResizer(const float* src, unsigned srcW, unsigned srcH, unsigned dstW, unsigned dstH, bool wide)
        : fSteps(floatRowSteps(wide)), fSrc(src), fColumns{floatRuns(srcW, dstW), {}, srcW, 0.0}
    {
        // Both forms add positive numbers only. Each rounds about once for every pixel of a footprint and a few times more,
        // by at most half of epsilon each time, so this is at least twice their largest difference.
        const double cells = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
        fColumns.tolerance = 2.0 * (cells + 16.0) * std::numeric_limits<double>::epsilon();
    }

    [[nodiscard]] const std::vector<FloatRun>& columns() const noexcept { return fColumns.runs; }

    /// Computes one row.
    /// @param undecided  gets the indices of the columns that are left to the plain form
    void averageRow(const FloatRun& row, float* dst, std::vector<std::size_t>& undecided)
    {
        if (sumRows(row))
            fSteps.storeAverages(fColumns, row.inverse, dst, undecided);
        else
        {
            undecided.resize(fColumns.runs.size());
            std::iota(undecided.begin(), undecided.end(), std::size_t{0});
        }
    }

private:
    /// Sums the columns over a footprint's rows.
    /// @return  whether all components of these rows, and of one that the footprint only touches, are finite and not negative
    bool sumRows(const FloatRun& row)
    {
        fColumns.sums.assign(4 * fColumns.runs.size(), 0.0);
        bool ordinary = addRow(row.first, row.firstWeight);
        for (std::uint32_t r = row.first + 1; r < row.last; ++r)
            ordinary &= addRow(r, 1.0);
        if (row.last != row.first)
            ordinary &= addRow(row.last, row.lastWeight);
        if (row.touchesNext)
            ordinary &= addRow(row.last + 1, 0.0);
        return ordinary;
    }

    bool addRow(std::uint32_t r, double weight)
    {
        return fSteps.addRow(fColumns, fSrc + 4 * fColumns.srcW * r, weight);
    }

    FloatRowSteps fSteps;
    const float* fSrc;
    FloatColumns fColumns;
};

} // namespace

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH, bool wide)
{
    FloatResizer resizer(src, srcW, srcH, dstW, dstH, wide);
    resizeByRuns(src, srcW, srcH, dst, dstW, dstH, floatRuns(srcH, dstH), resizer.columns(),
                 [&](const auto& row, float* out, auto& undecided) { resizer.averageRow(row, out, undecided); });
}

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH)
{
    resize(src, srcW, srcH, dst, dstW, dstH, hasWideRegisters());
}

} // namespace krPixels
