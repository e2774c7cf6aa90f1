#pragma once
#include <cstddef>

/// The most bytes of a mesh file, and of each file that it names.
inline constexpr std::size_t kMostMeshFileBytes = std::size_t{256} << 20;

/// Bounds this process for good, before it reads what may be hostile: its processor time, its memory, and that it writes
/// no files. It ends with its parent.
void limitReader();

/// Gives this process the time and the memory that reading a further file takes, if it is an honest one.
void allowReading(std::size_t fileBytes);
