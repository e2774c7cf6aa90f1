#include "CubePyramid.h"

#include "Parallel.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace
{

constexpr unsigned kLeastSide = 4;

using Step = CubePyramid::Step;
using Texel = CubePyramid::Texel;

Step newStep(unsigned side) { return {side, std::vector<Texel>(std::size_t{kFaces} * (side + 2) * (side + 2))}; }

/// Fills the frames, with the texels that lie closest on the neighbours.
void addFrames(Step& step)
{
    const int last = static_cast<int>(step.side);
    for (unsigned face = 0; face < kFaces; ++face)
        for (int y = -1; y <= last; ++y)
            for (int x = -1; x <= last; x += y == -1 || y == last ? 1 : last + 1)
            {
                const auto centre = [&](int at)
                { return (2 * static_cast<float>(at) + 1) / static_cast<float>(step.side) - 1; };
                const FacePoint beyond = facePoint(faceDirection(face, centre(x), centre(y)));
                const auto pixel = [&](float at)
                {
                    const int found = static_cast<int>((at + 1) / 2 * static_cast<float>(step.side));
                    return std::clamp(found, 0, last - 1);
                };
                step.texel(face, x, y) = step.texel(beyond.face, pixel(beyond.s), pixel(beyond.t));
            }
}

/// The step of half the side.
Step halved(const Step& fine)
{
    Step step = newStep(fine.side / 2);
    inParallel(kFaces,
               [&](std::size_t i)
               {
                   const auto face = static_cast<unsigned>(i);
                   const int side = static_cast<int>(step.side);
                   for (int y = 0; y < side; ++y)
                       for (int x = 0; x < side; ++x)
                           for (std::size_t c = 0; c < 4; ++c)
                               step.texel(face, x, y)[c] =
                                   (fine.texel(face, 2 * x, 2 * y)[c] + fine.texel(face, 2 * x + 1, 2 * y)[c] +
                                    fine.texel(face, 2 * x, 2 * y + 1)[c] + fine.texel(face, 2 * x + 1, 2 * y + 1)[c]) /
                                   4;
               });
    return step;
}

} // namespace

CubePyramid::CubePyramid(const PixelArrayCubeMap& cube, unsigned mostSide)
{
    Step step = newStep(cube.width());
    const auto* row = static_cast<const Texel*>(cube.data());
    for (unsigned face = 0; face < kFaces; ++face)
        for (int y = 0; y < static_cast<int>(step.side); ++y, row += step.side)
            std::copy_n(row, step.side, &step.texel(face, 0, y));
    while (step.side > mostSide)
        step = halved(step);
    addFrames(step);
    fSteps.push_back(std::move(step));
    while (fSteps.back().side >= 2 * kLeastSide)
    {
        fSteps.push_back(halved(fSteps.back()));
        addFrames(fSteps.back());
    }
}

CubePyramid::Texel CubePyramid::read(const Step& step, const FacePoint& point)
{
    const float half = static_cast<float>(step.side) / 2;
    const float x = (point.s + 1) * half - 0.5f;
    const float y = (point.t + 1) * half - 0.5f;
    const float left = std::floor(x);
    const float above = std::floor(y);
    const float across = x - left;
    const float down = y - above;
    const Texel* const upper = &step.texel(point.face, static_cast<int>(left), static_cast<int>(above));
    const Texel* const lower = upper + step.side + 2;
    Texel texel;
    for (std::size_t i = 0; i < texel.size(); ++i)
    {
        const float high = upper[0][i] + across * (upper[1][i] - upper[0][i]);
        const float low = lower[0][i] + across * (lower[1][i] - lower[0][i]);
        texel[i] = high + down * (low - high);
    }
    return texel;
}

CubePyramid::Texel CubePyramid::at(const Direction<float>& direction, float coarseness) const
{
    const FacePoint point = facePoint(direction);
    const float limited = std::clamp(coarseness, 0.0f, static_cast<float>(fSteps.size() - 1));
    const auto fine = static_cast<std::size_t>(limited);
    const float share = limited - static_cast<float>(fine);
    Texel texel = read(fSteps[fine], point);
    if (share > 0)
    {
        const Texel coarse = read(fSteps[fine + 1], point);
        for (std::size_t i = 0; i < texel.size(); ++i)
            texel[i] += share * (coarse[i] - texel[i]);
    }
    return texel;
}
