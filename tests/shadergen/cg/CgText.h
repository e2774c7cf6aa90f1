#pragma once
#include "../Scenes.h"

/// What is wrong with the parts of a pair of Cg programs that the front end passes over, a line a fault.
[[nodiscard]] std::string cgTextFaults(const scenes::Programs& programs);
