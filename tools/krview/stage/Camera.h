#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/IHWCamera.h>

/// A camera that loads its matrices into OpenGL.
class Camera : public IHWCamera
{
public:
    void bind() override;

    /// From the scene to clip space.
    [[nodiscard]] krLinear::ProjMatrix worldToClip() const;
    /// The position of the eye in the scene.
    [[nodiscard]] krLinear::Point eye() const;
};
