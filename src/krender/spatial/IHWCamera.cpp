#include <krender/spatial/IHWCamera.h>

#include <krender/platform/Linear.h>
#include <krender/spatial/Frustum.h>
#include <krender/spatial/IBoundingVolume.h>
#include <krender/spatial/IBounds.h>

#include <cmath>
#include <numbers>

using krLinear::ProjMatrix;

// Assignment copies the frustum's planes; the frustum's own copy constructor does not.
IHWCamera::IHWCamera(const IHWCamera& other) : IHWCamera() { *this = other; }

IHWCamera::~IHWCamera() = default;

void IHWCamera::bind() {}

void IHWCamera::getFrustum(double& left, double& right, double& bottom, double& top, double& near,
                           double& far) const noexcept
{
    left = fParameters.left;
    right = fParameters.right;
    bottom = fParameters.bottom;
    top = fParameters.top;
    near = fParameters.near;
    far = fParameters.far;
}

bool IHWCamera::intersects(const IBoundingVolume& volume) const
{
    return fFrustum.classify(IBounds::Intersect, volume);
}

void IHWCamera::setFrustum(double left, double right, double bottom, double top, double near, double far)
{
    fProjectionKind = kPerspective;
    fParameters = {left, right, top, bottom, near, far};
    ProjMatrix m(0.0);
    m(0, 0) = 2.0 * near / (right - left);
    m(1, 1) = 2.0 * near / (top - bottom);
    m(2, 0) = (right + left) / (right - left);
    m(2, 1) = (top + bottom) / (top - bottom);
    m(2, 2) = (near + far) / (near - far);
    m(2, 3) = -1.0;
    m(3, 2) = 2.0 * near * far / (near - far);
    setProjMatrix(m);
}

void IHWCamera::setPerspective(double fovy, double aspect, double near, double far)
{
    const double top = std::tan(fovy * std::numbers::pi / 360.0) * near;
    const double right = top * aspect;
    setFrustum(-right, right, -top, top, near, far);
}

void IHWCamera::setOrtho(double left, double right, double bottom, double top, double near, double far)
{
    fProjectionKind = kOrthographic;
    fParameters = {left, right, top, bottom, near, far};
    ProjMatrix m(0.0);
    m(0, 0) = 2.0 / (right - left);
    m(1, 1) = 2.0 / (top - bottom);
    m(2, 2) = -2.0 / (far - near);
    m(3, 0) = -(right + left) / (right - left);
    m(3, 1) = -(top + bottom) / (top - bottom);
    m(3, 2) = -(far + near) / (far - near);
    m(3, 3) = 1.0;
    setProjMatrix(m);
}

void IHWCamera::setOrthographic(double width, double ratio, double near, double far)
{
    const double half = 0.5 * width;
    setOrtho(-half, half, -half * ratio, half * ratio, near, far);
}

void IHWCamera::setProjMatrix(const ProjMatrix& matrix)
{
    fProjMatrix = matrix;
    recomputeFrustum();
}

void IHWCamera::setViewMatrix(const krLinear::AffineMatrix& matrix)
{
    fViewMatrix = matrix;
    recomputeFrustum();
}

void IHWCamera::recomputeFrustum()
{
    const krLinear::AffineMatrix view = invertViewMatrix ? fViewMatrix.inverse() : fViewMatrix;
    fFrustum.recomputePlaneEquations(ProjMatrix(view) * fProjMatrix);
}
