#include "Overlays.h"

#include "DeviceBuffer.h"
#include "Picture.h"
#include "Streams.h"

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

class PictureSaver : public DrawProcedure
{
public:
    PictureSaver() : DrawProcedure(kPictureProcedure) {}

    void setPath(const std::string& path) { fPath = path; }

    void execute(const DrawProcedureData& data) override
    {
        enable(false);
        const auto& frame = static_cast<const FrameData&>(data);
        const Shared<PixelArray2D> picture =
            newPicture(static_cast<unsigned>(frame.width), static_cast<unsigned>(frame.height));
        glPixelStorei(GL_PACK_ALIGNMENT, 1);
        glReadPixels(0, 0, frame.width, frame.height, GL_RGBA, GL_UNSIGNED_BYTE, picture->data());
        writePng(fPath, *picture);
    }

private:
    std::string fPath;
};

void add(DrawProcedureList& list, DrawProcedure* procedure, DrawProcedure::ExecuteCallback callback)
{
    const Shared<DrawProcedure> own(procedure); // the list takes a reference of its own
    procedure->setExecuteCallback(callback);
    list.add(procedure, true);
}

} // namespace

Shared<DrawProcedureList> newOverlays()
{
    Shared<DrawProcedureList> list(new DrawProcedureList);
    add(*list, new DrawProcedure(kAxesProcedure), drawAxes);
    add(*list, new DrawProcedure(kWireProcedure), drawWire);
    add(*list, new PictureSaver, nullptr);
    return list;
}

void savePicture(const DrawProcedureList& overlays, const std::string& path)
{
    auto& saver = static_cast<PictureSaver&>(*overlays.find(kPictureProcedure));
    saver.setPath(path);
    saver.enable(true);
}
