#pragma once
#include "Streams.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

/// A part of a mesh as plain arrays.
struct PartArrays
{
    std::string name;
    bool isTransparent = false;
    /// The values of the streams, vertex after vertex; empty where there is no such stream.
    std::array<std::vector<float>, kStreamSlots> values{};
    std::vector<unsigned> triangles{}; ///< three vertices each, counter-clockwise seen from the front
    std::vector<unsigned> edges{};     ///< two vertices each

    [[nodiscard]] std::size_t vertexCount() const noexcept
    {
        return values[kPositions].size() / kStreamKinds[kPositions].components;
    }
};
