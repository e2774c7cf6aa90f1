#pragma once
#include <krender/pixels/Color.h>

/// How a texture lies on a surface. The host's placements add what they need.
class KRENDER_EXPORT IHWTexPlacement
{
public:
    IHWTexPlacement() noexcept;
    IHWTexPlacement(const IHWTexPlacement&) = default;
    IHWTexPlacement& operator=(const IHWTexPlacement&) = default;
    virtual ~IHWTexPlacement();

    /// What shows where the texture does not reach; opaque black until set.
    krColor::Color defaultColor;
};
