#pragma once
#include <krender/platform/Linear.h>
#include <krender/spatial/Frustum.h>

#include <cstdint>

class IBoundingVolume;

/// A camera of the hardware renderer: a view matrix, a projection and the frustum that follows both. It calls no
/// graphics interface; a derived camera does in bind(). A copy of a camera has no frustum until one of its matrices is
/// set or recomputeFrustum() is called.
///
/// Equal left and right, top and bottom, or near and far are not refused: they divide by zero, and the planes of the
/// frustum are not finite.
class KRENDER_EXPORT IHWCamera
{
public:
    enum ProjectionKind : std::int32_t
    {
        kPerspective = 0,
        kOrthographic = 1
    };

    IHWCamera() = default;
    virtual ~IHWCamera();
    /// Loads the matrices into the drawing interface; nothing to do here.
    virtual void bind();

    /// What the last setFrustum or setOrtho chose; a matrix of the host's own leaves it as it was.
    [[nodiscard]] ProjectionKind projectionKind() const noexcept { return fProjectionKind; }
    /// Fills in the parameters of the last setFrustum or setOrtho, all 0 before the first.
    void getFrustum(double& left, double& right, double& bottom, double& top, double& near, double& far) const noexcept;
    [[nodiscard]] const krLinear::AffineMatrix& viewMatrix() const noexcept { return fViewMatrix; }
    [[nodiscard]] const krLinear::ProjMatrix& projMatrix() const noexcept { return fProjMatrix; }
    /// The frustum in world space.
    [[nodiscard]] const Frustum& frustum() const noexcept { return fFrustum; }
    /// Whether the view matrix is the camera's placement in the world instead of the map from world to eye space.
    [[nodiscard]] bool invertsViewMatrix() const noexcept { return invertViewMatrix; }
    /// Whether a box or a sphere meets the frustum; other volumes never do.
    [[nodiscard]] bool intersects(const IBoundingVolume& volume) const;

    /// A perspective projection through the rectangle on the near plane.
    /// @param near  distance along the view, above 0; `far` likewise
    void setFrustum(double left, double right, double bottom, double top, double near, double far);
    /// A symmetric perspective projection.
    /// @param fovy    vertical opening in degrees
    /// @param aspect  width over height
    void setPerspective(double fovy, double aspect, double near, double far);
    /// A parallel projection of the box.
    void setOrtho(double left, double right, double bottom, double top, double near, double far);
    /// A symmetric parallel projection.
    /// @param ratio  height over width
    void setOrthographic(double width, double ratio, double near, double far);
    /// A projection of the host's own.
    void setProjMatrix(const krLinear::ProjMatrix& matrix);
    void setViewMatrix(const krLinear::AffineMatrix& matrix);
    /// Takes the frustum from both matrices; to be called after a change of invertViewMatrix.
    void recomputeFrustum();

private:
    struct Parameters
    {
        double left = 0.0;
        double right = 0.0;
        double top = 0.0;
        double bottom = 0.0;
        double near = 0.0;
        double far = 0.0;
    };

    ProjectionKind fProjectionKind = kPerspective;
    Parameters fParameters;
    krLinear::AffineMatrix fViewMatrix;
    krLinear::ProjMatrix fProjMatrix;
    Frustum fFrustum;

protected:
    /// Set by derived cameras whose view matrix is their placement.
    bool invertViewMatrix = false;
};
