#include "View.h"

#include <krender/platform/Linear.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace
{

constexpr int kLeftButton = 1;
constexpr int kRightButton = 3;
constexpr int kWheelUp = 4;
constexpr int kWheelDown = 5;

constexpr float kDegreesPerPixel = 0.4f;
constexpr float kWheelStep = 1.1f;

float fitted(float distance) { return std::clamp(distance, kLeastDistance, kGreatestDistance); }

} // namespace

View::View(const Scene& scene) { reset(scene); }

void View::reset(const Scene& scene)
{
    fScene = scene;
    show(scene);
}

void View::show(const Scene& scene)
{
    fOpening = scene.opening;
    setDistance(scene.distance);
    setTranslation({-scene.target[0], -scene.target[1], -scene.target[2]});
    turn(scene.pitch, scene.yaw);
}

void View::store(Scene& scene) const
{
    scene.pitch = fPitch;
    scene.yaw = angleY();
    scene.distance = distance();
    scene.opening = fOpening;
    scene.target = {-translation().x, -translation().y, -translation().z};
    scene.isFramed = false;
}

void View::frame(const AABoundingBox& bounds)
{
    const krLinear::PointFlt middle = bounds.center();
    setTranslation({-middle.x, -middle.y, -middle.z});
    const double radius = (bounds.max() - bounds.min()).length() / 2;
    const double aspect = height() > 0 ? static_cast<double>(width()) / height() : 1;
    const double upright = std::tan(fOpening * std::numbers::pi / 360);
    const double half = std::atan(std::min(upright, upright * aspect));
    constexpr double kMargin = 1.05;
    setDistance(fitted(static_cast<float>(kMargin * radius / std::sin(half))));
}

View::Commands View::takeCommands() noexcept { return std::exchange(fCommands, {}); }

void View::turn(float pitch, float yaw)
{
    // The handler applies its angle about y last. The scene turns about its own upright axis and is tipped towards the
    // eye afterwards, so the pitch goes into the base matrix.
    fPitch = std::clamp(pitch, -90.0f, 90.0f);
    krLinear::AffineMatrix base;
    base.rotate(fPitch * std::numbers::pi / 180, krLinear::Normal(1, 0, 0));
    setBaseMatrix(base);
    setAngles(0, std::remainder(yaw, 360.0f), 0);
}

void View::keyboard(unsigned key)
{
    switch (key)
    {
    case 'r':
        return reset(Scene(fScene));
    case 's':
        fCommands.savePicture = true;
        return;
    case 'a':
        fCommands.toggleAxes = true;
        return windowMoved();
    case 'w':
        fCommands.toggleWire = true;
        return windowMoved();
    case 'f':
        fCommands.frame = true;
        return;
    case 'q':
        fCommands.quit = true;
        return;
    default:
        return;
    }
}

void View::mouseButton(int button, int action, int x, int y)
{
    if (action == kPressed && (button == kWheelUp || button == kWheelDown))
        return setDistance(fitted(button == kWheelUp ? distance() / kWheelStep : distance() * kWheelStep));
    if (action == kPressed)
    {
        fDrag = {.button = button,
                 .startX = x,
                 .startY = y,
                 .lastX = x,
                 .lastY = y,
                 .turning = button == kLeftButton,
                 .moving = button == kRightButton,
                 .startAngleY = angleY(),
                 .startDistance = distance()};
        fStartPitch = fPitch;
        return;
    }
    fDrag.lastX = x;
    fDrag.lastY = y;
    const auto right = static_cast<float>(x - fDrag.startX);
    const auto down = static_cast<float>(y - fDrag.startY);
    if (fDrag.turning)
        turn(fStartPitch + kDegreesPerPixel * down, fDrag.startAngleY + kDegreesPerPixel * right);
    else if (fDrag.moving)
        setDistance(fitted(fDrag.startDistance * std::exp(down / 200)));
    if (action == kReleased && button == fDrag.button)
        fDrag = {};
}
