#pragma once
#include "krender/pixels/private/ResizePlain.h"

namespace krPixels
{

/// Neighbouring destination cells, along one axis, that average the same source cells alike. Enlarged, a source cell gives
/// many destination cells that see no other.
struct ResizeRun
{
    std::uint32_t first; ///< source cells
    std::uint32_t last;
    std::uint32_t begin; ///< destination cells
    std::uint32_t count;
};

/// Whether the destination cell after a run, that sees the source cells first to last, belongs to it; then counts it in.
[[nodiscard]] inline bool extendRun(ResizeRun& run, std::uint32_t first, std::uint32_t last) noexcept
{
    const bool belongs = first == last && run.first == first && run.last == last;
    run.count += belongs ? 1 : 0;
    return belongs;
}

/// Fills an image run by run. What the fast form cannot tell for a pair of runs is done plainly for each of their pixels,
/// since the plain form's rounding differs from one to the other.
/// @param rowRuns, columnRuns  what the fast form knows of each run, derived from ResizeRun
/// @param averageRow           resizes one row: takes a row's run, where to write, and where to add the indices of the
///                             column runs that it cannot tell
template <class Component, class Run, class AverageRow>
void resizeByRuns(const Component* src, unsigned srcW, unsigned srcH, Component* dst, unsigned dstW, unsigned dstH,
                  const std::vector<Run>& rowRuns, const std::vector<Run>& columnRuns, AverageRow averageRow)
{
    const auto rows = resizeFootprints(srcH, dstH);
    const auto columns = resizeFootprints(srcW, dstW);
    const std::size_t rowComponents = std::size_t{4} * dstW;
    std::vector<std::size_t> untold;
    for (const Run& row : rowRuns)
    {
        untold.clear();
        Component* first = dst + row.begin * rowComponents;
        averageRow(row, first, untold);
        for (std::size_t n = 1; n < row.count; ++n)
            std::copy_n(first, rowComponents, first + n * rowComponents);
        for (const std::size_t index : untold)
            for (std::size_t j = row.begin; j < row.begin + row.count; ++j)
                for (std::size_t i = columnRuns[index].begin; i < columnRuns[index].begin + columnRuns[index].count;
                     ++i)
                    averagePixel(src, srcW, rows[j], columns[i], dst + j * rowComponents + 4 * i);
    }
}

} // namespace krPixels
