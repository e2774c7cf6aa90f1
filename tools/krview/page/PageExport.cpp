#include "PageExport.h"

#include "PageScene.h"
#include "PageTemplate.h"

#include <krview/Progress.h>
#include <krview/scene/SceneReader.h>
#include <krview/stage/InputNames.h>
#include <krview/stage/Looks.h>
#include <krview/stage/Overlays.h>
#include <krview/stage/Placements.h>
#include <krview/stage/ShadowLight.h>
#include <krview/stage/View.h>

#include <common/ExitStatus.h>
#include <common/MessageOutput.h>
#include <common/OutputFiles.h>
#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <krender/shadergen/Target.h>

#include <algorithm>
#include <filesystem>
#include <initializer_list>
#include <map>
#include <memory>
#include <numbers>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// Makes a page of a scene.
class PageMaker
{
public:
    explicit PageMaker(const Scene& scene) : fScene(scene), fView(scene), fPage(scene) {}

    /// @return  false when there are errors, which are printed
    [[nodiscard]] bool build()
    {
        for (const SceneObject& object : fScene.objects)
            if (!addModel(object))
                return false;
        checkInputNames(fScene, fMaterials);
        for (std::size_t i = 0; i < fObjects.size(); ++i)
            resolve(i);
        aim();
        castShadow();
        addBackground();
        for (std::size_t i = 0; i < fScene.objects.size(); ++i)
            addObject(i);
        addOverlays();
        return true;
    }

    [[nodiscard]] std::string text() { return pageOf(title(), fScene.bottom, fPage.packed()); }

private:
    /// A material with the number of its program in the page.
    struct PageMaterial
    {
        Material material;
        std::size_t program;
    };

    [[nodiscard]] const PageMaterial* material(const std::string& name)
    {
        if (const auto known = fPrograms.find(name); known != fPrograms.end())
            return &known->second;
        std::optional<Material> compiled =
            compileMaterial(fScene, name, *findTarget("essl300"), fFiles, krTools::standardMessages());
        if (!compiled)
            return nullptr;
        const std::size_t program = fPage.addProgram(*compiled);
        return &fPrograms.emplace(name, PageMaterial{std::move(*compiled), program}).first->second;
    }

    [[nodiscard]] bool addModel(const SceneObject& object)
    {
        const std::string key = Model::keyOf(object);
        std::shared_ptr<Model>& model = fModels[key];
        if (!model || model->isMoving())
            model = Model::make(object, fProgress, fFiles);
        checkParts(object, *model);
        fMaterials.push_back({model.get(), {}});
        fObjects.push_back(model);
        for (const MeshPart& part : model->parts())
        {
            const PageMaterial* found = material(lookOf(fScene, object, part).material);
            if (!found)
                return false;
            fMaterials.back().materials.push_back(&found->material);
        }
        if (fScene.grid > 1)
            fPlacements.addGrid(object, model->bounds(), fScene.grid, fScene.spacing);
        else
            fPlacements.add(object, model->bounds());
        return true;
    }

    void resolve(std::size_t number)
    {
        fInputs.emplace_back();
        for (const MeshPart& part : fObjects[number]->parts())
        {
            const PartLook look = lookOf(fScene, fScene.objects[number], part);
            fInputs.back().emplace_back(look.values, material(look.material)->material);
        }
    }

    void castShadow()
    {
        const std::string light = shadowLight(fScene, fMaterials);
        if (light.empty())
            return;
        fPage.setShadow(
            {light, fScene.shadow.size, ballAround(fPlacements.castersBounds()), ballAround(fPlacements.bounds())});
    }

    void aim()
    {
        fView.resize(static_cast<int>(fScene.width), static_cast<int>(fScene.height));
        if (fScene.isFramed)
            fView.frame(fPlacements.bounds());
        const krLinear::Vector target = -fView.translation();
        fPage.set("view", {{"pitch", fScene.pitch},
                           {"yaw", fScene.yaw},
                           {"distance", fView.distance()},
                           {"opening", fView.opening()},
                           {"target", {target.x, target.y, target.z}}});
        fPage.set("aspect", static_cast<double>(fScene.width) / fScene.height);
        fPage.set("radius", std::max(fPlacements.radius(), std::numbers::sqrt3));
        fPage.set("samples", fScene.samples);
        fPage.set("encodes", fScene.encodes);
        fPage.set("wire", fScene.wire);
    }

