#pragma once
#include <krender/Export.h>
#include <krender/spatial/IBoundingVolume.h>

/// A bounding volume whose min() and max() are its axis-aligned bounding planes.
class KRENDER_EXPORT IBoundingPlanes : public IBoundingVolume
{
protected:
    using IBoundingVolume::IBoundingVolume;
};
