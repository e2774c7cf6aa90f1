#include <krender/pixels/PixelArray1D.h>

#include <krender/pixels/IPixelArray.h>
#include <krender/pixels/krSysPixelFormat.h>

PixelArray1D::PixelArray1D(const krSysPixelFormat& f, unsigned w) : IPixelArray(f, w, 1, 1) {}

PixelArray1D::~PixelArray1D() = default;
