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

/// What this build's krview can draw with, as --api says it.
inline std::vector<std::string> apis()
{
#ifdef KRENDER_HAS_TARGETS
    return {"gl2.1", "gl3.3"};
#else
    return {"gl2.1"};
#endif
}
