#pragma once
#include <stdexcept>

/// What a mesh file holds makes no mesh; the text says why.
class MeshError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};
