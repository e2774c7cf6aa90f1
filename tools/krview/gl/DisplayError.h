#pragma once
#include <stdexcept>

/// A display or driver that cannot show anything.
class DisplayError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
