#pragma once
#include "krender/pixels/private/ResizeRuns.h"

namespace krPixels
{

/// A run with its weights as the plain form has them, save that a cell that stands alone counts in full.
struct FloatRun : ResizeRun
{
    double firstWeight;
    double lastWeight; ///< 0 when the first cell is the only one
    double inverse;    ///< 1 / the sum of the weights
    bool touchesNext;  ///< whether the plain form counts the cell after the last one, with a weight of 0
};

/// The columns of a resize, and their weighted sums over the rows of one footprint.
struct FloatColumns
{
    std::vector<FloatRun> runs;
    std::vector<double> sums; ///< four components for each run
    std::size_t srcW;
    double tolerance; ///< relative: averages of the fast and of the plain form are never further apart
};

/// What a resize does row by row, for one kind of registers.
struct FloatRowSteps
{
    /// Adds a source row, times a weight, to the sums.
    /// @return  whether its components are finite and none is negative, so that sums lose nothing by cancellation
    bool (*addRow)(FloatColumns& columns, const float* row, double weight);

    /// Stores the average of each run of columns as often as the run is long.
    /// @param rowInverse  1 / the sum of the rows' weights
    /// @param untold      gets the indices of the runs whose averages are too near to where rounding turns
    void (*storeAverages)(const FloatColumns& columns, double rowInverse, float* dst, std::vector<std::size_t>& untold);
};

/// Whether the processor has registers for four doubles.
[[nodiscard]] bool hasWideRegisters() noexcept;

/// @param wide  for registers of four doubles, which the processor must have, and not of two
[[nodiscard]] FloatRowSteps floatRowSteps(bool wide) noexcept;

} // namespace krPixels
