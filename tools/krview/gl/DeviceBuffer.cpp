#include "DeviceBuffer.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>

DeviceBuffer::DeviceBuffer(GLenum target, const void* bytes, std::uint32_t size) : fTarget(target), fSize(size)
{
    glGenBuffers(1, &fId);
    bind();
    glBufferData(fTarget, size, bytes, GL_STATIC_DRAW);
    glBindBuffer(fTarget, 0);
    fsMemoryUsage += fSize;
}

DeviceBuffer::~DeviceBuffer()
{
    glDeleteBuffers(1, &fId);
    fsMemoryUsage -= fSize;
}

// The casts hold because krview hangs nothing else on streams and lists.

const DeviceBuffer& DeviceBuffer::of(const GeometryData& stream)
{
    return static_cast<const DeviceBuffer&>(*stream.hanger());
}

const DeviceBuffer& DeviceBuffer::of(const GeometryDataIndex& list)
{
    return static_cast<const DeviceBuffer&>(*list.hanger());
}
