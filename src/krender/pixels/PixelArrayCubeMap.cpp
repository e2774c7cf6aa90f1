#include <krender/pixels/PixelArrayCubeMap.h>

#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

PixelArrayCubeMap::PixelArrayCubeMap(const krSysPixelFormat& f, unsigned w, unsigned h) : IPixelArray(f, w, h, 6) {}

PixelArrayCubeMap::~PixelArrayCubeMap() = default;
