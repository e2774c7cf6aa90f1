#include "Stage.h"

#include "DeviceBuffer.h"
#include "GlMatrix.h"
#include "GlProgram.h"
#include "Material.h"
#include "ShapeJoiner.h"
#include "Streams.h"

#include <krender/draw/DrawProcedure.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <algorithm>
#include <array>
#include <utility>

namespace
{

constexpr double kNearest = 0.02; // the nearest front plane, as a share of the distance

} // namespace

Stage::Stage()
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    // Surfaces are drawn a little farther away than the lines that lie in them.
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1, 1);
}

bool Stage::load(const Scene& scene)
{
    fFiles = scene.files;
    const std::optional<Material> material = compileMaterial(scene, fFiles);
    if (!material)
        return false;
    std::unique_ptr<GlProgram> program = GlProgram::link(*material);
    if (!program)
        return false;
    Inputs inputs(scene, *material, fFiles);

    const bool isSameShape =
        fProgram && fScene.shape == scene.shape && fScene.smooth == scene.smooth && fScene.particles == scene.particles;
    if (!isSameShape)
        buildGeometry(scene);
    const GeometryDataIndex* surface = findList(fGeometry, GeometryDataIndex::triangles);
    fGrid.emplace(scene.grid, scene.spacing, fFountain ? Fountain::bounds() : surface->boundingBox());
    fOverlays->find(kAxesProcedure)->enable(scene.axes);
    fOverlays->find(kWireProcedure)->enable(scene.wire);
    fMaterialName = material->name;
    fProgram = std::move(program);
    fInputs = std::move(inputs);
    fScene = scene;
    return true;
}

void Stage::buildGeometry(const Scene& scene)
{
    fGeometry.reset();
    fFountain.reset();
    Geometry shape;
    switch (scene.shape)
    {
    case Shape::Particles:
        fFountain.emplace(scene.particles, fGeometry);
        return;
    case Shape::Cube:
        shape.createCube(1, 1, 1, 1);
        break;
    case Shape::Sphere:
        shape.createSphere(1, 1, 1, 1);
        break;
    case Shape::Cylinder:
        shape.createCylinder(1, 1, 1, 1);
        break;
    }
    joinShape(shape, scene.smooth, fGeometry);
}

std::string Stage::description() const { return fMaterialName + " on " + shapeName(fScene.shape); }

void Stage::draw(View& view, int width, int height, double seconds)
{
    glViewport(0, 0, width, height);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    drawBackground();
    aim(view, static_cast<double>(width) / height);
    fGrid->cull(fCamera.frustum());
    if (fFountain)
        fFountain->update(seconds, fCamera.viewMatrix());
    for (const auto& group : fGeometry.groups())
        fUpload.update(*group);
    drawObjects();

    const FrameData frame(fPainter, fCamera, fGeometry, *fGrid);
    for (unsigned i = 0; DrawProcedure* procedure = fOverlays->item(i); ++i)
        if (procedure->isEnabled())
            procedure->execute(frame);
}

void Stage::aim(View& view, double aspect)
{
    // Planes as close around the objects as they can be make the best use of the depth buffer's precision.
    const double distance = view.distance();
    const double reach = fGrid->radius() + view.translation().length();
    fCamera.setPerspective(view.opening(), aspect, std::max(kNearest * distance, distance - reach), distance + reach);
    fCamera.setViewMatrix(view.viewMatrix());
    fCamera.bind();
}

void Stage::drawBackground() const
{
    const auto corner = [](GLfloat x, GLfloat y, const std::array<float, 3>& color) {
        return FlatVertex{{x, y, 1}, color};
    };
    const std::array corners{corner(-1, -1, fScene.bottom), corner(1, -1, fScene.bottom), corner(-1, 1, fScene.top),
                             corner(1, 1, fScene.top)};
    glDepthMask(GL_FALSE);
    fPainter.draw(GL_TRIANGLE_STRIP, corners, krLinear::ProjMatrix());
    glDepthMask(GL_TRUE);
}

void Stage::drawObjects()
{
    const auto bindPointer = [this](StreamSlot slot, auto setPointer)
    {
        DeviceBuffer::of(*findStream(fGeometry, kStreamKinds[slot].name)).bind();
        setPointer();
    };
    bindPointer(kPositions, [] { glVertexPointer(3, GL_FLOAT, 0, nullptr); });
    bindPointer(kNormals, [] { glNormalPointer(GL_FLOAT, 0, nullptr); });
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glUseProgram(fProgram->id());
    fInputs->setUniforms(*fProgram);
    fInputs->bindAttributes(*fProgram, fGeometry);
    const krLinear::Point eye = fCamera.eye();
    glUniform4f(fProgram->uniform("gEyePos"), static_cast<GLfloat>(eye.x), static_cast<GLfloat>(eye.y),
                static_cast<GLfloat>(eye.z), 1);

    // Particles are sorted from back to front and blended.
    if (fFountain)
    {
        glEnable(GL_BLEND);
        glDepthMask(GL_FALSE);
    }
    const GeometryDataIndex& surface = *findList(fGeometry, GeometryDataIndex::triangles);
    DeviceBuffer::of(surface).bind();
    fGrid->forEachVisible(
        [&](const krLinear::AffineMatrix& placement)
        {
            const krLinear::ProjMatrix toWorld(placement);
            const krLinear::ProjMatrix fromWorld(placement.inverse());
            glPushMatrix();
            glMultMatrixd(toWorld.elements());
            glUniformMatrix4fv(fProgram->uniform("objToWorldMatrix"), 1, GL_FALSE, asFloats(toWorld).data());
            glUniformMatrix4fv(fProgram->uniform("objToWorldMatrix_invtrans"), 1, GL_TRUE, asFloats(fromWorld).data());
            glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(surface.count()), GL_UNSIGNED_INT, nullptr);
            glPopMatrix();
        });
    glDisable(GL_BLEND);
    glDepthMask(GL_TRUE);

    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    fInputs->unbindAttributes(*fProgram);
    glUseProgram(0);
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
}
