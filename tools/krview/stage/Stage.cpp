#include "Stage.h"

#include "InputNames.h"
#include "Looks.h"
#include "SurfacePainter.h"

#include <krender/draw/DrawProcedure.h>
#include <krender/platform/Linear.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <initializer_list>
#include <numbers>
#include <optional>
#include <utility>

namespace
{

constexpr double kNearest = 0.02; // the nearest front plane, as a share of the distance

std::vector<ObjectMaterials> materialsOf(const std::vector<StageObject>& objects)
{
    std::vector<ObjectMaterials> all;
    for (const StageObject& object : objects)
    {
        all.push_back({object.model.get(), {}});
        for (const Surface& surface : object.surfaces)
            all.back().materials.push_back(&surface.material->material);
    }
    return all;
}

} // namespace

Stage::Stage()
{
    glEnable(GL_DEPTH_TEST);
    glDepthFunc(GL_LEQUAL);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}

bool Stage::load(const Scene& scene, krTools::MessageOutput& output, Progress& progress)
{
    fFiles = scene.files;
    fPictures.begin(scene, progress, fFiles);
    Materials materials;
    std::vector<StageObject> objects;
    for (const SceneObject& object : scene.objects)
    {
        StageObject drawn{object.name, Model::keyOf(object), nullptr, {}, object.castsShadow};
        if (!material(scene, object.look.material, materials, output))
            return false;
        drawn.model = model(object, drawn.modelKey, objects, progress);
        checkParts(object, *drawn.model);
        for (std::size_t part = 0; part < drawn.model->parts().size(); ++part)
        {
            const auto taken =
                material(scene, lookOf(scene, object, drawn.model->parts()[part]).material, materials, output);
            if (!taken)
                return false;
            drawn.surfaces.push_back(surface(scene, object, *drawn.model, part, taken));
        }
        objects.push_back(std::move(drawn));
    }
    const std::vector<ObjectMaterials> all = materialsOf(objects);
    checkInputNames(scene, all);
    const Background background = fPictures.background();
    fShadows.choose(scene, all); // nothing fails from here on
    fBackground = background;
    fPictures.dropUnused();

    fObjects = std::move(objects);
    arrange(scene);
    return true;
}

void Stage::setValues(const Scene& scene)
{
    NoProgress progress;
    fPictures.begin(scene, progress, fFiles);
    std::vector<Surface> surfaces;
    for (std::size_t i = 0; i < fObjects.size(); ++i)
        for (std::size_t part = 0; part < fObjects[i].surfaces.size(); ++part)
            surfaces.push_back(
                surface(scene, scene.objects[i], *fObjects[i].model, part, fObjects[i].surfaces[part].material));
    const Background background = fPictures.background();
    fShadows.choose(scene, materialsOf(fObjects)); // nothing fails from here on
    auto next = surfaces.begin();
    for (StageObject& object : fObjects)
        for (Surface& surface : object.surfaces)
            surface = std::move(*next++);
    // The pictures are the same ones again, but for those that are new.
    std::sort(fFiles.begin(), fFiles.end());
    fFiles.erase(std::unique(fFiles.begin(), fFiles.end()), fFiles.end());
    fBackground = background;
    fPictures.dropUnused();
    arrange(scene);
}

Scene Stage::withoutUnused(Scene scene) const
{
    dropUnusedInputs(scene, materialsOf(fObjects));
    return scene;
}

void Stage::arrange(const Scene& scene)
{
    fPlacements = Placements();
    for (std::size_t i = 0; i < fObjects.size(); ++i)
    {
        const AABoundingBox& bounds = fObjects[i].model->bounds();
        if (scene.grid > 1)
            fPlacements.addGrid(scene.objects[i], bounds, scene.grid, scene.spacing);
        else
            fPlacements.add(scene.objects[i], bounds);
    }
    fOverlays->find(kAxesProcedure)->enable(scene.axes);
    fOverlays->find(kWireProcedure)->enable(scene.wire);
    fScene = scene;
}

std::shared_ptr<DrawnMaterial> Stage::material(const Scene& scene, const std::string& name, Materials& materials,
                                               krTools::MessageOutput& output)
{
    if (const auto known = materials.find(name); known != materials.end())
        return known->second;
    std::optional<Material> compiled = compileMaterial(scene, name, drawnTarget(), fFiles, output);
    if (!compiled)
        return nullptr;
    std::unique_ptr<GlProgram> program = GlProgram::link(*compiled, output);
    if (!program)
        return nullptr;
    auto drawn = std::make_shared<DrawnMaterial>(DrawnMaterial{std::move(*compiled), std::move(program)});
    materials[name] = drawn;
    return drawn;
}

