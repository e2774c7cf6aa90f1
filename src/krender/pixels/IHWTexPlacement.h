#pragma once
#include <krender/Export.h>
#include <krender/pixels/Color.h>

/// How a texture is placed on a surface. The host derives its own placements from it.
class KRENDER_EXPORT IHWTexPlacement
{
public:
    IHWTexPlacement() noexcept;
    IHWTexPlacement(const IHWTexPlacement&) = default;
    IHWTexPlacement& operator=(const IHWTexPlacement&) = default;
    virtual ~IHWTexPlacement();

    /// The colour where the texture does not cover the surface; opaque black until set.
    krColor::Color defaultColor;
};
