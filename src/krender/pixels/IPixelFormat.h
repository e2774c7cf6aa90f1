#pragma once
#include <krender/Export.h>

/// The root of everything that describes pixels: drawing buffers and arrays in memory.
class KRENDER_EXPORT IPixelFormat
{
public:
    IPixelFormat() = default;
    IPixelFormat(const IPixelFormat&) = default;
    IPixelFormat& operator=(const IPixelFormat&) = default;
    virtual ~IPixelFormat();
};
