#include <krender/pixels/IBuffer.h>

IBuffer::~IBuffer() = default;
