#pragma once
#include <krender/Export.h>
#include <krender/platform/Linear.h>
#include <krender/spatial/Frustum.h>
#include <krender/spatial/IBoundingVolume.h>

#include <cstdint>

class IBoundingVolume;

/// A camera of the hardware renderer: a view matrix, a projection matrix, and the frustum that follows from both. It
/// makes no graphics calls; a derived camera does so in bind().
///
/// Equal left and right, top and bottom, or near and far are not refused: they divide by zero, and planes of the frustum
/// are not finite.
class KRENDER_EXPORT IHWCamera
{
public:
    enum ProjectionKind : std::int32_t
    {
        kPerspective = 0,
        kOrthographic = 1
    };

    /// Makes a camera whose matrices are the identity and whose frustum is invalid until one of them is set.
    IHWCamera() = default;
    /// Copies the planes of the frustum too, so the copy culls as `other` does.
    IHWCamera(const IHWCamera& other);
    IHWCamera& operator=(const IHWCamera&) = default;
    virtual ~IHWCamera();
    /// Loads the matrices into the drawing interface; does nothing in the base class.
    virtual void bind();

    /// Set by setFrustum, setOrtho and the calls that go through them; setProjMatrix leaves it alone.
    [[nodiscard]] ProjectionKind projectionKind() const noexcept { return fProjectionKind; }
    /// Stores the parameters of the last setFrustum or setOrtho, all 0 before the first; setProjMatrix leaves them
    /// alone.
    void getFrustum(double& left, double& right, double& bottom, double& top, double& near, double& far) const noexcept;
    [[nodiscard]] const krLinear::AffineMatrix& viewMatrix() const noexcept { return fViewMatrix; }
    [[nodiscard]] const krLinear::ProjMatrix& projMatrix() const noexcept { return fProjMatrix; }
    /// The frustum in world space.
    [[nodiscard]] const Frustum& frustum() const noexcept { return fFrustum; }
    /// Whether the view matrix maps from eye to world space, and not from world to eye space.
    [[nodiscard]] bool invertsViewMatrix() const noexcept { return invertViewMatrix; }
    /// The frustum's classify for `Intersect`: whether a box or a sphere is visible; false for other volumes.
    [[nodiscard]] bool intersects(const IBoundingVolume& volume) const;

    /// Sets a perspective projection with the matrix of OpenGL's glFrustum. Left, right, bottom and top bound the window
    /// on the near plane, in eye space.
    /// @param near  distance from the eye, greater than 0; `far` likewise
    void setFrustum(double left, double right, double bottom, double top, double near, double far);
    /// Sets a symmetric perspective projection by calling setFrustum.
    /// @param fovy    vertical opening angle in degrees
    /// @param aspect  width over height
    void setPerspective(double fovy, double aspect, double near, double far);
    /// Sets an orthographic projection with the matrix of OpenGL's glOrtho.
    void setOrtho(double left, double right, double bottom, double top, double near, double far);
    /// Sets a symmetric orthographic projection by calling setOrtho.
    /// @param width  of the window, in eye space
    /// @param ratio  height over width
    void setOrthographic(double width, double ratio, double near, double far);
    /// @param matrix  from eye space to clip space
    void setProjMatrix(const krLinear::ProjMatrix& matrix);
    /// @param matrix  from world to eye space, or from eye to world space if invertsViewMatrix()
    void setViewMatrix(const krLinear::AffineMatrix& matrix);
    /// Computes the frustum from both matrices. A derived camera calls it when it has changed invertViewMatrix.
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
    /// Set by a derived camera whose view matrix maps from eye to world space.
    bool invertViewMatrix = false; // NOLINT(readability-identifier-naming): derived cameras know it by this name
};
