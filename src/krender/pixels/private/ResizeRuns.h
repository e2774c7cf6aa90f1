#pragma once
#include "krender/pixels/private/ResizeFootprint.h"
#include "krender/pixels/private/ResizePlain.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace krPixels
{

/// Neighbouring destination cells, along one axis, with the same average: one cell in general, several where an image is
/// enlarged and they all lie within one source cell.
struct ResizeRun
{
    std::uint32_t first; ///< source cells first to last
    std::uint32_t last;
    std::uint32_t begin; ///< the first destination cell
    std::uint32_t count; ///< of destination cells
};

/// Adds the next destination cell, which averages the source cells first to last, to a run if it belongs there. Footprints
/// do not overlap, so two that have the same cells have a single one.
/// @return  whether it does
[[nodiscard]] inline bool extendRun(ResizeRun& run, std::uint32_t first, std::uint32_t last) noexcept
{
    const bool belongs = run.first == first && run.last == last;
    run.count += belongs ? 1 : 0;
    return belongs;
}

/// Fills an image run by run. Where the fast form leaves a pair of runs undecided, the plain form computes each of their
/// pixels, as its rounding differs between them.
/// @param rowRuns, columnRuns  the fast form's runs, of a class derived from ResizeRun
/// @param averageRow           resizes one row; takes the row's run, where to write, and a list to which it adds the indices
///                             of the column runs that are undecided
template <class Component, class Run, class AverageRow>
void resizeByRuns(const Component* src, unsigned srcW, unsigned srcH, Component* dst, unsigned dstW, unsigned dstH,
                  const std::vector<Run>& rowRuns, const std::vector<Run>& columnRuns, AverageRow averageRow)
{
    const auto rows = resizeFootprints(srcH, dstH);
    const auto columns = resizeFootprints(srcW, dstW);
    const std::size_t rowComponents = std::size_t{4} * dstW;
    std::vector<std::size_t> undecided;
    for (const Run& row : rowRuns)
    {
        undecided.clear();
        Component* first = dst + row.begin * rowComponents;
        averageRow(row, first, undecided);
        for (std::size_t n = 1; n < row.count; ++n)
            std::copy_n(first, rowComponents, first + n * rowComponents);
        for (const std::size_t index : undecided)
            for (std::size_t j = row.begin; j < row.begin + row.count; ++j)
                for (std::size_t i = columnRuns[index].begin; i < columnRuns[index].begin + columnRuns[index].count;
                     ++i)
                    averagePixel(src, srcW, rows[j], columns[i], dst + j * rowComponents + 4 * i);
    }
}

} // namespace krPixels
