#pragma once
#include "Overlays.h"
#include "Placements.h"
#include "ShadowPass.h"
#include "StageObject.h"
#include "TransparentPass.h"
#include "View.h"

#include <krview/Progress.h>
#include <krview/gl/FlatPainter.h>
#include <krview/gl/Frame.h>
#include <krview/gl/MeshUpload.h>
#include <krview/gl/SkyPainter.h>
#include <krview/material/Pictures.h>

#include <common/MessageOutput.h>

#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedureList.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

/// Holds and draws the scene. An OpenGL context must be current while it lives.
class Stage
{
public:
    Stage();

    /// Replaces the scene, also by itself when its sources have changed. Throws an InputError, a krTools::FileError and
    /// Cancelled. On any error the stage keeps what it had.
    /// @param output  gets the errors in the sources
    /// @return  whether the stage has the scene now
    bool load(const Scene& scene, krTools::MessageOutput& output, Progress& progress);
    /// Takes a scene that differs in the values of inputs, the places of objects and what is around them, but neither in
    /// objects and their shapes nor in materials and lights. Throws as load() does.
    void setValues(const Scene& scene);

    /// Draws a frame.
    /// @param seconds  the moment that it shows, from the beginning
    void draw(View& view, const Frame& target, double seconds);

    /// A scene with the same objects without the optional values that nothing here takes.
    [[nodiscard]] Scene withoutUnused(Scene scene) const;

    /// The scene that load() accepted last.
    [[nodiscard]] const Scene& scene() const noexcept { return fScene; }
    /// Whether the scene looks different from moment to moment.
    [[nodiscard]] bool isMoving() const noexcept;
    /// The first material and what it is on, such as "phong on sphere".
    [[nodiscard]] std::string description() const;
    [[nodiscard]] const DrawProcedureList& overlays() const noexcept { return *fOverlays; }
    /// The files that the last load() read or looked for: sources, what they include, pictures.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }
    [[nodiscard]] const std::vector<StageObject>& objects() const noexcept { return fObjects; }
    [[nodiscard]] const Placements& placements() const noexcept { return fPlacements; }
    [[nodiscard]] const MeshUpload& upload() const noexcept { return fUpload; }

private:
    using Materials = std::map<std::string, std::shared_ptr<DrawnMaterial>>; ///< by their names in the scene

    /// Null when there are errors.
    [[nodiscard]] std::shared_ptr<DrawnMaterial> material(const Scene& scene, const std::string& name,
                                                          Materials& materials, krTools::MessageOutput& output);
    /// One that is known, of these or of the last scene's objects, or a new one.
    [[nodiscard]] std::shared_ptr<Model> model(const SceneObject& object, const std::string& key,
                                               const std::vector<StageObject>& others, Progress& progress);
    [[nodiscard]] Surface surface(const Scene& scene, const SceneObject& object, const Model& model, std::size_t part,
                                  const std::shared_ptr<DrawnMaterial>& material);
    /// Stands the objects where a scene says, and keeps the scene.
    void arrange(const Scene& scene);
    void aim(View& view, double aspect);
    void drawBackground() const;
    void drawObjects();

    Scene fScene;
    std::vector<std::string> fFiles;
    std::vector<StageObject> fObjects;
    Placements fPlacements;
    ShadowPass fShadows;
    TransparentPass fTransparent;
    MeshUpload fUpload;
    FlatPainter fPainter;
    SkyPainter fSkyPainter;
    Pictures fPictures;
    Background fBackground = {};
    Camera fCamera;
    Ref<DrawProcedureList> fOverlays = newOverlays();
};
