#include "VertexVectors.h"

#include <cmath>
#include <utility>

krLinear::Vector triangleNormal(const PartArrays& part, std::span<const unsigned> corners)
{
    const std::vector<float>& positions = part.values[kPositions];
    const krLinear::Vector origin = vectorAt(positions, corners[0]);
    return cross(vectorAt(positions, corners[1]) - origin, vectorAt(positions, corners[2]) - origin).normalized();
}

double cornerAngle(const PartArrays& part, std::size_t corner)
{
    const std::vector<float>& positions = part.values[kPositions];
    const auto [next, last] = otherCorners(corner);
    const krLinear::Vector origin = vectorAt(positions, part.triangles[corner]);
    const krLinear::Vector a = vectorAt(positions, part.triangles[next]) - origin;
    const krLinear::Vector b = vectorAt(positions, part.triangles[last]) - origin;
    return std::atan2(cross(a, b).length(), dot(a, b));
}

void takeVertices(PartArrays& part, std::span<const unsigned> sources)
{
    for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
    {
        std::vector<float>& values = part.values[slot];
        if (values.empty())
            continue;
        const std::size_t components = kStreamKinds[slot].components;
        std::vector<float> taken;
        taken.reserve(sources.size() * components);
        for (const unsigned source : sources)
        {
            const float* value = values.data() + source * components;
            taken.insert(taken.end(), value, value + components);
        }
        values = std::move(taken);
    }
}
