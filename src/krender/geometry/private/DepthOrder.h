#pragma once
#include <cstdint>

/// Orders places by depth, ascending; places of one depth keep their order, and -0 is the depth 0. A NaN goes before or
/// after all numbers, after its sign.
///
/// A radix sort from the lowest digit up (Knuth, The Art of Computer Programming, volume 3, section 5.2.5) over the bits
/// of the depths, which are made to order like integers.
/// @param depths  `count` depths
/// @param order   set to the numbers 0 to count - 1
void orderByDepth(const float* depths, std::uint32_t count, std::uint32_t* order);