std::shared_ptr<Model> Stage::model(const SceneObject& object, const std::string& key,
                                    const std::vector<StageObject>& others, Progress& progress)
{
    // Particles are turned towards the eye as their object stands.
    const bool isShared = !object.mesh.empty() || object.shape != Shape::Particles;
    for (const auto* known : std::initializer_list<const std::vector<StageObject>*>{&others, &fObjects})
        for (const StageObject& other : *known)
            if (isShared && other.modelKey == key && other.model->isCurrent())
            {
                fFiles.insert(fFiles.end(), other.model->files().begin(), other.model->files().end());
                return other.model;
            }
    return Model::make(object, progress, fFiles);
}

Surface Stage::surface(const Scene& scene, const SceneObject& object, const Model& model, std::size_t part,
                       const std::shared_ptr<DrawnMaterial>& material)
{
    const PartLook look = lookOf(scene, object, model.parts()[part]);
    Surface surface{material, Inputs(look.values, material->material, fPictures), look.isTransparent};
    const Groups groups = model.groups(part);
    if (look.isTransparent && !model.isMoving())
        surface.order = std::make_unique<TriangleOrder>(*findStream(groups, kStreamKinds[kPositions].name),
                                                        *findList(groups, GeometryDataIndex::triangles));
    return surface;
}

bool Stage::isMoving() const noexcept
{
    return std::any_of(fObjects.begin(), fObjects.end(),
                       [](const StageObject& object) { return object.model->isMoving(); });
}

std::string Stage::description() const
{
    const SceneObject& first = fScene.objects.front();
    const std::string others = fObjects.size() == 1 ? ""
                                                    : " and " + std::to_string(fObjects.size() - 1) +
                                                          (fObjects.size() == 2 ? " other" : " others");
    return fObjects.front().surfaces.front().material->material.name + " on " +
           (first.mesh.empty() ? shapeName(first.shape) : std::filesystem::path(first.mesh).filename().string()) +
           others;
}

void Stage::draw(View& view, const Frame& target, double seconds)
{
    target.bind();
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    aim(view, static_cast<double>(target.format().width) / target.format().height);
    if (fBackground.texture)
    {
        target.writeLight(true);
        fSkyPainter.draw(*fBackground.texture, fCamera, fBackground.isUncoded);
    }
    else
        drawBackground();
    fPlacements.cull(fCamera.frustum());
    for (std::size_t i = 0; i < fObjects.size(); ++i)
    {
        fObjects[i].model->update(seconds, fPlacements.first(i) * fCamera.viewMatrix());
        for (const auto& group : fObjects[i].model->geometry().groups())
            fUpload.update(*group);
    }
    fShadows.draw(fObjects, fPlacements, fPainter);
    target.writeLight(true);
    // Surfaces are drawn a little farther away than the lines that lie in them. Where there are none this would let
    // the far sides of sharp edges through.
    if (fScene.wire)
        glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1, 1);
    drawObjects();
    glDisable(GL_POLYGON_OFFSET_FILL);
    target.writeLight(false);

    const FrameData frame(fPainter, fCamera, fObjects, fPlacements);
    for (unsigned i = 0; DrawProcedure* procedure = fOverlays->item(i); ++i)
        if (procedure->isEnabled())
            procedure->execute(frame);
}

void Stage::aim(View& view, double aspect)
{
    // Planes as close around the objects as they can be make the best use of the depth buffer's precision.
    const double distance = view.distance();
    const double reach = std::max(fPlacements.radius(), std::numbers::sqrt3) + view.translation().length();
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
    SurfacePainter painter(fCamera, fShadows);
    for (std::size_t i = 0; i < fObjects.size(); ++i)
        for (std::size_t part = 0; part < fObjects[i].surfaces.size(); ++part)
        {
            if (fObjects[i].surfaces[part].isTransparent)
                continue;
            painter.begin(fObjects[i], part);
            fPlacements.forEachVisible(i, [&](const krLinear::AffineMatrix& placement) { painter.draw(placement); });
            painter.end();
        }
    fTransparent.draw(fObjects, fPlacements, fCamera, painter);
}
