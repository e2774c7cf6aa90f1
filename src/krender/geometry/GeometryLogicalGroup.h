#pragma once
#include <krender/Export.h>
#include <krender/core/RefVector.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryMonitorRegistry.h>

#include <vector>

class GeometryCustomData;
class GeometryDataIndex;

/// The streams, index lists and attachments that are drawn together. A group adopts a reference that the caller holds on
/// each of them, so a caller who goes on using an object calls ref() first. Null entries are kept and skipped.
class KRENDER_EXPORT GeometryLogicalGroup
{
public:
    /// Makes an empty group.
    /// @param name  borrowed: the text outlives the group; null for an unnamed group
    explicit GeometryLogicalGroup(const char* name) noexcept;
    /// Copies the vectors and adopts a reference on each object.
    GeometryLogicalGroup(const char* name, const std::vector<const GeometryData*>& data,
                         const std::vector<const GeometryDataIndex*>& indices);
    GeometryLogicalGroup(const GeometryLogicalGroup&) = delete;
    GeometryLogicalGroup& operator=(const GeometryLogicalGroup&) = delete;
    /// As reset().
    ~GeometryLogicalGroup();

    [[nodiscard]] const char* name() const noexcept { return fName; }
    [[nodiscard]] const std::vector<const GeometryData*>& data() const noexcept { return fData.pointers(); }
    [[nodiscard]] const std::vector<const GeometryDataIndex*>& indices() const noexcept { return fIndices.pointers(); }
    [[nodiscard]] const std::vector<GeometryCustomData*>& customData() const noexcept { return fCustomData.pointers(); }
    [[nodiscard]] GeometryMonitorRegistry& monitorRegistry() noexcept { return fMonitorRegistry; }
    [[nodiscard]] const GeometryMonitorRegistry& monitorRegistry() const noexcept { return fMonitorRegistry; }

    /// The first stream of this type, set and flag; null if none. Borrowed.
    [[nodiscard]] const GeometryData* geometryDataPtr(GeometryData::DataType type, int setIndex,
                                                      bool secondary) const noexcept;
    /// The first stream of this type, stream name and flag; a null name matches any. Null if none. Borrowed.
    [[nodiscard]] const GeometryData* geometryDataPtr(GeometryData::DataType type, const char* name,
                                                      bool secondary) const noexcept;
    /// The first attachment of this name; null if none, and for a null name. Borrowed.
    [[nodiscard]] GeometryCustomData* customData(const char* name) const;

    /// Appends lists and streams and adopts them. What is in the group already may be appended once more, with one more
    /// reference on each.
    void appendData(const std::vector<const GeometryData*>& data, const std::vector<const GeometryDataIndex*>& indices);
    /// Appends a stream and adopts it. Deliberate: it also becomes one of the streams of the group's first index list, if
    /// there is one, and of no other list.
    void appendData(const GeometryData* data);
    /// Appends an attachment and adopts it.
    void appendData(GeometryCustomData* data);

    /// Drops the device copies of the streams, of the index lists, or of both.
    void deleteHangers(bool dataHangers, bool indexHangers) const;
    /// Empties the group: drops the device copies, gives up the references, and forgets the monitors, to which all
    /// streams are dirty from then on.
    void reset();

private:
    const char* fName;
    RefVector<const GeometryData> fData;
    RefVector<const GeometryDataIndex> fIndices;
    RefVector<GeometryCustomData> fCustomData;
    GeometryMonitorRegistry fMonitorRegistry;
};
