#pragma once
#include "krender/pixels/private/ResizeRuns.h"

#include <cstddef>
#include <vector>

namespace krPixels
{

/// A run with the weights of the plain form, except that a single cell has a weight of 1.
struct FloatRun : ResizeRun
{
    double firstWeight;
    double lastWeight; ///< 0 when there is only one cell
    double inverse;    ///< 1 / the sum of the weights
    bool touchesNext;  ///< whether the plain form also adds the cell after the last one, with a weight of 0
};

/// The runs of columns of a resize, and their weighted sums over the rows of one footprint.
struct FloatColumns
{
    std::vector<FloatRun> runs;
    std::vector<double> sums; ///< four components for each run
    std::size_t srcW;         ///< pixels in a source row
    double tolerance;         ///< the largest relative difference between averages of the fast and the plain form
};

/// The inner loops of a resize, for one kind of registers.
struct FloatRowSteps
{
    /// Adds a source row, times a weight, to the sums.
    /// @return  whether the components of the row are finite and not negative, so that the tolerance holds
    bool (*addRow)(FloatColumns& columns, const float* row, double weight);

    /// Stores the average of each run of columns in each of the run's pixels.
    /// @param rowInverse  1 / the sum of the rows' weights
    /// @param undecided   gets the indices of the runs whose averages round to different floats within the tolerance
    void (*storeAverages)(const FloatColumns& columns, double rowInverse, float* dst,
                          std::vector<std::size_t>& undecided);
};

/// Whether the processor has registers for four doubles.
[[nodiscard]] bool hasWideRegisters() noexcept;

/// @param wide  whether to use registers of four doubles, which the processor must have, or of two
[[nodiscard]] FloatRowSteps floatRowSteps(bool wide) noexcept;

} // namespace krPixels
