#include "SceneOptions.h"

#include "InputError.h"
#include "Keys.h"
#include "SceneText.h"
#include "SceneValue.h"

#include <common/PrintedMessage.h>
#include <common/Source.h>
#include <common/SourceNames.h>
#include <common/UsageError.h>
#include <common/Words.h>

#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

using krTools::inQuotes;
using krTools::UsageError;

namespace
{

/// Numbers with commas between them, which may be NaN or infinite; nothing when the text is something else.
std::optional<std::vector<double>> numbersOf(const std::string& text)
{
    std::vector<double> numbers;
    const char* at = text.data();
    const char* const end = at + text.size();
    for (;;)
    {
        double number = 0;
        const auto [rest, error] = std::from_chars(at, end, number);
        if (error == std::errc::invalid_argument)
            return std::nullopt;
        // Numbers too small for a double count as 0, those too large as infinity.
        numbers.push_back(error == std::errc() ? number : std::strtod(at, nullptr));
        if (rest == end)
            return numbers;
        if (*rest != ',')
            return std::nullopt;
        at = rest + 1;
    }
}

void applyLights(const Options& options, Scene& scene)
{
    if (!options.lights.empty())
        scene.lights.emplace();
    for (const std::string& option : options.lights)
    {
        krTools::LightName light = krTools::lightName(option);
        for (const krTools::LightName& other : *scene.lights)
            if (other.key == light.key)
                throw UsageError(light.place + ": another light has this key, and their inputs would clash");
        scene.lights->push_back(std::move(light));
    }
}

/// The object that a setting "OBJECT.NAME=VALUE" names, which loses the "OBJECT."; null for one that names none.
SceneObject* takeObject(const std::string& option, std::string& name, Scene& scene)
{
    const std::size_t dot = name.find('.');
    if (dot == std::string::npos)
        return nullptr;
    const std::string object = name.substr(0, dot);
    name.erase(0, dot + 1);
    std::vector<std::string> names;
    for (SceneObject& known : scene.objects)
        if (names.push_back(known.name); known.name == object)
            return &known;
    throw UsageError("--set " + option + ": there is no object " + inQuotes(object) +
                     krFrontend::didYouMean(object, names));
}

void applySetting(const std::string& option, Scene& scene)
{
    const std::size_t equals = std::min(option.find('='), option.size());
    std::string name = option.substr(0, equals);
    SceneObject* const object = takeObject(option, name, scene);
    if (equals + 1 >= option.size() || !krTools::isName(name))
        throw UsageError("--set " + option + ": NAME=VALUE or OBJECT.NAME=VALUE is wanted");
    // What the scene says for single objects and parts must not stand ahead of it.
    for (SceneObject& each : scene.objects)
        if (!object || object == &each)
            for (Look* look : looksOf(each))
                look->inputs.erase(name);
    (object ? object->look.inputs : scene.inputs)[name] = inputOfOption("--set " + option, option.substr(equals + 1));
}

} // namespace

InputValue inputOfOption(const std::string& place, const std::string& text)
{
    InputValue input{{}, {"krview", nullptr, 0}, place};
    if (text.starts_with('{'))
    {
        const SceneText object = readSceneText(std::make_shared<const krTools::Source>("krview", text));
        input.value = readInput(SceneValue(object, object.root, place)).value;
    }
    else if (const auto numbers = numbersOf(text))
        input.value = *numbers;
    else if (text == "true" || text == "false")
        input.value = std::vector<double>{text == "true" ? 1.0 : 0.0};
    else
        input.value = NamedValue{text, "", 0};
    return input;
}

void applyOptions(const Options& options, Scene& scene)
{
    SceneObject& first = scene.objects.front();
    if (!options.material.empty())
        first.look.material = options.material;
    if (!options.shape.empty())
    {
        const auto found = std::find(kShapeNames.begin(), kShapeNames.end(), options.shape);
        first.shape = static_cast<Shape>(found - kShapeNames.begin());
        first.mesh.clear();
    }
    if (!options.mesh.empty())
        first.mesh = options.mesh;
    if (!options.stdlib.empty())
        scene.stdlib = options.stdlib;
    scene.libraries.insert(scene.libraries.end(), options.libraries.begin(), options.libraries.end());
    scene.includeFolders = options.includeFolders;
    scene.plain = options.plain;
    applyLights(options, scene);
    for (const std::string& option : options.settings)
        applySetting(option, scene);
    if (options.grid != 0)
        scene.grid = options.grid;
    if (scene.grid > 1 && scene.objects.size() > 1)
        throw InputError({"krview", nullptr, 0}, "a grid is of the only object, and this scene has several");
    if (scene.grid > 1 && first.mesh.empty() && first.shape == Shape::Particles)
        throw InputError({"krview", nullptr, 0},
                         "particles are sorted by depth as one object: a grid of them cannot be shown");
    if (!options.size.empty())
        applySize(options.size, scene);
}

void applySize(const std::string& text, Scene& scene)
{
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, scene.width);
    const bool hasHeight = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = std::from_chars(hasHeight ? width.ptr + 1 : end, end, scene.height);
    if (!hasHeight || height.ec != std::errc() || height.ptr != end ||
        std::min(scene.width, scene.height) < kLeastSide || std::max(scene.width, scene.height) > kGreatestSide)
        throw UsageError("--size " + text + ": WxH is wanted, from 8x8 to 8192x8192");
}
