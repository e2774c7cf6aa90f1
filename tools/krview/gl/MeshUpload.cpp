#include "MeshUpload.h"

#include "DeviceBuffer.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/geometry/GeometryLogicalIterator.h>

#include <cstddef>
#include <memory>

void MeshUpload::update(GeometryLogicalGroup& group)
{
    const auto upload = [this](const auto& owner, GLenum target, const void* bytes, std::size_t size)
    {
        auto buffer = std::make_unique<DeviceBuffer>(target, bytes, static_cast<std::uint32_t>(size));
        ++fUploads;
        fBytes += buffer->size();
        owner.setHanger(buffer.release());
    };

    // The monitor takes the first stream made after markClean() for clean, so streams without a copy count as dirty too.
    for (const GeometryData* stream : group.data())
        if (!stream->hanger() || fMonitor.isDirty(*stream, group))
            upload(*stream, GL_ARRAY_BUFFER, stream->data(),
                   std::size_t{stream->count()} * stream->elementSize() *
                       GeometryData::elementTypeSize(stream->elementType()));
    for (GeometryLogicalIterator lists(&group); !lists.isDone(); lists.next())
        if (const GeometryDataIndex& list = *lists.dataIndexPointer(); !list.hanger())
            upload(list, GL_ELEMENT_ARRAY_BUFFER, list.indices(), std::size_t{list.count()} * sizeof *list.indices());
    fMonitor.markClean(group);
}
