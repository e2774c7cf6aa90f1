#pragma once
#include <krender/core/IHWMemoryObject.h>

#include <epoxy/gl.h>

#include <cstdint>

class GeometryData;
class GeometryDataIndex;

/// The device copy of a stream or an index list, which owns it as its hanger. IHWMemoryObject::fsMemoryUsage counts the
/// bytes of all of them.
class DeviceBuffer : public IHWMemoryObject
{
public:
    /// @param target  GL_ARRAY_BUFFER for a stream, GL_ELEMENT_ARRAY_BUFFER for a list
    /// @param size    of the data, bytes
    DeviceBuffer(GLenum target, const void* bytes, std::uint32_t size);
    ~DeviceBuffer() override;

    /// The copy of a stream or list, which must have one; borrowed.
    [[nodiscard]] static const DeviceBuffer& of(const GeometryData& stream);
    [[nodiscard]] static const DeviceBuffer& of(const GeometryDataIndex& list);

    void bind() const { glBindBuffer(fTarget, fId); }
    /// Bytes.
    [[nodiscard]] std::uint32_t size() const noexcept { return fSize; }

private:
    GLenum fTarget;
    GLuint fId = 0;
    std::uint32_t fSize;
};
