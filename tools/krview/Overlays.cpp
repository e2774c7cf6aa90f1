#include "Overlays.h"

#include "Streams.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <array>
#include <cstddef>

namespace
{

void drawAxes(DrawProcedure&, const DrawProcedureData& data)
{
    constexpr GLfloat kLength = 1.6f;
    const auto& frame = static_cast<const FrameData&>(data);
    std::array<FlatVertex, 6> lines{};
    for (std::size_t axis = 0; axis < 3; ++axis)
    {
        FlatVertex& origin = lines[2 * axis];
        FlatVertex& end = lines[2 * axis + 1];
        origin.color = {0.25f, 0.25f, 0.25f};
        origin.color[axis] = 1;
        end.color = origin.color;
        end.place[axis] = kLength;
    }
    glLineWidth(2);
    frame.painter.draw(GL_LINES, lines, frame.camera.worldToClip());
    glLineWidth(1);
}

void drawWire(DrawProcedure&, const DrawProcedureData& data)
{
    const auto& frame = static_cast<const FrameData&>(data);
    const GeometryDataIndex* edges = findList(frame.geometry, GeometryDataIndex::lines);
    const GeometryData* positions = findStream(frame.geometry, kStreamKinds[kPositions].name);
    if (!edges || !positions)
        return;
    constexpr std::array<GLfloat, 3> kColor{0.95f, 0.85f, 0.4f};
    frame.grid.forEachVisible(
        [&](const krLinear::AffineMatrix& placement) {
            frame.painter.drawEdges(*positions, *edges, kColor,
                                    krLinear::ProjMatrix(placement) * frame.camera.worldToClip());
        });
}

void add(DrawProcedureList& list, const char* name, DrawProcedure::ExecuteCallback callback)
{
    const auto procedure = Ref<DrawProcedure>::adopt(new DrawProcedure(name));
    procedure->setExecuteCallback(callback);
    list.add(procedure.get(), true);
}

} // namespace

Ref<DrawProcedureList> newOverlays()
{
    auto list = Ref<DrawProcedureList>::adopt(new DrawProcedureList);
    add(*list, kAxesProcedure, drawAxes);
    add(*list, kWireProcedure, drawWire);
    return list;
}
