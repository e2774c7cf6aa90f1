#include <krender/geometry/DepthSorter.h>

#include "krender/geometry/private/DepthOrder.h"
#include "krender/geometry/private/ScratchArray.h"

#include <krender/platform/Linear.h>

#include <cstddef>

using krLinear::ProjMatrix;

namespace
{

/// The depth array of the class, for as long as one sort runs.
class SharedDepths
{
public:
    explicit SharedDepths(unsigned count) : fDepths(count) { DepthSorter::fsPositionXformZ = fDepths.get(); }
    SharedDepths(const SharedDepths&) = delete;
    SharedDepths& operator=(const SharedDepths&) = delete;
    ~SharedDepths() { DepthSorter::fsPositionXformZ = nullptr; }

private:
    ScratchArray<float> fDepths;
};

/// Sets each depth to depthOf(point).
template <class DepthOf>
void fillDepths(float* depths, unsigned count, const float* positions, const unsigned* filter, DepthOf depthOf)
{
    if (filter)
        for (std::size_t i = 0; i < count; ++i)
            depths[i] = depthOf(positions + std::size_t{3} * filter[i]);
    else
        for (std::size_t i = 0; i < count; ++i)
            depths[i] = depthOf(positions + 3 * i);
}

} // namespace

constinit float* DepthSorter::fsPositionXformZ = nullptr;

bool DepthSorter::sortByDepth(const ProjMatrix& m, unsigned* order, unsigned count, const float* positions,
                              const unsigned* filter, unsigned filterCount)
{
    if (count == 0)
        return true;
    if (!positions && order)
        return false;
    if (filter && filterCount == 0)
        return true;
    if (!positions || !order)
        return false;

    const unsigned sorted = filter ? filterCount : count;
    const SharedDepths depths(sorted);
    const ProjMatrix identity(1.0);
    if (filter ? m == identity : equivalent(identity, m, krLinear::epsilonTol))
        fillDepths(fsPositionXformZ, sorted, positions, filter, [](const float* p) { return p[2]; });
    else
        // Only the third component of m.preMult(), in the same order of operations.
        fillDepths(fsPositionXformZ, sorted, positions, filter,
                   [x = m(0, 2), y = m(1, 2), z = m(2, 2), w = m(3, 2)](const float* p)
                   { return static_cast<float>(p[0] * x + p[1] * y + p[2] * z + w); });
    orderByDepth(fsPositionXformZ, sorted, order);
    return true;
}

bool DepthSorter::sortByDepth(const double* m, unsigned* order, unsigned count, const float* positions,
                              const unsigned* filter, unsigned filterCount)
{
    return sortByDepth(ProjMatrix(m), order, count, positions, filter, filterCount);
}

int DepthSorter::depthCompareFunction(const void* a, const void* b)
{
    const float* depths = fsPositionXformZ;
    return depths[*static_cast<const unsigned*>(a)] > depths[*static_cast<const unsigned*>(b)] ? 1 : -1;
}
