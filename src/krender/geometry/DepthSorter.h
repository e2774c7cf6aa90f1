#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>

/// Orders points by their depth after a projective transform, the most negative first: looking down -z, back to front.
/// Only one sort may run at a time in a process, because the depths are a static member.
class KRENDER_EXPORT DepthSorter
{
public:
    /// Fills `order` by ascending depth. Points of equal depth come in any order; a NaN comes before or after all numbers.
    /// The depth of a point is the third component of (x, y, z, 1) * m as a float, not divided by w; when m is the
    /// identity it is z. Deliberate: without a filter, a matrix within krLinear::epsilonTol of the identity counts as the
    /// identity; with a filter, only the exact one does.
    /// @param order        set to point numbers or, with a filter, to places in the filter: `count` entries, or
    ///                     `filterCount` with a filter
    /// @param count        number of points
    /// @param positions    count x 3 floats
    /// @param filter       numbers of the points to sort, each below `count`, in any order; null for all points
    /// @param filterCount  length of the filter
    /// @return             true when `order` is filled. Where nothing is done, the first of these decides: no points
    ///                     true, null `positions` beside an `order` false, an empty filter true, null `positions` or
    ///                     `order` false.
    /// @throws std::bad_alloc  when there is no memory for the sort
    static bool sortByDepth(const krLinear::ProjMatrix& m, unsigned* order, unsigned count, const float* positions,
                            const unsigned* filter, unsigned filterCount);
    /// As above.
    /// @param m  16 doubles, row-major
    static bool sortByDepth(const double* m, unsigned* order, unsigned count, const float* positions,
                            const unsigned* filter, unsigned filterCount);

    /// Compares two entries of `order` for qsort; fsPositionXformZ must be set.
    /// @return  1 when the depth of a is greater, else -1. Deliberate: never 0, so equal depths have no order.
    static int depthCompareFunction(const void* a, const void* b);

    /// The depths of the points being sorted, by entry of `order`; null between sorts.
    static float* fsPositionXformZ;
};
