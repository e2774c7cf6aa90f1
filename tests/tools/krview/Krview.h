#pragma once
#include "Program.h"

#include <iterator>
#include <sstream>
#include <string>
#include <vector>

/// Runs krview with arguments that are separated by spaces.
inline Outcome krview(const Workplace& place, const std::string& arguments)
{
    std::istringstream text(arguments);
    using Words = std::istream_iterator<std::string>;
    return place.run(KRVIEW_PROGRAM, std::vector<std::string>(Words(text), Words()));
}
