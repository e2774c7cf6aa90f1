#pragma once
#include <common/Findings.h>

#include <string>
#include <vector>

namespace krTools
{

/// What is wrong with the two programs of a material.
struct PairFindings
{
    Findings vertex;
    Findings fragment;
    std::vector<std::string> pair; ///< what is wrong between them and has no place in either; one text an error

    [[nodiscard]] bool hasErrors() const noexcept
    {
        return vertex.hasErrors() || fragment.hasErrors() || !pair.empty();
    }
};

} // namespace krTools
