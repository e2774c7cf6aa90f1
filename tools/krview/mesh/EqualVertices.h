#pragma once
#include "PartArrays.h"

#include <span>
#include <vector>

/// Finds the vertices that are the same in some streams. Takes time in proportion to their number, whatever they are:
/// where very many fall together in its table, some of them pass for different.
/// @param slots  the streams that count; those that the part has not are equal
/// @return  for each vertex the first that has its values, which may be itself
[[nodiscard]] std::vector<unsigned> firstEqualVertices(const PartArrays& part, std::span<const StreamSlot> slots);
