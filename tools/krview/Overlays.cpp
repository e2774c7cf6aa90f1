#include "Overlays.h"

#include "DeviceBuffer.h"
#include "Streams.h"

#include <krender/geometry/GeometryData.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <array>

namespace
{

void drawAxes(DrawProcedure&, const DrawProcedureData& data)
{
    constexpr double kLength = 1.6;
    constexpr std::array<std::array<double, 3>, 3> kAxes{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    static_cast<const FrameData&>(data).camera.bind();
    glLineWidth(2);
    glBegin(GL_LINES);
    for (const auto& axis : kAxes)
    {
        glColor3d(0.25 + 0.75 * axis[0], 0.25 + 0.75 * axis[1], 0.25 + 0.75 * axis[2]);
        glVertex3d(0, 0, 0);
        glVertex3d(kLength * axis[0], kLength * axis[1], kLength * axis[2]);
    }
    glEnd();
    glLineWidth(1);
}

void drawWire(DrawProcedure&, const DrawProcedureData& data)
{
    const auto& frame = static_cast<const FrameData&>(data);
    const GeometryDataIndex* edges = findList(frame.geometry, GeometryDataIndex::lines);
    const GeometryData* positions = findStream(frame.geometry, kStreamKinds[kPositions].name);
    if (!edges || !positions)
        return;
    DeviceBuffer::of(*positions).bind();
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    glEnableClientState(GL_VERTEX_ARRAY);
    DeviceBuffer::of(*edges).bind();
    frame.camera.bind();
    glColor3d(0.95, 0.85, 0.4);
    frame.grid.forEachVisible(
        [edges](const krLinear::AffineMatrix& placement)
        {
            glPushMatrix();
            glMultMatrixd(krLinear::ProjMatrix(placement).elements());
            glDrawElements(GL_LINES, static_cast<GLsizei>(edges->count()), GL_UNSIGNED_INT, nullptr);
            glPopMatrix();
        });
    glDisableClientState(GL_VERTEX_ARRAY);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
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
