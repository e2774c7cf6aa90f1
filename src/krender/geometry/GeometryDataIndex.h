#pragma once
#include <krender/core/IResource.h>
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>

#include <cstdint>
#include <memory>
#include <vector>

class GeometryData;
class IHWMemoryObject;

/// An index list: which elements of some streams form which primitives. The streams are borrowed and must live as long
/// as the list, which drops their hangers when it ends.
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

    /// Draws an id.
    /// @param count       number of indices
    /// @param data        the streams addressed; the vector is copied, the streams are borrowed
    /// @param indices     `count` entries made with new[], adopted; null for none
    /// @param rangeEnd    kept for the host; null means `count`
    /// @param rangeStart  kept for the host; null means 0
    GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count, const std::vector<const GeometryData*>& data,
                      unsigned* indices, const unsigned* rangeEnd, const unsigned* rangeStart);
    /// The short form: no streams, both ends of the range 0. Its id may be 0 once the generator has wrapped.
    GeometryDataIndex(DrawPrimitiveType primitiveType, unsigned count, unsigned* indices);
    /// Releases the list when it is owned, then drops its hanger and those of its streams.
    ~GeometryDataIndex() override;

    [[nodiscard]] std::uint32_t id() const noexcept { return fId; }
    [[nodiscard]] DrawPrimitiveType primitiveType() const noexcept { return fPrimitiveType; }
    [[nodiscard]] std::uint32_t count() const noexcept { return fCount; }
    [[nodiscard]] const unsigned* indices() const noexcept { return fIndices; }
    [[nodiscard]] std::uint32_t rangeEnd() const noexcept { return fRangeEnd; }
    [[nodiscard]] std::uint32_t rangeStart() const noexcept { return fRangeStart; }
    [[nodiscard]] const std::vector<const GeometryData*>& data() const noexcept { return fData; }
    /// Whether the list and its hanger are released with this object; true unless setOwnsIndices() says otherwise.
    [[nodiscard]] bool ownsIndices() const noexcept { return fOwnsIndices; }
    /// A copy of the list with every entry widened to 64 bits, twice as many words, in the form that
    /// GeometryDataIterator reads. A host that wants to walk this list hands the copy to a new list of the same count.
    [[nodiscard]] std::unique_ptr<unsigned[]> widenedIndices() const;

    void setPrimitiveType(DrawPrimitiveType type) noexcept { fPrimitiveType = type; }
    void setOwnsIndices(bool owns) noexcept { fOwnsIndices = owns; }
    /// Adds a stream, borrowed.
    void appendData(const GeometryData* stream) { fData.push_back(stream); }

    /// The bounds that the host has worked out, invalid until then. Like hangers they are caches, which those who see
    /// the list as const may set.
    [[nodiscard]] const AABoundingBox& boundingBox() const noexcept { return fBoundingBox; }
    [[nodiscard]] const BoundingSphere& boundingSphere() const noexcept { return fBoundingSphere; }
    void setBoundingBox(const AABoundingBox& box) const { fBoundingBox = box; }
    void setBoundingSphere(const BoundingSphere& sphere) const { fBoundingSphere = sphere; }

    /// The device copy of the list, null without one.
    [[nodiscard]] IHWMemoryObject* hanger() const noexcept { return fHanger; }
    /// Drops the old hanger as deleteHanger() does and attaches the new one, which may be null. The new one is adopted by
    /// a list that owns its indices and borrowed otherwise.
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
