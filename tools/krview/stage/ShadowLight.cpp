#include "ShadowLight.h"

#include "Camera.h"

#include <krview/scene/InputError.h>

#include <common/PrintedMessage.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <optional>

namespace
{

constexpr double kWidestShadow = 170; // degrees across

std::optional<krLinear::Vector> vectorOf(const NumbersByName& numbersOf, const std::string& name)
{
    const std::vector<double>* numbers = numbersOf(name);
    if (!numbers || numbers->size() < 3)
        return std::nullopt;
    return krLinear::Vector((*numbers)[0], (*numbers)[1], (*numbers)[2]);
}

std::optional<double> numberOf(const NumbersByName& numbersOf, const std::string& name)
{
    const std::vector<double>* numbers = numbersOf(name);
    return numbers && numbers->size() == 1 ? std::optional(numbers->front()) : std::nullopt;
}

/// From the scene to an eye that looks from a place into a direction.
krLinear::AffineMatrix viewFrom(const krLinear::Vector& eye, const krLinear::Vector& towards)
{
    const krLinear::Vector back = (towards * -1).normalized();
    const krLinear::Vector up = std::abs(back.y) > 0.99 ? krLinear::Vector(0, 0, 1) : krLinear::Vector(0, 1, 0);
    const krLinear::Vector right = cross(up, back).normalized();
    const krLinear::Vector top = cross(back, right);
    krLinear::AffineMatrix view(
        std::array<double, 12>{right.x, top.x, back.x, right.y, top.y, back.y, right.z, top.z, back.z, 0, 0, 0});
    view.translate(eye * -1);
    return view;
}

} // namespace

std::string shadowLight(const Scene& scene, const std::vector<ObjectMaterials>& objects)
{
    const std::string& wanted = scene.shadow.light;
    for (const krTools::LightName& light : scene.lights.value_or(defaultLights()))
        for (const ObjectMaterials& object : objects)
            for (const Material* material : object.materials)
                if ((wanted.empty() || light.key == wanted) && inputOf(*material, light.key, kSampler2DShadow))
                    return light.key;
    if (!wanted.empty())
        throw InputError(scene.shadow.origin, "shadow.light: " + krTools::inQuotes(wanted) +
                                                  " is no light of this scene that takes a depth map");
    return "";
}

const ProgramInput* inputOf(const Material& material, const std::string& light, DataType type)
{
    const auto found = std::find_if(material.inputs.begin(), material.inputs.end(),
                                    [&](const ProgramInput& input)
                                    { return input.light == light && input.type == type && !input.light.empty(); });
    return found == material.inputs.end() ? nullptr : &*found;
}

Ball ballAround(const AABoundingBox& bounds)
{
    const krLinear::PointFlt centre = bounds.center();
    return {krLinear::Vector(centre.x, centre.y, centre.z),
            std::max(1e-3, static_cast<double>((bounds.max() - bounds.min()).length()) / 2)};
}

krLinear::ProjMatrix shadowView(const std::string& light, const NumbersByName& numbers, const Placements& placements)
{
    const auto [middle, radius] = ballAround(placements.castersBounds());
    const auto [middleOfAll, radiusOfAll] = ballAround(placements.bounds());
    Camera camera;
    const std::optional<krLinear::Vector> position = vectorOf(numbers, light + "position");
    if (!position)
    {
        const krLinear::Vector direction =
            vectorOf(numbers, light + "direction").value_or(krLinear::Vector(0, 1, 0)).normalized();
        camera.setViewMatrix(viewFrom(middle + direction * (2 * radius), direction * -1));
        const double below = dot(middle - middleOfAll, direction) + radiusOfAll;
        camera.setOrtho(-radius, radius, -radius, radius, radius, 2 * radius + std::max(radius, below));
        return camera.worldToClip();
    }
    const krLinear::Vector target = vectorOf(numbers, light + "target").value_or(middle);
    const std::optional<krLinear::Vector> axis = vectorOf(numbers, light + "axis");
    krLinear::Vector towards = axis ? *axis * -1 : target - *position;
    if (!(towards.length() > 0))
        towards = krLinear::Vector(0, -1, 0);
    const double distance = (middle - *position).length();
    const double fitting =
        distance > radius ? 2 * std::asin(radius / distance) * 180 / std::numbers::pi : kWidestShadow;
    const double opening = std::clamp(numberOf(numbers, light + "cone").value_or(fitting), 1.0, kWidestShadow);
    const double distanceOfAll = (middleOfAll - *position).length();
    const double farthest = distanceOfAll + radiusOfAll;
    // A lamp within a large scene: what it points at is ahead of the near plane, however far the rest reaches.
    const double nearest = std::min(0.01 * farthest, 0.2 * (axis ? distance : towards.length()));
    camera.setViewMatrix(viewFrom(*position, towards));
    camera.setPerspective(opening, 1, std::max({distanceOfAll - radiusOfAll, nearest, 1e-6 * farthest}), farthest);
    return camera.worldToClip();
}

const krLinear::ProjMatrix& clipToMap()
{
    static const krLinear::ProjMatrix kMatrix(
        std::array<double, 16>{0.5, 0, 0, 0, 0, 0.5, 0, 0, 0, 0, 0.5, 0, 0.5, 0.5, 0.5, 1});
    return kMatrix;
}
