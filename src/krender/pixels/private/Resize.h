#pragma once
#include <memory>

namespace krPixels
{

/// Resizes an RGBA image by an area-weighted box filter; no size is 0.
void resize(const unsigned char* src, unsigned srcW, unsigned srcH, unsigned char* dst, unsigned dstW, unsigned dstH);
void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH);

/// The resize of floats with the registers chosen; both kinds give the same bits.
/// @param wide  for registers of four doubles, which the processor must have, and not of two
void resize(const float* src, unsigned srcW, unsigned srcH, float* dst, unsigned dstW, unsigned dstH, bool wide);

/// A resized copy in storage from the format's allocate; null when src is null, when there is no storage, when a size is
/// 0 and when the size does not change.
template <class Component, class Format>
[[nodiscard]] Component* resized(const Format& format, const Component* src, unsigned srcW, unsigned srcH,
                                 unsigned dstW, unsigned dstH)
{
    if (src == nullptr || srcW == 0 || srcH == 0 || dstW == 0 || dstH == 0 || (srcW == dstW && srcH == dstH))
        return nullptr;
    const auto release = [&format](Component* pixels) { format.deallocate(pixels); };
    std::unique_ptr<Component, decltype(release)> pixels(static_cast<Component*>(format.allocate(dstW, dstH, 1)),
                                                         release);
    if (pixels)
        resize(src, srcW, srcH, pixels.get(), dstW, dstH);
    return pixels.release();
}

} // namespace krPixels
