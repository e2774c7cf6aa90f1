#include "Lanes.h"
#include "Resize.h"
#include "ResizePlain.h"
#include "ResizeShares.h"

#include <array>

namespace krPixels
{

namespace
{

/// Sizes up to this keep sums over a column, at most 255 times twice the size, exact in float.
constexpr unsigned kLargestSize = 1U << 15;
/// Footprints of more pixels gather rounding errors in the plain form that reach the margin below.
constexpr double kLargestFootprint = 1U << 22;
/// Averages (with the nudge) as near as this to a level are left to the plain form, whose errors, like those of the fast
/// form, are less than half as large. A whole average, by far the most common one near a level, is ten times as far away.
constexpr double kMargin = 1e-6;
/// Up to this total weight, averages differ from a level by so much that float precision tells the levels apart.
constexpr double kLargestFloatTotal = 4000.0;

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

class Fixed8Resizer
{
public:
    Fixed8Resizer(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned dstW, unsigned dstH)
        : fSrc(src),
          fSrcW(srcW),
          fRows(resizeFootprints(srcH, dstH)),
          fColumns(resizeFootprints(srcW, dstW)),
          fRowShares(resizeShares(srcH, dstH)),
          fColumnShares(resizeShares(srcW, dstW)),
          fSums(std::size_t{4} * srcW),
          fLevels(std::size_t{4} * dstW)
    {
        fColumnTotal = std::max_element(fColumnShares.begin(), fColumnShares.end(),
                                        [](const auto& a, const auto& b) { return a.total < b.total; })
                           ->total;
    }

    void resize(unsigned char* dst)
    {
        resizeRows(fRows, fLevels.size(), dst, [this](std::size_t j, unsigned char* row) { return resizeRow(j, row); });
    }

private:
    /// @return  whether no pixel had to be left to the plain form
    bool resizeRow(std::size_t j, unsigned char* dst) noexcept
    {
        const ResizeShare& row = fRowShares[j];
        sumColumns(row);
        bool certain = true;
        if (row.total * fColumnTotal <= kLargestFloatTotal)
            averageInFloat(row);
        else
            certain = averageInDouble(j);
        for (std::size_t i = 0; i < fLevels.size(); ++i)
            dst[i] = static_cast<unsigned char>(fLevels[i]);
        return certain;
    }

    [[nodiscard]] const unsigned char* row(std::size_t r) const noexcept { return fSrc + 4 * fSrcW * r; }

    /// The weighted sums of the components of each column over a footprint's rows.
    void sumColumns(const ResizeShare& share) noexcept
    {
        float* sums = fSums.data();
        const std::size_t count = fSums.size();
        std::size_t r = share.first;
        std::size_t end = std::size_t{share.last} + 1;
        if (share.firstWeight == share.innerWeight && share.lastWeight == share.innerWeight && end - r >= 4)
        {
            sumRows<4, false>({row(r), row(r + 1), row(r + 2), row(r + 3)}, share.innerWeight, count, sums);
            r += 4;
        }
        else if (share.firstWeight == share.lastWeight && end - r == 2)
        {
            sumRows<2, false>({row(r), row(r + 1)}, share.firstWeight, count, sums);
            r = end;
        }
        else
        {
            sumRows<1, false>({row(r++)}, share.firstWeight, count, sums);
            if (share.last != share.first)
                sumRows<1, true>({row(--end)}, share.lastWeight, count, sums);
        }
        for (; r + 4 <= end; r += 4)
            sumRows<4, true>({row(r), row(r + 1), row(r + 2), row(r + 3)}, share.innerWeight, count, sums);
        for (; r < end; ++r)
            sumRows<1, true>({row(r)}, share.innerWeight, count, sums);
    }

    void averageInFloat(const ResizeShare& row) noexcept
    {
        std::int32_t* levels = fLevels.data();
        for (const ResizeShare& column : fColumnShares)
        {
            const float* pixel = fSums.data() + 4 * std::size_t{column.first};
            const float* last = fSums.data() + 4 * std::size_t{column.last};
            Float4 sum = loadLanes<Float4>(pixel) * column.firstWeight;
            Float4 inner = {};
            for (pixel += 4; pixel < last; pixel += 4)
                inner += loadLanes<Float4>(pixel);
            sum += inner * column.innerWeight + loadLanes<Float4>(last) * column.lastWeight;
            // Half a unit of weight keeps whole averages, which are the nearest to a level, clear of rounding.
            const Float4 average = (sum + 0.5f) * (column.inverse * row.inverse);
            storeLanes(__builtin_convertvector(average, Int4), levels);
            levels += 4;
        }
    }

    bool averageInDouble(std::size_t j) noexcept
    {
        bool certain = true;
        std::int32_t* levels = fLevels.data();
        for (std::size_t i = 0; i < fColumnShares.size(); ++i, levels += 4)
        {
            const ResizeShare& column = fColumnShares[i];
            const float* pixel = fSums.data() + 4 * std::size_t{column.first};
            const float* last = fSums.data() + 4 * std::size_t{column.last};
            Double4 sum = loadWide(pixel) * column.firstWeight;
            Double4 inner = {};
            for (pixel += 4; pixel < last; pixel += 4)
                inner += loadWide(pixel);
            sum += inner * column.innerWeight;
            sum += loadWide(last) * column.lastWeight;
            const double inverse = 1.0 / (column.total * fRowShares[j].total);
            const bool rgNear = storeLevels(sum.rg * inverse + kResizeNudge, levels);
            const bool baNear = storeLevels(sum.ba * inverse + kResizeNudge, levels + 2);
            if (rgNear || baNear)
            {
                std::array<unsigned char, 4> plain;
                averagePixel(fSrc, fSrcW, fRows[j], fColumns[i], plain.data());
                std::copy(plain.begin(), plain.end(), levels);
                certain = false;
            }
        }
        return certain;
    }

    /// Truncates two averages.
    /// @return  whether one of them is too near to a level
    static bool storeLevels(Double2 averages, std::int32_t* levels) noexcept
    {
        const Int2 truncated = __builtin_convertvector(averages, Int2);
        storeLanes(truncated, levels);
        const Double2 fractions = averages - __builtin_convertvector(truncated, Double2);
        const auto near = (fractions < kMargin) | (fractions > 1.0 - kMargin);
        return (near[0] | near[1]) != 0;
    }

    const unsigned char* fSrc;
    std::size_t fSrcW;
    std::vector<ResizeFootprint> fRows;
    std::vector<ResizeFootprint> fColumns;
    std::vector<ResizeShare> fRowShares;
    std::vector<ResizeShare> fColumnShares;
    double fColumnTotal; ///< the largest of the columns' totals
    std::vector<float> fSums;
    std::vector<std::int32_t> fLevels;
};

} // namespace

void resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned char* dst, unsigned dstW, unsigned dstH)
{
    const double footprint = (static_cast<double>(srcW) / dstW + 2.0) * (static_cast<double>(srcH) / dstH + 2.0);
    if (std::max({srcW, srcH, dstW, dstH}) <= kLargestSize && footprint <= kLargestFootprint)
        Fixed8Resizer(src, srcW, srcH, dstW, dstH).resize(dst);
    else
        resizePlainly(src, srcW, srcH, dst, dstW, dstH);
}

} // namespace krPixels
