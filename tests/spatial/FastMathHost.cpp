// What a host calls, compiled with fast maths and fused multiplication. FrustumTest.cpp declares these.
#include <krender/spatial/AABoundingBox.h>
#include <krender/spatial/BoundingSphere.h>
#include <krender/spatial/Frustum.h>

bool hostTestsSphere(const Frustum& f, double x, double y, double z, double r) { return f.sphereInFrustum(x, y, z, r); }
bool hostTestsPoint(const Frustum& f, double x, double y, double z) { return f.boxInFrustum(x, y, z, x, y, z); }
// Named calls, which a compiler would inline where it sees the function.
bool hostFindsValid(const AABoundingBox& box) { return box.AABoundingBox::isValid(); }
bool hostFindsValid(const BoundingSphere& sphere) { return sphere.BoundingSphere::isValid(); }
