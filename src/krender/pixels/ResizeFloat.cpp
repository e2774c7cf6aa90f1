#include "Lanes.h"
#include "Resize.h"
#include "ResizeRuns.h"

#include <limits>

namespace krPixels
{

namespace
{

/// A run with its weights as the plain form has them, save that a cell that stands alone counts in full.
struct FloatRun : ResizeRun
{
    double firstWeight;
    double lastWeight; ///< 0 when the first cell is the only one
    double inverse;    ///< 1 / the sum of the weights
};

std::vector<FloatRun> floatRuns(std::uint32_t srcSize, std::uint32_t dstSize)
{
    std::vector<FloatRun> runs;
    std::uint32_t i = 0;
    for (const ResizeFootprint& footprint : resizeFootprints(srcSize, dstSize))
    {
        const std::uint32_t first = footprint.first;
        const std::uint32_t last = footprint.lastWeight == 0.0 ? footprint.last - 1 : footprint.last;
        if (runs.empty() || !extendRun(runs.back(), first, last))
        {
            FloatRun run{{first, last, i, 1}, 1.0, 0.0, 1.0};
            if (last != first)
            {
                run.firstWeight = footprint.firstWeight;
                run.lastWeight = footprint.weight(last);
                run.inverse = 1.0 / (run.firstWeight + (last - first - 1.0) + run.lastWeight);
            }
            runs.push_back(run);
        }
        ++i;
    }
    return runs;
}

/// Notes whether components are finite and none is negative, so that sums lose nothing by cancellation.
class Watch
{
public:
    void see(const float* pixel) noexcept
    {
        // One step of the exponent further, infinity and not-a-number get the sign bit that negative values have already.
        const auto bits = loadLanes<UInt4>(pixel);
        fSigns |= bits | (bits + 0x00800000);
    }

    [[nodiscard]] bool sawOrdinaryOnly() const noexcept
    {
        return ((fSigns[0] | fSigns[1] | fSigns[2] | fSigns[3]) >> 31) == 0;
    }

private:
    UInt4 fSigns = {};
};

class FloatResizer
{
public:
    FloatResizer(const float* src, unsigned srcW, unsigned srcH, unsigned dstW, unsigned dstH)
        : fSrc(src), fSrcH(srcH), fColumns(floatRuns(srcW, dstW)), fSums(srcW)
    {
        // Each form rounds at most about once for each pixel of a footprint and a few times more, each time by at most
        // half of epsilon, and all that it adds is positive. This is twice what both can be apart.
        const double cells = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
        fTolerance = 2.0 * (cells + 16.0) * std::numeric_limits<double>::epsilon();
    }

    [[nodiscard]] const std::vector<FloatRun>& columns() const noexcept { return fColumns; }

    /// Resizes to one row.
    /// @param untold  gets the indices of the columns whose results are too near to where rounding turns
    void averageRow(const FloatRun& row, float* dst, std::vector<std::size_t>& untold)
    {
        const bool ordinary = sumColumns(row);
        for (std::size_t i = 0; i < fColumns.size(); ++i)
        {
            if (!ordinary || !averageColumn(fColumns[i], row.inverse, dst))
                untold.push_back(i);
            dst += 4 * std::size_t{fColumns[i].count};
        }
    }

private:
    /// The weighted sums of the components of each source column over a footprint's rows.
    /// @return  whether these rows are ordinary, and the one after them, which the footprint may touch: the plain form counts
    ///          it with a weight of 0
    bool sumColumns(const FloatRun& row) noexcept
    {
        const std::size_t stride = 4 * fSums.size();
        const std::size_t toLast = (row.last - row.first) * stride;
        const std::size_t toTouched = row.last + 1 < fSrcH ? toLast + stride : toLast;
        const float* first = fSrc + row.first * stride;
        Watch watch;
        for (Double4& columnSum : fSums)
        {
            watch.see(first);
            watch.see(first + toTouched);
            Double4 sum = widened(loadLanes<Float4>(first)) * row.firstWeight;
            if (toLast != 0)
            {
                const float* last = first + toLast;
                for (const float* pixel = first + stride; pixel != last; pixel += stride)
                {
                    watch.see(pixel);
                    sum += widened(loadLanes<Float4>(pixel));
                }
                watch.see(last);
                sum += widened(loadLanes<Float4>(last)) * row.lastWeight;
            }
            columnSum = sum;
            first += 4;
        }
        return watch.sawOrdinaryOnly();
    }

    /// Stores the average of a run of columns as often as the run is long.
    /// @return  whether its components come out the same throughout the tolerance
    bool averageColumn(const FloatRun& column, double rowInverse, float* dst) const noexcept
    {
        const Double4* sums = fSums.data();
        Double4 sum = sums[column.first] * column.firstWeight;
        if (column.last != column.first)
        {
            for (std::uint32_t c = column.first + 1; c < column.last; ++c)
                sum += sums[c];
            sum += sums[column.last] * column.lastWeight;
        }
        Double4 average = sum * (rowInverse * column.inverse);
        average += kResizeNudge;
        const Float4 least = clamped(rounded(average * (1.0 - fTolerance)));
        const Float4 greatest = clamped(rounded(average * (1.0 + fTolerance)));
        for (std::uint32_t n = 0; n < column.count; ++n, dst += 4)
            storeLanes(least, dst);
        const Int4 same = least == greatest;
        return (same[0] & same[1] & same[2] & same[3]) != 0;
    }

    /// At most 1; not-a-number stays, and so is never the same as itself.
    static Float4 clamped(Float4 levels) noexcept { return levels > 1.0f ? Float4{1.0f, 1.0f, 1.0f, 1.0f} : levels; }

    const float* fSrc;
    std::size_t fSrcH;
    std::vector<FloatRun> fColumns;
    std::vector<Double4> fSums; ///< over the rows of a footprint, for each source column
    double fTolerance;          ///< relative
};

} // namespace

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH)
{
    FloatResizer resizer(src, srcW, srcH, dstW, dstH);
    resizeByRuns(src, srcW, srcH, dst, dstW, dstH, floatRuns(srcH, dstH), resizer.columns(),
                 [&](const auto& row, float* out, auto& untold) { resizer.averageRow(row, out, untold); });
}

} // namespace krPixels
