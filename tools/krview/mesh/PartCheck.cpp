#include "PartCheck.h"

#include "MeshError.h"

#include <common/PrintedMessage.h>

#include <cmath>
#include <cstddef>
#include <string>
#include <vector>

namespace
{

/// Beyond it, lengths and products of lengths leave the range of floats on their way to the screen.
constexpr float kFarthest = 1e15f;

[[noreturn]] void fail(const PartArrays& part, const std::string& text)
{
    throw MeshError("in its part " + krTools::inQuotes(part.name) + ' ' + text);
}

void checkStreams(const PartArrays& part)
{
    for (std::size_t slot = 0; slot < kStreamSlots; ++slot)
    {
        const std::size_t size = part.values[slot].size();
        const std::size_t components = kStreamKinds[slot].components;
        if (size % components != 0 || (size != 0 && size / components != part.vertexCount()))
            fail(part, "there are not as many values of " + std::string(kStreamKinds[slot].name) + " as vertices");
    }
    if (part.triangles.size() % 3 != 0 || part.edges.size() % 2 != 0)
        fail(part, "a triangle or an edge is cut off");
}

void checkEntries(const PartArrays& part)
{
    const std::size_t count = part.vertexCount();
    for (const std::vector<unsigned>* entries : {&part.triangles, &part.edges})
        for (const unsigned vertex : *entries)
            if (vertex >= count)
                fail(part,
                     "a corner is vertex " + std::to_string(vertex) + ", counted from 0, of " + std::to_string(count));
}

void checkPositions(const PartArrays& part)
{
    for (const unsigned vertex : part.triangles)
        for (std::size_t axis = 0; axis < 3; ++axis)
        {
            const float value = part.values[kPositions][std::size_t{3} * vertex + axis];
            if (!(std::abs(value) <= kFarthest))
                fail(part, "vertex " + std::to_string(vertex) + ", counted from 0, has the coordinate " +
                               krTools::digitsOf(value));
        }
}

} // namespace

void checkPart(const PartArrays& part)
{
    checkStreams(part);
    checkEntries(part);
    checkPositions(part);
}
