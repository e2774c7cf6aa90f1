#include "Overlays.h"

#include <krview/mesh/Streams.h>

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <array>
#include <cstddef>

namespace
{

void drawAxes(DrawProcedure&, const DrawProcedureData& data)
{
    const auto& frame = static_cast<const FrameData&>(data);
    glLineWidth(2);
    frame.painter.draw(GL_LINES, axisLines(), frame.camera.worldToClip());
    glLineWidth(1);
}

void drawWire(DrawProcedure&, const DrawProcedureData& data)
{
    const auto& frame = static_cast<const FrameData&>(data);
    for (std::size_t i = 0; i < frame.objects.size(); ++i)
        for (std::size_t part = 0; part < frame.objects[i].surfaces.size(); ++part)
        {
            const Groups groups = frame.objects[i].model->groups(part);
            const GeometryDataIndex* edges = findList(groups, GeometryDataIndex::lines);
            const GeometryData* positions = findStream(groups, kStreamKinds[kPositions].name);
            if (!edges || !positions)
                continue;
            frame.placements.forEachVisible(i,
                                            [&](const krLinear::AffineMatrix& placement)
                                            {
                                                frame.painter.drawEdges(*positions, *edges, kWireColor,
                                                                        krLinear::ProjMatrix(placement) *
                                                                            frame.camera.worldToClip());
                                            });
        }
}

void add(DrawProcedureList& list, const char* name, DrawProcedure::ExecuteCallback callback)
{
    const auto procedure = Ref<DrawProcedure>::adopt(new DrawProcedure(name));
    procedure->setExecuteCallback(callback);
    list.add(procedure.get(), true);
}

} // namespace

std::array<FlatVertex, 6> axisLines()
{
    constexpr GLfloat kLength = 1.6f;
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
    return lines;
}

Ref<DrawProcedureList> newOverlays()
{
    auto list = Ref<DrawProcedureList>::adopt(new DrawProcedureList);
    add(*list, kAxesProcedure, drawAxes);
    add(*list, kWireProcedure, drawWire);
    return list;
}
