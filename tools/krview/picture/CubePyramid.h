#pragma once
#include "Directions.h"

#include <krender/pixels/PixelArrayCubeMap.h>

#include <array>
#include <cstddef>
#include <vector>

/// A cube map in steps of half the side each, down to 4, to be read anywhere at any width.
class CubePyramid
{
public:
    /// Red, green, blue and alpha.
    using Texel = std::array<float, 4>;

    /// The faces one after the other, each with a frame of the texels beyond its edges.
    struct Step
    {
        unsigned side;
        std::vector<Texel> texels;

        /// @param x, y  from -1 to side
        [[nodiscard]] Texel& texel(unsigned face, int x, int y) { return texels[index(face, x, y)]; }
        [[nodiscard]] const Texel& texel(unsigned face, int x, int y) const { return texels[index(face, x, y)]; }

    private:
        [[nodiscard]] std::size_t index(unsigned face, int x, int y) const
        {
            const std::size_t pitch = side + 2;
            return (face * pitch + static_cast<std::size_t>(y + 1)) * pitch + static_cast<std::size_t>(x + 1);
        }
    };

    /// @param cube      in lightFormat(); borrowed for the call
    /// @param mostSide  of the finest step, a power of two; so is the cube's side, or it is the finest step
    CubePyramid(const PixelArrayCubeMap& cube, unsigned mostSide);

    /// The side of the finest step.
    [[nodiscard]] unsigned side() const noexcept { return fSteps.front().side; }
    /// The light from a direction.
    /// @param direction  of any length but 0
    /// @param coarseness  0 for the finest step, 1 for the next, and between them
    [[nodiscard]] Texel at(const Direction<float>& direction, float coarseness) const;

private:
    [[nodiscard]] static Texel read(const Step& step, const FacePoint& point);

    std::vector<Step> fSteps; ///< the finest first
};
