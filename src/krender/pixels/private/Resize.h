#pragma once
#include <memory>
#include <new>

namespace krPixels
{

/// Resizes an RGBA image with an area-weighted box filter; no size may be 0. Throws std::bad_alloc when there is no memory
/// for intermediate results.
void resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned char* dst, unsigned dstW, unsigned dstH);
void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH);

/// Resizes floats with a choice of registers; both give the same bits.
/// @param wide  whether to use registers of four doubles, which the processor must have, or of two
void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH, bool wide);

/// A resized copy in storage from the format's allocate.
/// @return  null when src is null, when a size is 0, when the size does not change, and when there is no memory
template <class Component, class Format>
[[nodiscard]] Component* resized(const Format& format, const Component* src, unsigned srcW, unsigned srcH,
                                 unsigned dstW, unsigned dstH)
try
{
    if (!src || srcW == 0 || srcH == 0 || dstW == 0 || dstH == 0 || (srcW == dstW && srcH == dstH))
        return nullptr;
    const auto release = [&format](Component* pixels) { format.deallocate(pixels); };
    std::unique_ptr<Component, decltype(release)> pixels(static_cast<Component*>(format.allocate(dstW, dstH, 1)),
                                                         release);
    if (pixels)
        resize(src, srcW, srcH, pixels.get(), dstW, dstH);
    return pixels.release();
}
catch (const std::bad_alloc&)
{
    return nullptr;
}

} // namespace krPixels
