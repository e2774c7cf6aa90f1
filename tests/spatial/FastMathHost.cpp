// What a host calls, compiled with the flags of tests/spatial/CMakeLists.txt: fast maths and fused multiplication.
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>

bool hostTestsSphere(const Frustum& frustum, double x, double y, double z, double radius);
bool hostTestsSphere(const Frustum& frustum, double x, double y, double z, double radius)
{
    return frustum.sphereInFrustum(x, y, z, radius);
}

bool hostTestsPoint(const Frustum& frustum, double x, double y, double z);
bool hostTestsPoint(const Frustum& frustum, double x, double y, double z)
{
    return frustum.boxInFrustum(x, y, z, x, y, z);
}

// Named calls, which a compiler would inline where it sees the function.
bool hostFindsValid(const AABoundingBox& box, const BoundingSphere& sphere);
bool hostFindsValid(const AABoundingBox& box, const BoundingSphere& sphere)
{
    return box.AABoundingBox::isValid() && !sphere.BoundingSphere::isValid();
}
