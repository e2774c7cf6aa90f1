#pragma once
#include <krender/platform/Linear.h>

/// Orders points by their depth after a projective map, the most negative first: looking down -z, back to front. One
/// sort at a time in a process, as the depths are shared.
class KRENDER_EXPORT DepthSorter
{
public:
    /// Fills `order` by ascending depth; points of one depth come in any order, a NaN before or after all numbers.
    /// The depth of a point is the third component of (x, y, z, 1) * m as a float, not divided by w; for the identity, z
    /// itself. With a filter only the identity itself counts as such, without one whatever is equivalent to it, as a
    /// filtered sort has few points and can afford to be exact.
    /// @param order        set to point numbers, or with a filter to places in the filter
    /// @param count        number of points; 0 changes nothing and answers true
    /// @param positions    count x 3 floats; null answers whether count is 0
    /// @param filter       numbers of the points to be sorted, in any order; null for all points
    /// @param filterCount  length of the filter; 0 with a filter changes nothing and answers true
    /// @return             whether `order` holds the answer
    static bool sortByDepth(const krLinear::ProjMatrix& m, unsigned* order, unsigned count, const float* positions,
                            const unsigned* filter, unsigned filterCount);
    /// @param m  16 doubles, row by row
    static bool sortByDepth(const double* m, unsigned* order, unsigned count, const float* positions,
                            const unsigned* filter, unsigned filterCount);

    /// The order as a comparison for qsort, over entries of `order`; works during a sort only.
    /// @return  1 when the depth of a is the larger one, else -1, never 0
    static int depthCompareFunction(const void* a, const void* b);

    /// The depths that are being sorted; null between sorts.
    static float* fsPositionXformZ;
};
