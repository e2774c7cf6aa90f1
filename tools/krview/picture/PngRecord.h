#pragma once
#include <png.h>

/// Owns the control record of libpng.
class PngRecord
{
public:
    PngRecord() { fImage.version = PNG_IMAGE_VERSION; }
    PngRecord(const PngRecord&) = delete;
    PngRecord& operator=(const PngRecord&) = delete;
    ~PngRecord() { png_image_free(&fImage); }

    png_image* operator&() noexcept { return &fImage; }
    png_image* operator->() noexcept { return &fImage; }

private:
    png_image fImage{};
};
