#pragma once
#include "Camera.h"
#include "ObjectGrid.h"
#include "Shared.h"

#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>
#include <krender/draw/DrawProcedureList.h>
#include <krender/geometry/Geometry.h>
#include <krender/window/TumbleWindowsHandler.h>

#include <string>

/// What the procedures behind the scene's own drawing are told. All is borrowed.
class FrameData : public DrawProcedureData
{
public:
    FrameData(Camera& aCamera, const Geometry& aGeometry, const ObjectGrid& aGrid, const TumbleWindowsHandler& view)
        : camera(aCamera), geometry(aGeometry), grid(aGrid), width(view.width()), height(view.height())
    {
    }

    Camera& camera;
    const Geometry& geometry; ///< its lists have their device copies
    const ObjectGrid& grid;
    int width; ///< pixels
    int height;
};

/// Draws the axes of the scene: x red, y green, z blue.
inline constexpr const char* kAxesProcedure = "axes";
/// Draws the edges of the objects.
inline constexpr const char* kWireProcedure = "wire";
/// Saves what has been drawn, once for each time that it is enabled.
inline constexpr const char* kPictureProcedure = "picture";

/// The three procedures, in the order in which they run; none is enabled.
[[nodiscard]] Shared<DrawProcedureList> newOverlays();

/// Has the next frame saved. A file that cannot be written is a krTools::FileError out of that frame.
void savePicture(const DrawProcedureList& overlays, const std::string& path);
