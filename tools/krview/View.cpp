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
constexpr float kLeastDistance = 0.1f;
constexpr float kGreatestDistance = 1000.0f;

float fitted(float distance) { return std::clamp(distance, kLeastDistance, kGreatestDistance); }

} // namespace

View::View(const Scene& scene) { reset(scene); }

void View::reset(const Scene& scene)
{
    fScene = scene;
    fOpening = scene.opening;
    setDistance(scene.distance);
    setTranslation({-scene.target[0], -scene.target[1], -scene.target[2]});
    turn(scene.pitch, scene.yaw);
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
