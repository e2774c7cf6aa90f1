#include "krender/pixels/private/Lanes.h"
#include "krender/pixels/private/Resize.h"
#include "krender/pixels/private/ResizePlain.h"
#include "krender/pixels/private/ResizeRuns.h"
#include "krender/pixels/private/ResizeShares.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

namespace krPixels
{

namespace
{

/// Up to this size, the sums over a column, at most 255 times twice the size, are exact in float.
constexpr unsigned kLargestSize = 1U << 15;
/// With footprints of more pixels, the plain form's rounding errors might reach the margin below.
constexpr double kLargestFootprint = 1U << 22;
/// Averages, with the nudge, that are nearer than this to a level are left to the plain form. The rounding errors of both
/// forms are less than half as large. Whole averages, the most common ones near a level, are ten times as far away.
constexpr double kMargin = 1e-6;
/// Up to this total weight, sums of bytes are exact in float, and the nudge cannot lift an average to the next level.
constexpr float kLargestFloatTotal = 65793.0f;
/// Up to this total weight, averages are so far below the next level that divideDirectly is right.
constexpr float kLargestDirectTotal = 4000.0f;

/// sums = (Add: sums +) weight * the sum of N rows.
template <std::size_t N, bool Add>
void sumRows(const std::array<const unsigned char*, N>& rows, float weight, std::size_t count,
             float* __restrict sums) noexcept
{
    for (std::size_t i = 0; i < count; ++i)
    {
        std::uint16_t sum = 0;
        for (std::size_t n = 0; n < N; ++n)
            sum = static_cast<std::uint16_t>(sum + rows[n][i]);
        const float weighted = weight * static_cast<float>(sum);
        sums[i] = Add ? sums[i] + weighted : weighted;
    }
}

/// sums = the weighted sum of a footprint's outer rows.
void sumEdges(const unsigned char* first, float firstWeight, const unsigned char* last, float lastWeight,
              std::size_t count, float* __restrict sums) noexcept
{
    for (std::size_t i = 0; i < count; ++i)
        sums[i] = firstWeight * static_cast<float>(first[i]) + lastWeight * static_cast<float>(last[i]);
}

/// Divides whole numbers and truncates: dst = sums / (columnTotals * rowTotal).
/// @param inverses  1 / columnTotals
void divide(const float* sums, const float* columnTotals, const float* inverses, float rowTotal, std::size_t count,
            unsigned char* __restrict dst) noexcept
{
    // The inverse is a little too small, so the estimate is right or one too low; the remainder, which is exact, decides.
    const float inverse = (1.0f - 0x1p-21f) / rowTotal;
    for (std::size_t i = 0; i < count; ++i)
    {
        const auto estimate = static_cast<std::int32_t>(sums[i] * (inverses[i] * inverse));
        const float total = columnTotals[i] * rowTotal;
        const float remainder = sums[i] - static_cast<float>(estimate) * total;
        dst[i] = static_cast<unsigned char>(estimate + (remainder >= total ? 1 : 0));
    }
}

/// The same for total weights up to kLargestDirectTotal: half a unit of weight more keeps the quotients away from levels,
/// on either side, by more than the rounding errors.
void divideDirectly(const float* sums, const float* inverses, float rowTotal, std::size_t count,
                    unsigned char* __restrict dst) noexcept
{
    const float inverse = 1.0f / rowTotal;
    for (std::size_t i = 0; i < count; ++i)
        dst[i] = static_cast<unsigned char>(static_cast<std::int32_t>((sums[i] + 0.5f) * (inverses[i] * inverse)));
}

class Fixed8Resizer
{
public:
    Fixed8Resizer(const unsigned char* src, unsigned srcW, unsigned dstW)
        : fSrc(src),
          fColumns(resizeShares(srcW, dstW)),
          fSums(std::size_t{4} * srcW),
          fRunSums(4 * fColumns.size()),
          fPixels(4 * fColumns.size()),
          fEnlarges(fColumns.size() < dstW)
    {
        for (const ResizeShare& column : fColumns)
        {
            fTotals.insert(fTotals.end(), 4, column.total);
            fInverses.insert(fInverses.end(), 4, 1.0f / column.total);
        }
        const auto [least, greatest] = std::minmax_element(fTotals.begin(), fTotals.end());
        fLeastTotal = *least;
        fGreatestTotal = *greatest;
    }

    [[nodiscard]] const std::vector<ResizeShare>& columns() const noexcept { return fColumns; }

    /// Computes one row.
    /// @param undecided  gets the indices of the columns that are left to the plain form
    void averageRow(const ResizeShare& row, unsigned char* dst, std::vector<std::size_t>& undecided)
    {
        sumColumns(row);
        unsigned char* pixels = fEnlarges ? fPixels.data() : dst;
        if (row.total * fLeastTotal <= kLargestFloatTotal)
        {
            sumRuns();
            if (row.total * fGreatestTotal <= kLargestDirectTotal)
                divideDirectly(fRunSums.data(), fInverses.data(), row.total, fRunSums.size(), pixels);
            else
                divide(fRunSums.data(), fTotals.data(), fInverses.data(), row.total, fRunSums.size(), pixels);
        }
        if (row.total * fGreatestTotal > kLargestFloatTotal)
            averageInDouble(row, pixels, undecided);
        if (fEnlarges)
            spreadRuns(dst);
    }

private:
    [[nodiscard]] const unsigned char* row(std::size_t r) const noexcept { return fSrc + fSums.size() * r; }

