#pragma once
#include "Camera.h"
#include "Placements.h"
#include "StageObject.h"

#include <krview/gl/FlatPainter.h>

#include <krender/core/Ref.h>
#include <krender/draw/DrawProcedure.h>
#include <krender/draw/DrawProcedureData.h>
#include <krender/draw/DrawProcedureList.h>

#include <array>
#include <vector>

/// What the overlays need to know about a frame. Everything is borrowed.
class FrameData : public DrawProcedureData
{
public:
    FrameData(const FlatPainter& aPainter, const Camera& aCamera, const std::vector<StageObject>& someObjects,
              const Placements& somePlacements)
        : painter(aPainter), camera(aCamera), objects(someObjects), placements(somePlacements)
    {
    }

    const FlatPainter& painter;
    const Camera& camera;
    const std::vector<StageObject>& objects; ///< with device copies of their lists
    const Placements& placements;
};

/// Draws the axes of the scene: x red, y green, z blue.
inline constexpr const char* kAxesProcedure = "axes";
/// Draws the edges of the objects.
inline constexpr const char* kWireProcedure = "wire";

inline constexpr std::array<float, 3> kWireColor{0.95f, 0.85f, 0.4f};

/// The axes of the scene, each a line.
[[nodiscard]] std::array<FlatVertex, 6> axisLines();

/// Both procedures, in the order in which they run; none is enabled.
[[nodiscard]] Ref<DrawProcedureList> newOverlays();
