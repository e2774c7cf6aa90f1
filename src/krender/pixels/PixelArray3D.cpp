#include <krender/pixels/PixelArray3D.h>

#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

PixelArray3D::PixelArray3D(const krSysPixelFormat& f, unsigned w, unsigned h, unsigned d) : IPixelArray(f, w, h, d) {}

PixelArray3D::~PixelArray3D() = default;
