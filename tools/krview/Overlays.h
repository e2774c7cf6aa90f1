#pragma once
#include "Camera.h"
#include "FlatPainter.h"
#include "ObjectGrid.h"

#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>
#include <krender/draw/DrawProcedureList.h>
#include <krender/geometry/Geometry.h>

/// What the overlays need to know about a frame. Everything is borrowed.
class FrameData : public DrawProcedureData
{
public:
    FrameData(const FlatPainter& aPainter, const Camera& aCamera, const Geometry& aGeometry, const ObjectGrid& aGrid)
        : painter(aPainter), camera(aCamera), geometry(aGeometry), grid(aGrid)
    {
    }

    const FlatPainter& painter;
    const Camera& camera;
    const Geometry& geometry; ///< with device copies of its lists
    const ObjectGrid& grid;
};

/// Draws the axes of the scene: x red, y green, z blue.
inline constexpr const char* kAxesProcedure = "axes";
/// Draws the edges of the objects.
inline constexpr const char* kWireProcedure = "wire";

/// Both procedures, in the order in which they run; none is enabled.
[[nodiscard]] Ref<DrawProcedureList> newOverlays();
