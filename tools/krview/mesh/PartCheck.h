#pragma once
#include "PartArrays.h"

/// Throws a MeshError unless a part's streams are equally long, all entries are in range, and the positions of its
/// triangles are numbers that graphics can reckon with.
void checkPart(const PartArrays& part);
