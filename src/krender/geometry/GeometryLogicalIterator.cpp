#include <krender/geometry/GeometryLogicalIterator.h>

#include <krender/geometry/GeometryLogicalGroup.h>

#include <vector>

void GeometryLogicalIterator::reset(const GeometryLogicalGroup* group) noexcept
{
    fPosition = 0;
    fCount = group ? group->indices().size() : 0;
    fGroup = group;
}

void GeometryLogicalIterator::next() noexcept
{
    if (fPosition < fCount)
        ++fPosition;
}

const GeometryDataIndex* GeometryLogicalIterator::dataIndexPointer() const noexcept
{
    return fGroup->indices()[fPosition];
}
