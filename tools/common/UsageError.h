#pragma once
#include <stdexcept>

namespace krTools
{

/// A command line that makes no sense; the text says why.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

} // namespace krTools
