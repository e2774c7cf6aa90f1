#pragma once
#include "FlatPainter.h"
#include "Fountain.h"
#include "Inputs.h"
#include "MeshUpload.h"
#include "ObjectGrid.h"
#include "Overlays.h"
#include "View.h"

#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedureList.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

/// Holds and draws the scene. An OpenGL context must be current while it lives.
class Stage
{
public:
    Stage();

    /// Replaces the scene, also by itself when its sources have changed. Errors in the sources are printed. Throws an
    /// InputError and a krTools::FileError. On any error the stage keeps what it had.
    /// @return  whether the stage has the scene now
    bool load(const Scene& scene);

    /// Draws a frame.
    /// @param width, height  of the frame, pixels
    /// @param seconds        the moment that it shows, from the beginning
    void draw(View& view, int width, int height, double seconds);

    /// Whether the scene looks different from moment to moment.
    [[nodiscard]] bool isMoving() const noexcept { return fFountain.has_value(); }
    /// The material and the shape, such as "phong on sphere".
    [[nodiscard]] std::string description() const;
    [[nodiscard]] const DrawProcedureList& overlays() const noexcept { return *fOverlays; }
    /// The files that the last load() read or looked for: sources, what they include, pictures.
    [[nodiscard]] const std::vector<std::string>& files() const noexcept { return fFiles; }
    [[nodiscard]] const ObjectGrid& grid() const noexcept { return *fGrid; }
    [[nodiscard]] const MeshUpload& upload() const noexcept { return fUpload; }

private:
    void buildGeometry(const Scene& scene);
    void aim(View& view, double aspect);
    void drawBackground() const;
    void drawObjects();
    /// Binds what OpenGL 2.1 has names of its own for.
    void bindFixedInputs() const;
    /// Sets the matrices of the program for an object.
    void place(const krLinear::AffineMatrix& placement);

    Scene fScene;
    std::vector<std::string> fFiles;
    std::string fMaterialName;
    std::unique_ptr<GlProgram> fProgram;
    std::optional<Inputs> fInputs;
    Geometry fGeometry;
    std::optional<Fountain> fFountain;
    std::optional<ObjectGrid> fGrid;
    MeshUpload fUpload;
    FlatPainter fPainter;
    Camera fCamera;
    Ref<DrawProcedureList> fOverlays = newOverlays();
};
