#pragma once
#include <cstdint>

/// Orders places by ascending depth. Places of equal depth keep their order, and -0 equals 0. A NaN comes before all
/// numbers if its sign is set, else after them.
///
/// A radix sort from the lowest digit up (Knuth, The Art of Computer Programming, volume 3, section 5.2.5) over integers
/// that order as the depths do.
/// @param depths  `count` depths
/// @param order   set to the numbers 0 to count - 1, `count` entries
/// @throws std::bad_alloc  when there is no memory for the passes
void orderByDepth(const float* depths, std::uint32_t count, std::uint32_t* order);
