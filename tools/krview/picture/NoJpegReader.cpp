#include "PictureReaders.h"

Ref<PixelArray2D> decodeJpeg(std::string_view)
{
    throw PictureError("this krview was built without libjpeg-turbo, which reads JPEG");
}
