#pragma once
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryMonitorRegistry.h>

#include <vector>

class GeometryCustomData;
class GeometryDataIndex;

/// The streams, index lists and attachments that are drawn together. A group adopts the caller's reference on each: it
/// takes none of its own and gives one up in reset(), so a caller who goes on using an object calls ref() first.
class KRENDER_EXPORT GeometryLogicalGroup
{
public:
    /// @param name  borrowed: the text outlives the group; null for an unnamed group
    explicit GeometryLogicalGroup(const char* name) noexcept : fName(name) {}
    /// The vectors are copied, the references that they hold adopted.
    GeometryLogicalGroup(const char* name, const std::vector<const GeometryData*>& data,
                         const std::vector<const GeometryDataIndex*>& indices);
    GeometryLogicalGroup(const GeometryLogicalGroup&) = delete;
    GeometryLogicalGroup& operator=(const GeometryLogicalGroup&) = delete;
    ~GeometryLogicalGroup() { reset(); }

    [[nodiscard]] const char* name() const noexcept { return fName; }
    [[nodiscard]] const std::vector<const GeometryData*>& data() const noexcept { return fData; }
    [[nodiscard]] const std::vector<const GeometryDataIndex*>& indices() const noexcept { return fIndices; }
    [[nodiscard]] const std::vector<GeometryCustomData*>& customData() const noexcept { return fCustomData; }
    [[nodiscard]] GeometryMonitorRegistry& monitorRegistry() noexcept { return fMonitorRegistry; }
    [[nodiscard]] const GeometryMonitorRegistry& monitorRegistry() const noexcept { return fMonitorRegistry; }

    /// The first stream of this type, set and flag; null if none. Borrowed.
    [[nodiscard]] const GeometryData* geometryDataPtr(GeometryData::DataType type, int setIndex,
                                                      bool secondary) const noexcept;
    /// The first stream of this type, stream name and flag; a null name matches any. Null if none. Borrowed.
    [[nodiscard]] const GeometryData* geometryDataPtr(GeometryData::DataType type, const char* name,
                                                      bool secondary) const noexcept;
    /// The first attachment of this name; null if none. Borrowed.
    [[nodiscard]] GeometryCustomData* customData(const char* name) const;

    /// Appends the lists and the streams, and adopts them; their contents stay as they are.
    void appendData(const std::vector<const GeometryData*>& data, const std::vector<const GeometryDataIndex*>& indices);
    /// Adopts a stream. It also becomes one of the streams of the group's first index list, if there is one.
    void appendData(const GeometryData* data);
    /// Adopts an attachment.
    void appendData(GeometryCustomData* data);

    /// Drops the device copies of the index lists, of the streams, or of both.
    void deleteHangers(bool dataHangers, bool indexHangers) const;
    /// Empties the group: drops the device copies, gives up the references and forgets the monitors, which will find
    /// everything dirty.
    void reset();

private:
    const char* fName;
    std::vector<const GeometryData*> fData;
    std::vector<const GeometryDataIndex*> fIndices;
    std::vector<GeometryCustomData*> fCustomData;
    GeometryMonitorRegistry fMonitorRegistry;
};
