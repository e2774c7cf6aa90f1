#pragma once
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>

#include <cstdint>
#include <span>

/// The frustum's tests of many volumes, with the choice of registers left to the caller.
namespace krSpatial
{

/// Whether the processor has registers for four doubles.
[[nodiscard]] bool hasWideRegisters() noexcept;

/// Frustum::classifySpheres.
/// @param wide  whether to use registers for four doubles, which the processor must have
void classifySpheres(const Frustum& frustum, std::span<const BoundingSphere> spheres, std::span<std::uint8_t> visible,
                     bool wide) noexcept;

/// Frustum::classifyBoxes.
/// @param wide  whether to use registers for four doubles, which the processor must have
void classifyBoxes(const Frustum& frustum, std::span<const AABoundingBox> boxes, std::span<std::uint8_t> visible,
                   bool wide) noexcept;

} // namespace krSpatial
