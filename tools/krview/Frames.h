#pragma once
class Stage;

/// The moment that a frame of a counted run shows, in seconds from the beginning: the same in each run.
/// @param frame  from 1
[[nodiscard]] constexpr double momentOfFrame(unsigned frame) noexcept { return frame / 60.0; }

/// Prints what --stats promises.
/// @param frames  that were drawn
void printStats(const Stage& stage, unsigned frames);
