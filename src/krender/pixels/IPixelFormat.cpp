#include <krender/pixels/IPixelFormat.h>

IPixelFormat::~IPixelFormat() = default;
