#include "SurfacePainter.h"

#include <krview/gl/DeviceBuffer.h>
#include <krview/gl/GlFeatures.h>
#include <krview/gl/GlMatrix.h>

#include <krender/shading/DataType.h>

#include <array>
#include <cstddef>
#include <span>

namespace
{

constexpr std::array<GLenum, 2> kFixedArrays{GL_VERTEX_ARRAY, GL_NORMAL_ARRAY};

} // namespace

void SurfacePainter::begin(StageObject& object, std::size_t part)
{
    fSurface = &object.surfaces[part];
    fGroups = object.model->groups(part);
    fTriangles = findList(fGroups, GeometryDataIndex::triangles);
    if (hasFixedFunctions())
        bindFixedInputs();
    const GlProgram& program = *fSurface->material->program;
    glUseProgram(program.id());
    GlUniforms& uniforms = fSurface->material->program->uniforms();
    fSurface->inputs.setUniforms(uniforms);
    fSurface->inputs.bindAttributes(program, fGroups);
    fShadows.setUniforms(*fSurface->material, fSurface->inputs.textureUnits());
    const krLinear::Point eye = fCamera.eye();
    uniforms.set("gEyePos", kFloat4, std::array{eye.x, eye.y, eye.z, 1.0});

    // What is behind shows through, and must have been drawn before.
    if (fSurface->isTransparent)
    {
        glEnable(GL_BLEND);
        glDepthMask(GL_FALSE);
    }
    DeviceBuffer::of(*fTriangles).bind();
}

void SurfacePainter::draw(const krLinear::AffineMatrix& placement)
{
    place(placement);
    if (fSurface->order)
        fSurface->order->bindSorted(placement * fCamera.viewMatrix());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(fTriangles->count()), GL_UNSIGNED_INT, nullptr);
}

void SurfacePainter::drawTriangles(const krLinear::AffineMatrix& placement, GLuint buffer, unsigned first,
                                   unsigned count)
{
    place(placement);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
    // NOLINTNEXTLINE(performance-no-int-to-ptr): an offset into the buffer goes as a pointer
    const auto* const offset = reinterpret_cast<const void*>(std::size_t{first} * sizeof(unsigned));
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_INT, offset);
}

void SurfacePainter::end()
{
    glDisable(GL_BLEND);
    glDepthMask(GL_TRUE);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    fSurface->inputs.unbindAttributes(*fSurface->material->program);
    glUseProgram(0);
    if (hasFixedFunctions())
        for (const GLenum array : kFixedArrays)
            glDisableClientState(array);
}

void SurfacePainter::bindFixedInputs() const
{
    DeviceBuffer::of(*findStream(fGroups, kStreamKinds[kPositions].name)).bind();
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    DeviceBuffer::of(*findStream(fGroups, kStreamKinds[kNormals].name)).bind();
    glNormalPointer(GL_FLOAT, 0, nullptr);
    for (const GLenum array : kFixedArrays)
        glEnableClientState(array);
}

void SurfacePainter::place(const krLinear::AffineMatrix& placement)
{
    const krLinear::ProjMatrix toWorld(placement);
    const krLinear::ProjMatrix fromWorld(placement.inverse());
    const krLinear::ProjMatrix toClip = toWorld * fCamera.worldToClip();
    GlUniforms& uniforms = fSurface->material->program->uniforms();
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
