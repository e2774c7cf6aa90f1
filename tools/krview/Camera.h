#pragma once
#include <krender/spatial/IHWCamera.h>

/// A camera that loads its matrices into OpenGL.
class Camera : public IHWCamera
{
public:
    void bind() override;

    /// The eye's place in the scene.
    [[nodiscard]] krLinear::Point eye() const;
};
