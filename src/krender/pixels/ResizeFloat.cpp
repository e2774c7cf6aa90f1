#include "Lanes.h"
#include "Resize.h"
#include "ResizePlain.h"

#include <array>
#include <limits>

namespace krPixels
{

namespace
{

/// Whether all components are finite and none is negative, so that sums lose nothing by cancellation.
bool isOrdinary(const float* components, std::size_t count) noexcept
{
    bool strange = false;
    for (std::size_t i = 0; i < count; ++i)
        strange |= !((components[i] >= 0.0f) & (components[i] <= std::numeric_limits<float>::max()));
    return !strange;
}

/// The sum of a footprint's weights.
double totalWeight(const ResizeFootprint& footprint) noexcept
{
    const std::uint32_t cells = footprint.last - footprint.first + 1;
    return cells == 1 ? footprint.firstWeight : footprint.firstWeight + (cells - 2.0) + footprint.lastWeight;
}

/// The weights of the first and last cell, for a sum in which a single cell counts as the first one.
double lastWeight(const ResizeFootprint& footprint) noexcept
{
    return footprint.first == footprint.last ? 0.0 : footprint.lastWeight;
}

/// The weighted sum of the pixels of a footprint that start at first and lie stride components apart.
template <typename Load, typename Component>
Double4 weightedSum(const Component* first, const Component* last, std::size_t stride, double firstWeight,
                    double lastWeight, Load load) noexcept
{
    Double4 sum = load(first) * firstWeight;
    for (const Component* pixel = first + stride; pixel < last; pixel += stride)
        sum += load(pixel);
    if (lastWeight != 0.0)
        sum += load(last) * lastWeight;
    return sum;
}

class FloatResizer
{
public:
    FloatResizer(const float* src, unsigned srcW, unsigned srcH, unsigned dstW, unsigned dstH)
        : fSrc(src),
          fRowComponents(std::size_t{4} * srcW),
          fRows(resizeFootprints(srcH, dstH)),
          fColumns(resizeFootprints(srcW, dstW)),
          fSums(srcW)
    {
        for (const ResizeFootprint& column : fColumns)
            fColumnInverses.push_back(1.0 / totalWeight(column));
        // Each form rounds at most about once for each pixel of a footprint and a few times more, each time by at most
        // half of epsilon, and all that it adds is positive. This is twice what both can be apart.
        const double cells = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
        fTolerance = 2.0 * (cells + 16.0) * std::numeric_limits<double>::epsilon();
    }

    void resize(float* dst)
    {
        resizeRows(fRows, 4 * fColumns.size(), dst,
                   [this](std::size_t j, float* row) { return resizeRow(fRows[j], row); });
    }

private:
    /// @return  whether no pixel had to be left to the plain form
    bool resizeRow(const ResizeFootprint& row, float* dst) noexcept
    {
        if (!areOrdinary(row))
        {
            averageRow(fSrc, fSums.size(), row, fColumns, dst);
            return false;
        }
        sumColumns(row);
        const double inverse = 1.0 / totalWeight(row);
        bool certain = true;
        for (std::size_t i = 0; i < fColumns.size(); ++i, dst += 4)
        {
            const ResizeFootprint& column = fColumns[i];
            const Double4 sum =
                weightedSum(fSums.data() + column.first, fSums.data() + column.last, 1, column.firstWeight,
                            lastWeight(column), [](const Double4* pixel) { return *pixel; });
            if (!storeAverages(sum * (inverse * fColumnInverses[i]), dst))
            {
                averagePixel(fSrc, fSums.size(), row, column, dst);
                certain = false;
            }
        }
        return certain;
    }

    /// Whether all of a footprint's rows are ordinary; each row is looked at once, when it first takes part.
    bool areOrdinary(const ResizeFootprint& row) noexcept
    {
        for (; fLookedAt <= row.last; ++fLookedAt)
            if (!isOrdinary(fSrc + fLookedAt * fRowComponents, fRowComponents))
                fStrangeUpTo = fLookedAt + 1;
        return fStrangeUpTo <= row.first;
    }

    /// The weighted sums of the components of each column over a footprint's rows.
    void sumColumns(const ResizeFootprint& row) noexcept
    {
        const float* first = fSrc + row.first * fRowComponents;
        const float* last = fSrc + row.last * fRowComponents;
        for (Double4& sum : fSums)
        {
            sum = weightedSum(first, last, fRowComponents, row.firstWeight, lastWeight(row), loadWide);
            first += 4;
            last += 4;
        }
    }

    /// Stores averages, nudged, rounded and clamped.
    /// @return  whether they come out the same throughout the tolerance
    [[nodiscard]] bool storeAverages(const Double4& averages, float* dst) const noexcept
    {
        const bool rg = storeAverages(averages.rg, dst);
        const bool ba = storeAverages(averages.ba, dst + 2);
        return rg && ba;
    }

    [[nodiscard]] bool storeAverages(Double2 averages, float* dst) const noexcept
    {
        averages += kResizeNudge;
        const Float2 least = clamped(averages * (1.0 - fTolerance));
        const Float2 greatest = clamped(averages * (1.0 + fTolerance));
        storeLanes(least, dst);
        const auto same = least == greatest;
        return (same[0] & same[1]) != 0;
    }

    /// Rounded to float and at most 1; not-a-number stays, and so never counts as the same.
    static Float2 clamped(Double2 averages) noexcept
    {
        const Float2 rounded = __builtin_convertvector(averages, Float2);
        return rounded > 1.0f ? Float2{1.0f, 1.0f} : rounded;
    }

    const float* fSrc;
    std::size_t fRowComponents;
    std::vector<ResizeFootprint> fRows;
    std::vector<ResizeFootprint> fColumns;
    std::vector<double> fColumnInverses;
    std::vector<Double4> fSums;   ///< one for each column
    double fTolerance;            ///< relative
    std::size_t fLookedAt = 0;    ///< how many rows have been looked at
    std::size_t fStrangeUpTo = 0; ///< all rows looked at from this one on are ordinary
};

} // namespace

void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH)
{
    FloatResizer(src, srcW, srcH, dstW, dstH).resize(dst);
}

} // namespace krPixels
