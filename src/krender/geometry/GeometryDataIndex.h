#pragma once
#include <krender/Export.h>
#include <krender/core/IResource.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>

#include <cstdint>
#include <memory>
#include <vector>

class GeometryData;
class IHWMemoryObject;

/// An index list: which elements of some streams form which primitives. The streams are borrowed and must outlive the
/// list.
class KRENDER_EXPORT GeometryDataIndex : public IResource
{
public:
    /// How the indices are assembled.
    enum DrawPrimitiveType : std::int32_t
    {
        points = 1,
        lines = 2,
        lineLoop = 3,
        lineStrip = 4,
        triangles = 5,
        triangleStrip = 6,
        triangleFan = 7,
        quads = 8,
        quadStrip = 9,
        polygon = 10,
    };

    /// Makes a list without a hanger; its id is the next one of IResource::fsUniqueIDGenerator.
    /// @param count       number of indices
    /// @param data        the streams that the indices address; the vector is copied, the streams are borrowed
    /// @param indices     `count` entries made with new[], adopted; null for none, whatever `count` is
    /// @param rangeEnd    kept for the host; null means `count`
    /// @param rangeStart  kept for the host; null means 0
    GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count, const std::vector<const GeometryData*>& data,
                      unsigned* indices, const unsigned* rangeEnd, const unsigned* rangeStart);
    /// As above, without streams. Deliberate: both ends of the range are 0, and the id is 0 when the generator has just
    /// wrapped.
    GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count, unsigned* indices);
    /// Releases the indices when they are owned, then drops the hanger. Deliberate: the hangers of the streams are deleted
    /// too, although the streams are borrowed.
    ~GeometryDataIndex() override;

    [[nodiscard]] std::uint32_t id() const noexcept { return fId; }
    [[nodiscard]] DrawPrimitiveType primitiveType() const noexcept { return fPrimitiveType; }
    [[nodiscard]] std::uint32_t count() const noexcept { return fCount; }
    /// count() entries, null without any.
    [[nodiscard]] const unsigned* indices() const noexcept { return fIndices; }
    [[nodiscard]] std::uint32_t rangeEnd() const noexcept { return fRangeEnd; }
    [[nodiscard]] std::uint32_t rangeStart() const noexcept { return fRangeStart; }
    [[nodiscard]] const std::vector<const GeometryData*>& data() const noexcept { return fData; }
    /// Whether the indices and the hanger are released with this object; true until setOwnsIndices(false).
    [[nodiscard]] bool ownsIndices() const noexcept { return fOwnsIndices; }
    /// A copy of the indices with every entry widened to 64 bits, as GeometryDataIterator reads them: 2 x count() words.
    /// To walk this list, make another one of the copy, with the same count and streams.
    /// @return  null when the list has no indices, whatever its count
    [[nodiscard]] std::unique_ptr<unsigned[]> widenedIndices() const;

    void setPrimitiveType(DrawPrimitiveType type) noexcept { fPrimitiveType = type; }
    void setOwnsIndices(bool owns) noexcept { fOwnsIndices = owns; }
    /// Adds a stream, borrowed.
    void appendData(const GeometryData* stream) { fData.push_back(stream); }

    /// Bounds that the host has computed; invalid until then. They are caches, so they can be set through a const list.
    [[nodiscard]] const AABoundingBox& boundingBox() const noexcept { return fBoundingBox; }
    [[nodiscard]] const BoundingSphere& boundingSphere() const noexcept { return fBoundingSphere; }
    void setBoundingBox(const AABoundingBox& box) const { fBoundingBox = box; }
    void setBoundingSphere(const BoundingSphere& sphere) const { fBoundingSphere = sphere; }

    /// The device copy of the list, null without one.
    [[nodiscard]] IHWMemoryObject* hanger() const noexcept { return fHanger; }
    /// Drops the old hanger as deleteHanger() does and attaches the new one, which may be null. A list that owns its
    /// indices adopts it, any other list borrows it. Setting the one that is held does nothing.
    void setHanger(IHWMemoryObject* hanger) const;
    /// Deletes the hanger when the indices are owned; detaches it in any case.
    void deleteHanger() const;
    /// Deletes the hangers of the streams.
    void deleteDataHangers() const;

private:
    std::uint32_t fId;
    DrawPrimitiveType fPrimitiveType;
    mutable AABoundingBox fBoundingBox;
    mutable BoundingSphere fBoundingSphere;
    std::uint32_t fCount;
    unsigned* fIndices;
    mutable IHWMemoryObject* fHanger = nullptr;
    bool fOwnsIndices = true;
    std::uint32_t fRangeEnd;
    std::uint32_t fRangeStart;
    std::vector<const GeometryData*> fData;
};