    /// Sums the components of each source column over a footprint's rows.
    void sumColumns(const ResizeShare& share) noexcept
    {
        float* sums = fSums.data();
        const std::size_t count = fSums.size();
        std::size_t r = share.first;
        std::size_t end = std::size_t{share.last} + 1;
        if (end - r == 1)
            sumRows<1, false>({row(r++)}, 1.0f, count, sums);
        else if (share.uniform && end - r >= 4)
        {
            sumRows<4, false>({row(r), row(r + 1), row(r + 2), row(r + 3)}, 1.0f, count, sums);
            r += 4;
        }
        else
            sumEdges(row(r++), share.firstWeight, row(--end), share.lastWeight, count, sums);
        for (; r + 4 <= end; r += 4)
            sumRows<4, true>({row(r), row(r + 1), row(r + 2), row(r + 3)}, share.innerWeight, count, sums);
        for (; r < end; ++r)
            sumRows<1, true>({row(r)}, share.innerWeight, count, sums);
    }

    /// Sums each run of columns; the sums are exact where the total weight is at most kLargestFloatTotal.
    void sumRuns() noexcept
    {
        const float* sums = fSums.data();
        float* runSums = fRunSums.data();
        for (const ResizeShare& column : fColumns)
        {
            const float* pixel = sums + 4 * std::size_t{column.first};
            const float* last = sums + 4 * std::size_t{column.last};
            Float4 sum = loadLanes<Float4>(pixel);
            if (column.uniform)
                while (pixel != last)
                    sum += loadLanes<Float4>(pixel += 4);
            else
            {
                Float4 inner = {};
                while ((pixel += 4) != last)
                    inner += loadLanes<Float4>(pixel);
                sum =
                    sum * column.firstWeight + inner * column.innerWeight + loadLanes<Float4>(last) * column.lastWeight;
            }
            storeLanes(sum, runSums);
            runSums += 4;
        }
    }

    /// Computes the runs of columns whose total weight is too large for float.
    void averageInDouble(const ResizeShare& row, unsigned char* dst, std::vector<std::size_t>& undecided)
    {
        const float* sums = fSums.data();
        for (std::size_t i = 0; i < fColumns.size(); ++i)
        {
            const ResizeShare& column = fColumns[i];
            if (column.total * row.total <= kLargestFloatTotal)
                continue;
            const float* pixel = sums + 4 * std::size_t{column.first};
            const float* last = sums + 4 * std::size_t{column.last};
            Double4 sum = widened(loadLanes<Float4>(pixel)) * column.firstWeight;
            if (last != pixel)
            {
                Double4 inner = {};
                while ((pixel += 4) != last)
                    inner += widened(loadLanes<Float4>(pixel));
                sum += inner * column.innerWeight;
                sum += widened(loadLanes<Float4>(last)) * column.lastWeight;
            }
            const double inverse = 1.0 / (static_cast<double>(column.total) * row.total);
            Double4 average = sum * inverse;
            average += kResizeNudge;
            if (storeLevels(average, dst + 4 * i))
                undecided.push_back(i);
        }
    }

    /// Truncates averages.
    /// @return  whether one of them is within the margin of a level
    static bool storeLevels(const Double4& averages, unsigned char* dst) noexcept
    {
        // Rounded to float, an average may reach the next level, but only from within the margin.
        const Int4 levels = __builtin_convertvector(rounded(averages), Int4);
        for (int k = 0; k < 4; ++k)
            dst[k] = static_cast<unsigned char>(levels[k]);
        const Double4 whole = widened(__builtin_convertvector(levels, Float4));
        const auto isNear = [](Double2 fractions) { return (fractions < kMargin) | (fractions > 1.0 - kMargin); };
        const auto near = isNear(averages.rg - whole.rg) | isNear(averages.ba - whole.ba);
        return (near[0] | near[1]) != 0;
    }

    /// Writes each run's pixel as often as the run is long.
    void spreadRuns(unsigned char* dst) const noexcept
    {
        const unsigned char* pixel = fPixels.data();
        for (const ResizeShare& column : fColumns)
        {
            for (std::uint32_t n = 0; n < column.count; ++n, dst += 4)
                std::memcpy(dst, pixel, 4);
            pixel += 4;
        }
    }

    const unsigned char* fSrc;
    std::vector<ResizeShare> fColumns;
    std::vector<float> fSums;     ///< over the rows of a footprint, for each component of a source row
    std::vector<float> fRunSums;  ///< over the rows and columns of a footprint, for each component of a run of columns
    std::vector<float> fTotals;   ///< the columns' total weights, once for each component
    std::vector<float> fInverses; ///< 1 / fTotals
    std::vector<unsigned char> fPixels; ///< one for each run of columns
    float fLeastTotal;
    float fGreatestTotal;
    bool fEnlarges;
};

} // namespace

void resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned char* dst, unsigned dstW, unsigned dstH)
{
    const double footprint = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
    if (std::max({srcW, srcH, dstW, dstH}) > kLargestSize || footprint > kLargestFootprint)
    {
        resizePlainly(src, srcW, srcH, dst, dstW, dstH);
        return;
    }
    Fixed8Resizer resizer(src, srcW, dstW);
    resizeByRuns(src, srcW, srcH, dst, dstW, dstH, resizeShares(srcH, dstH), resizer.columns(),
                 [&](const auto& row, unsigned char* out, auto& undecided)
                 { resizer.averageRow(row, out, undecided); });
}

} // namespace krPixels
