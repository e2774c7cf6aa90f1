#include <krender/pixels/PixelArray3D.h>

PixelArray3D::PixelArray3D(const krSysPixelFormat& f, unsigned w, unsigned h, unsigned d) : IPixelArray(f, w, h, d) {}

PixelArray3D::~PixelArray3D() = default;
