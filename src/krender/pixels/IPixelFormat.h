#pragma once
#include <krender/Export.h>

/// The base of the formats of drawing buffers and of pixels in memory.
class KRENDER_EXPORT IPixelFormat
{
public:
    IPixelFormat() = default;
    IPixelFormat(const IPixelFormat&) = default;
    IPixelFormat& operator=(const IPixelFormat&) = default;
    virtual ~IPixelFormat();
};
