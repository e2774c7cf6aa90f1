#include "ShadowPass.h"

#include "ShadowLight.h"

#include <krview/gl/GlFeatures.h>
#include <krview/gl/GlMatrix.h>

#include <algorithm>
#include <cstddef>

void ShadowPass::choose(const Scene& scene, const std::vector<ObjectMaterials>& objects)
{
    fLight = shadowLight(scene, objects);
    fSize = scene.shadow.size;
    if (fLight.empty() || (fDepths && fDepths->size() != fSize))
        fDepths.reset();
    fIsCurrent = false;
}

void ShadowPass::draw(const std::vector<StageObject>& objects, const Placements& placements, const FlatPainter& painter)
{
    if (fLight.empty() || !hasFramebufferObjects())
        return;
    if (!fDepths)
        fDepths = std::make_unique<DepthMap>(fSize);
    // The first material that has an input tells its value.
    const auto numbers = [&objects](const std::string& name) -> const std::vector<double>*
    {
        for (const StageObject& object : objects)
            for (const Surface& surface : object.surfaces)
                if (const std::vector<double>* found = surface.inputs.numbers(name))
                    return found;
        return nullptr;
    };
    const krLinear::ProjMatrix toClip = shadowView(fLight, numbers, placements);
    fToMap = toClip * clipToMap();
    const DepthMap::Drawing drawing(*fDepths);
    // Moved away from the light by its slope, so that no surface lies in its own shadow.
    glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(2, 4);
    for (std::size_t i = 0; i < objects.size(); ++i)
        for (std::size_t part = 0; objects[i].castsShadow && part < objects[i].surfaces.size(); ++part)
        {
            const Groups groups = objects[i].model->groups(part);
            const GeometryData* positions = findStream(groups, kStreamKinds[kPositions].name);
            const GeometryDataIndex* triangles = findList(groups, GeometryDataIndex::triangles);
            if (!objects[i].surfaces[part].isTransparent && positions && triangles)
                placements.forEach(
                    i, [&](const krLinear::AffineMatrix& placement)
                    { painter.drawTriangles(*positions, *triangles, krLinear::ProjMatrix(placement) * toClip); });
        }
    glDisable(GL_POLYGON_OFFSET_FILL);
    fIsCurrent = std::none_of(objects.begin(), objects.end(),
                              [](const StageObject& object) { return object.model->isMoving(); });
}

void ShadowPass::setUniforms(DrawnMaterial& material, GLint unit) const
{
    if (!fDepths)
        return;
    GlUniforms& uniforms = material.program->uniforms();
    if (const ProgramInput* map = inputOf(material.material, fLight, kSampler2DShadow))
    {
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        fDepths->bind();
        uniforms.setSampler(map->programName, unit);
        glActiveTexture(GL_TEXTURE0);
    }
    if (const ProgramInput* matrix = inputOf(material.material, fLight, kMatrix4))
        uniforms.set(matrix->programName, kMatrix4, rowsOf(fToMap));
}