    void addBackground()
    {
        if (fPage.addSky())
            return;
        const auto corner = [](float x, float y, const std::array<float, 3>& color) {
            return FlatVertex{{x, y, 1}, color};
        };
        const std::array corners{corner(-1, -1, fScene.bottom), corner(1, -1, fScene.bottom), corner(-1, 1, fScene.top),
                                 corner(1, 1, fScene.top)};
        fPage.addFlat("TRIANGLE_STRIP", corners, true);
    }

    [[nodiscard]] std::vector<krLinear::AffineMatrix> placesOf(std::size_t object) const
    {
        std::vector<krLinear::AffineMatrix> places;
        fPlacements.forEach(object, [&places](const krLinear::AffineMatrix& place) { places.push_back(place); });
        return places;
    }

    void addObject(std::size_t number)
    {
        const SceneObject& object = fScene.objects[number];
        Model& model = *fObjects[number];
        if (model.isMoving())
        {
            krTools::printNote("krview", "particles stand still in the page, as they face the eye at the start");
            model.update(1.0 / 60, fPlacements.first(number) * fView.viewMatrix());
        }
        for (std::size_t part = 0; part < model.parts().size(); ++part)
        {
            const PartLook look = lookOf(fScene, object, model.parts()[part]);
            const PageMaterial& found = *material(look.material);
            const ResolvedInputs& inputs = fInputs[number][part];
            fPage.addSurface({fPage.addLook(nameOf(number, part), found.program, inputs), inputs, found.material,
                              model.groups(part), placesOf(number), look.isTransparent, object.castsShadow});
        }
    }

    void addOverlays()
    {
        if (fScene.axes)
            fPage.addFlat("LINES", axisLines(), false);
        if (fScene.wire)
            for (std::size_t i = 0; i < fObjects.size(); ++i)
                for (std::size_t part = 0; part < fObjects[i]->parts().size(); ++part)
                    fPage.addEdges(fObjects[i]->groups(part), kWireColor, placesOf(i));
    }

    /// The title of the controls of a surface.
    [[nodiscard]] std::string nameOf(std::size_t object, std::size_t part) const
    {
        std::string name = fMaterials[object].materials[part]->name;
        if (fObjects.size() > 1)
            name = fScene.objects[object].name + ": " + name;
        return fObjects[object]->parts().size() > 1 ? fObjects[object]->parts()[part].name + ": " + name : name;
    }

    [[nodiscard]] std::string title() const
    {
        return fScene.file.empty() ? fMaterials.front().materials.front()->name
                                   : std::filesystem::path(fScene.file).stem().string();
    }

    const Scene& fScene;
    View fView;
    PageScene fPage;
    NoProgress fProgress;
    std::vector<std::string> fFiles;
    std::map<std::string, PageMaterial> fPrograms; ///< by the materials' names in the scene
    std::map<std::string, std::shared_ptr<Model>> fModels;
    std::vector<std::shared_ptr<Model>> fObjects; ///< of the scene, in order
    std::vector<ObjectMaterials> fMaterials;      ///< likewise
    Placements fPlacements;
    std::vector<std::vector<ResolvedInputs>> fInputs; ///< of the parts of each object
};

} // namespace

int exportPage(const Options& options)
{
    const Scene scene = readScene(options);
    PageMaker maker(scene);
    if (!maker.build())
        return krTools::kInputHasErrors;
    krTools::OutputFiles files;
    try
    {
        files.add(options.page, maker.text());
    }
    catch (const std::length_error& error)
    {
        throw krTools::FileError("cannot write '" + options.page + "': " + error.what());
    }
    files.publish();
    return krTools::kDone;
}
