#include "krender/pixels/private/Resize.h"
#include "krender/pixels/private/ResizeFloatRows.h"

#include <limits>
#include <numeric>

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
        // Each form rounds at most about once for each pixel of a footprint and a few times more, each time by at most
        // half of epsilon, and all that it adds is positive. This is twice what both can be apart.
        const double cells = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
        fColumns.tolerance = 2.0 * (cells + 16.0) * std::numeric_limits<double>::epsilon();
    }

    [[nodiscard]] const std::vector<FloatRun>& columns() const noexcept { return fColumns.runs; }

    /// Resizes to one row.
    /// @param untold  gets the indices of the columns whose results are too near to where rounding turns
    void averageRow(const FloatRun& row, float* dst, std::vector<std::size_t>& untold)
    {
        if (sumRows(row))
            fSteps.storeAverages(fColumns, row.inverse, dst, untold);
        else
        {
            untold.resize(fColumns.runs.size());
            std::iota(untold.begin(), untold.end(), std::size_t{0});
        }
    }

private:
    /// The columns' weighted sums over a footprint's rows.
    /// @return  whether these rows, and one that the footprint only touches, are ordinary
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
                 [&](const auto& row, float* out, auto& untold) { resizer.averageRow(row, out, untold); });
}

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH)
{
    resize(src, srcW, srcH, dst, dstW, dstH, hasWideRegisters());
}

} // namespace krPixels
