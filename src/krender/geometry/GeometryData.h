#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>

#include <cstdint>

class IHWMemoryObject;

/// A stream: one typed array of per-vertex values. Lookups use its own name, streamName(); the resource's name() is left
/// to the host.
class KRENDER_EXPORT GeometryData : public IResource
{
public:
    /// What the values mean. Hosts may use further values.
    enum DataType : std::int32_t
    {
        vertex = 1, ///< positions
        normal = 2,
        textureCoord = 3, ///< setIndex is the texture-coordinate set
        color = 4,
        weight = 5,
        tangent = 7, ///< setIndex is the texture-coordinate set that the tangents belong to
        binormal = 8,
        tangentSpaceCorrection = 9, ///< marks a correction for the texture-coordinate set setIndex
        alternateNormal = 14,       ///< a second choice of normals
        colorPerVertexMask = 15,    ///< masks the vertices of the colour set setIndex
        userData = 16,              ///< found by its name
    };

    /// The scalar type of one component.
    enum ElementType : std::int32_t
    {
        opaque = 0, ///< bytes that the stream never releases, even when it owns them: deliberate
        float32 = 1,
        float64 = 2,
        int8 = 3,
        uint8 = 4,
        int16 = 5,
        uint16 = 6,
        int32 = 7,
        uint32 = 8,
    };

    /// The number of components of one element: 3 for a position, 4 for an RGBA colour.
    using ElementSize = std::uint32_t;

    /// Makes a stream without a hanger; its id is the next one of IResource::fsUniqueIDGenerator.
    /// @param name       copied; null gives the empty name
    /// @param count      number of elements
    /// @param data       count x elementSize components, or null. Adopted when `ownsData` is set, else borrowed; an
    ///                   adopted array was made with new[] as an array of the element type.
    /// @param secondary  a second selector that lookups compare besides type and set
    GeometryData(const char* name, DataType dataType, ElementType elementType, ElementSize elementSize, unsigned count,
                 void* data, bool ownsData, bool secondary);
    /// Deletes the hanger; releases the array when it is owned and its element type is not opaque.
    ~GeometryData() override;

    /// The size of one component in bytes, 1 for opaque. The type must be one of those above: it is not checked.
    [[nodiscard]] static unsigned elementTypeSize(ElementType type) noexcept;

    /// Never null.
    [[nodiscard]] const char* streamName() const noexcept { return fStreamName; }
    [[nodiscard]] std::uint32_t id() const noexcept { return fId; }
    [[nodiscard]] DataType dataType() const noexcept { return fDataType; }
    [[nodiscard]] ElementType elementType() const noexcept { return fElementType; }
    [[nodiscard]] ElementSize elementSize() const noexcept { return fElementSize; }
    [[nodiscard]] unsigned count() const noexcept { return fCount; }
    /// The array, null without one. Whoever holds the stream may write to it.
    [[nodiscard]] void* data() const noexcept { return fData; }
    [[nodiscard]] bool ownsData() const noexcept { return fOwnsData; }
    [[nodiscard]] bool secondary() const noexcept { return fSecondary; }

    /// The device copy, null without one. It is a cache, so it can be set and dropped through a const stream.
    [[nodiscard]] IHWMemoryObject* hanger() const noexcept { return fHanger; }
    /// Deletes the old hanger and adopts the new one, which may be null. Setting the one that is held does nothing.
    void setHanger(IHWMemoryObject* hanger) const;
    /// Deletes the hanger, if any. A stream always owns its hanger.
    void deleteHanger() const;

    /// Tells apart streams of one data type: the texture-coordinate set, the colour set, the number of a mask. 0 at first.
    int setIndex = 0;

private:
    char* fStreamName; // from strdup
    std::uint32_t fId;
    DataType fDataType;
    ElementType fElementType;
    ElementSize fElementSize;
    unsigned fCount;
    void* fData;
    mutable IHWMemoryObject* fHanger = nullptr;
    bool fOwnsData;
    bool fSecondary;
};
