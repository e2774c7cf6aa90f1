#include "Stage.h"

#include "DeviceBuffer.h"
#include "GlFeatures.h"
#include "GlProgram.h"
#include "Material.h"
#include "ShapeJoiner.h"
#include "Streams.h"

#include <krender/draw/DrawProcedure.h>
#include <krender/geometry/GeometryDataIndex.h>
#include <krender/platform/Linear.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>

namespace
{

constexpr double kNearest = 0.02; // the nearest front plane, as a share of the distance

/// The rows of the matrix that does the same to column vectors.
std::array<double, 16> rowsOf(const krLinear::ProjMatrix& matrix)
{
    std::array<double, 16> rows{};
    for (unsigned i = 0; i < rows.size(); ++i)
        rows[i] = matrix(i % 4, i / 4);
    return rows;
}

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
    if (hasFixedFunctions())
        bindFixedInputs();
    glUseProgram(fProgram->id());
    GlUniforms& uniforms = fProgram->uniforms();
    fInputs->setUniforms(uniforms);
    fInputs->bindAttributes(*fProgram, fGeometry);
    const krLinear::Point eye = fCamera.eye();
    uniforms.set("gEyePos", kFloat4, std::array{eye.x, eye.y, eye.z, 1.0});

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
            place(placement);
            glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(surface.count()), GL_UNSIGNED_INT, nullptr);
        });
    glDisable(GL_BLEND);
    glDepthMask(GL_TRUE);

    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    fInputs->unbindAttributes(*fProgram);
    glUseProgram(0);
    if (hasFixedFunctions())
        for (const GLenum array : {GL_NORMAL_ARRAY, GL_VERTEX_ARRAY})
            glDisableClientState(array);
}

void Stage::bindFixedInputs() const
{
    DeviceBuffer::of(*findStream(fGeometry, kStreamKinds[kPositions].name)).bind();
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    DeviceBuffer::of(*findStream(fGeometry, kStreamKinds[kNormals].name)).bind();
    glNormalPointer(GL_FLOAT, 0, nullptr);
    for (const GLenum array : {GL_VERTEX_ARRAY, GL_NORMAL_ARRAY})
        glEnableClientState(array);
}

void Stage::place(const krLinear::AffineMatrix& placement)
{
    const krLinear::ProjMatrix toWorld(placement);
    const krLinear::ProjMatrix fromWorld(placement.inverse());
    const krLinear::ProjMatrix toClip = toWorld * fCamera.worldToClip();
    GlUniforms& uniforms = fProgram->uniforms();
    uniforms.set("kr_ModelViewProjectionMatrix", kMatrix4, rowsOf(toClip));
    uniforms.set("objToWorldMatrix", kMatrix4, rowsOf(toWorld));
    // The rows of the inverse are those of the matrix for normals, whose vectors are columns.
    uniforms.set("objToWorldMatrix_invtrans", kMatrix4, std::span(fromWorld.elements(), 16));
    uniforms.flush();
    if (!hasFixedFunctions())
        return;
    fCamera.bind();
    glMultMatrixd(toWorld.elements());
}
