#pragma once
#include <krender/core/IHWMemoryObject.h>

#include <epoxy/gl.h>

class GeometryData;
class GeometryDataIndex;

/// The copy of a stream or an index list in the graphics card: what hangs on them. All of them together are counted in
/// IHWMemoryObject::fsMemoryUsage.
class DeviceBuffer : public IHWMemoryObject
{
public:
    /// @param target  what the buffer is for: GL_ARRAY_BUFFER or GL_ELEMENT_ARRAY_BUFFER
    DeviceBuffer(GLenum target, const void* bytes, std::uint32_t size);
    ~DeviceBuffer() override;

    /// The copies that hang on a stream and on an index list; both are there.
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
