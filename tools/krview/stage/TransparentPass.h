#pragma once
#include "Camera.h"
#include "Placements.h"
#include "StageObject.h"
#include "SurfacePainter.h"

#include <krender/platform/Linear.h>
#include <krender/spatial/AABoundingBox.h>

#include <epoxy/gl.h>

#include <cstddef>
#include <vector>

/// Draws what is transparent, the farthest first: object by object, but for those that stand within each other, whose
/// triangles are drawn in one order.
class TransparentPass
{
public:
    /// Needs a current context.
    TransparentPass();
    TransparentPass(const TransparentPass&) = delete;
    TransparentPass& operator=(const TransparentPass&) = delete;
    ~TransparentPass();

    /// Draws the transparent surfaces that are in view. The objects must have their device copies.
    void draw(std::vector<StageObject>& objects, const Placements& placements, const Camera& camera,
              SurfacePainter& painter);

private:
    /// A surface at a place.
    struct Drawing
    {
        std::size_t object;
        std::size_t part;
        const krLinear::AffineMatrix* placement;
        const TriangleOrder* triangles; ///< null for one that is always drawn as a whole
        AABoundingBox bounds;           ///< in its own space
        bool isMixed = false;           ///< whether its triangles are drawn one by one
    };
    /// What is drawn at once, unless its neighbours in the order are of the same drawing.
    struct Piece
    {
        std::size_t drawing;
        unsigned triangle; ///< of a mixed drawing
    };

    void collect(const std::vector<StageObject>& objects, const Placements& placements);
    /// Finds the drawings that stand within others.
    void findMixed();
    void addPieces();

    std::vector<Drawing> fDrawings;
    std::vector<Piece> fPieces;
    std::vector<float> fCentres; ///< three for each piece, in the scene
    std::vector<unsigned> fOrder;
    std::vector<unsigned> fIndices; ///< of the mixed triangles, in order
    GLuint fBuffer = 0;             ///< the same
};
