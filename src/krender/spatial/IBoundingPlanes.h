#pragma once
#include <krender/spatial/IBoundingVolume.h>

/// A volume that can stand in for its axis-aligned bounding planes, min() and max().
class KRENDER_EXPORT IBoundingPlanes : public IBoundingVolume
{
protected:
    using IBoundingVolume::IBoundingVolume;
};
