#include <krender/window/TumbleWindowsHandler.h>

#include <krender/platform/Linear.h>

#include <algorithm>

namespace
{

constexpr int kSmallestSide = 8;

/// Deliberate: 180 / pi is rounded to two decimals and the division is done in float, so 90 degrees turn a little more
/// than a right angle.
float radians(float degrees) noexcept { return degrees / 57.29f; }

} // namespace

TumbleWindowsHandler::TumbleWindowsHandler() = default;

TumbleWindowsHandler::~TumbleWindowsHandler() = default;

bool TumbleWindowsHandler::needsRefresh() const { return fRefreshNeeded; }

void TumbleWindowsHandler::windowMoved() { fRefreshNeeded = true; }

void TumbleWindowsHandler::resize(int width, int height)
{
    fResized = true;
    fRefreshNeeded = true;
    fWidth = std::max(width, kSmallestSide);
    fHeight = std::max(height, kSmallestSide);
}

void TumbleWindowsHandler::mouseButton(int, int, int, int) {}

const krLinear::AffineMatrix& TumbleWindowsHandler::viewMatrix()
{
    if (!fMatrixDirty)
        return fViewMatrix;
    fViewMatrix = fBaseMatrix;
    fViewMatrix.rotate(radians(fAngleY), krLinear::Normal(0, 1, 0));
    fViewMatrix.rotate(radians(fAngleX), krLinear::Normal(1, 0, 0));
    fViewMatrix.rotate(radians(fAngleZ), krLinear::Normal(0, 0, 1));
    // The third column is the eye's z axis in the space of the scene, so this pushes the scene straight away from the eye.
    const double back = -fDistance;
    fViewMatrix.translate(
        krLinear::Vector(back * fViewMatrix(0, 2), back * fViewMatrix(1, 2), back * fViewMatrix(2, 2)));
    fViewMatrix.translate(fTranslation);
    fMatrixDirty = false;
    return fViewMatrix;
}

void TumbleWindowsHandler::setAngles(float x, float y, float z)
{
    fAngleX = x;
    fAngleY = y;
    fAngleZ = z;
    viewChanged();
}

void TumbleWindowsHandler::setDistance(float distance)
{
    fDistance = distance;
    viewChanged();
}

void TumbleWindowsHandler::setTranslation(const krLinear::Vector& translation)
{
    fTranslation = translation;
    viewChanged();
}

void TumbleWindowsHandler::setBaseMatrix(const krLinear::AffineMatrix& base)
{
    fBaseMatrix = base;
    viewChanged();
}

void TumbleWindowsHandler::markDrawn() noexcept
{
    fRefreshNeeded = false;
    fResized = false;
}

void TumbleWindowsHandler::viewChanged() noexcept
{
    fMatrixDirty = true;
    fRefreshNeeded = true;
}
