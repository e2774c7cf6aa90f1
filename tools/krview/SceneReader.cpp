#include "SceneReader.h"

#include "InputError.h"
#include "SceneText.h"
#include "SceneValue.h"

#include <common/DataFiles.h>
#include <common/MaterialCompiler.h>
#include <common/PrintedMessage.h>
#include <common/UsageError.h>
#include <common/Words.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <system_error>
#include <utility>
#include <vector>

using krTools::inQuotes;
using krTools::UsageError;

namespace
{

constexpr unsigned kGreatestSide = 8192;

Shape shapeNamed(const std::string& name)
{
    const auto found = std::find(kShapeNames.begin(), kShapeNames.end(), name);
    return static_cast<Shape>(found - kShapeNames.begin());
}

/// The path of a file that the scene names relative to its own folder. Fails when there is no such file.
std::string fileOf(const SceneValue& value, const std::string& name)
{
    std::string path = (std::filesystem::path(value.file()).parent_path() / name).lexically_normal().string();
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure))
        value.fail("there is no file '" + path + "'");
    return path;
}

std::array<float, 3> colour(const SceneValue& value)
{
    const std::vector<double> numbers = value.numbers(3);
    return {static_cast<float>(numbers[0]), static_cast<float>(numbers[1]), static_cast<float>(numbers[2])};
}

InputValue inputValue(const SceneValue& value)
{
    const std::string directory = std::filesystem::path(value.file()).parent_path().string();
    InputValue input{{}, value.place(), value.path()};
    if (value.isText())
        input.value = NamedValue{value.text(), directory, 0};
    else if (value.isObject())
    {
        NamedValue picture{"", directory, 0};
        value.readMembers({{"picture", [&](const SceneValue& name) { picture.name = name.text(); }},
                           {"normalMap", [&](const SceneValue& scale)
                            { picture.normalScale = static_cast<float>(scale.number(-1000, 1000)); }}});
        if (picture.name.empty())
            value.fail("a \"picture\" is missing");
        input.value = picture;
    }
    else
        input.value = value.numbers();
    return input;
}

void readLight(const SceneValue& value, Scene& scene)
{
    krTools::LightName light;
    light.place = value.path();
    light.source = value.place().source;
    light.position = value.place().position;
    std::map<std::string, InputValue> inputs;
    value.readMembers({
        {"key", [&](const SceneValue& key) { light.key = key.text(); }},
        {"function", [&](const SceneValue& function) { light.function = function.text(); }},
        {"source", [&](const SceneValue& source) { light.file = fileOf(source, source.text()); }},
        {"inputs", [&](const SceneValue& all)
         { all.forEachMember([&](const auto& name, const auto& input) { inputs[name] = inputValue(input); }); }},
    });
    if (light.function.empty())
        value.fail("a \"function\" is missing");
    if (!krTools::isName(light.key))
        value.fail("a \"key\" is missing, a name that tells the light from others");
    for (const krTools::LightName& other : *scene.lights)
        if (other.key == light.key)
            value.fail("another light has the key " + inQuotes(light.key));
    for (auto& [name, input] : inputs)
        scene.inputs[light.key + name] = std::move(input);
    scene.lights->push_back(light);
}

void readView(const SceneValue& value, Scene& scene)
{
    const auto into = [](float& field, double least, double greatest) {
        return [&field, least, greatest](const SceneValue& v)
        { field = static_cast<float>(v.number(least, greatest)); };
    };
    value.readMembers({
        {"pitch", into(scene.pitch, -90, 90)},
        {"yaw", into(scene.yaw, -360, 360)},
        {"distance", into(scene.distance, 0.1, 1000)},
        {"opening", into(scene.opening, 1, 150)},
        {"target",
         [&](const SceneValue& v)
         {
             const std::vector<double> point = v.numbers(3);
             std::copy(point.begin(), point.end(), scene.target.begin());
         }},
    });
}

void readMembers(const SceneValue& file, Scene& scene)
{
    const auto source = [&](std::string& field)
    { return [&field](const SceneValue& v) { field = fileOf(v, v.text()); }; };
    file.readMembers({
        {"material",
         [&](const SceneValue& v)
         {
             const krTools::MaterialName name = krTools::materialName(v.text());
             scene.material = fileOf(v, name.file) + (name.function.empty() ? "" : ":" + name.function);
         }},
        {"stdlib", source(scene.stdlib)},
        {"libraries", [&](const SceneValue& v)
         { v.forEachItem([&](const SceneValue& item) { scene.libraries.push_back(fileOf(item, item.text())); }); }},
        {"inputs", [&](const SceneValue& v)
         { v.forEachMember([&](const auto& name, const auto& input) { scene.inputs[name] = inputValue(input); }); }},
        {"lights",
         [&](const SceneValue& v)
         {
             scene.lights.emplace();
             v.forEachItem([&](const SceneValue& item) { readLight(item, scene); });
         }},
        {"shape",
         [&](const SceneValue& v)
         {
             scene.shape = shapeNamed(v.text());
             if (static_cast<std::size_t>(scene.shape) == kShapeNames.size())
                 v.fail("a shape is wanted here: cube, sphere, cylinder or particles");
         }},
        {"smooth", [&](const SceneValue& v) { scene.smooth = v.truth(); }},
        {"particles", [&](const SceneValue& v) { scene.particles = v.wholeNumber(1, 100000); }},
        {"grid", [&](const SceneValue& v) { scene.grid = v.wholeNumber(1, kMostObjects); }},
        {"spacing", [&](const SceneValue& v) { scene.spacing = v.number(0, 1000); }},
        {"view", [&](const SceneValue& v) { readView(v, scene); }},
        {"background",
         [&](const SceneValue& v)
         {
             v.readMembers({{"top", [&](const SceneValue& top) { scene.top = colour(top); }},
                            {"bottom", [&](const SceneValue& bottom) { scene.bottom = colour(bottom); }}});
         }},
        {"axes", [&](const SceneValue& v) { scene.axes = v.truth(); }},
        {"wire", [&](const SceneValue& v) { scene.wire = v.truth(); }},
        {"size",
         [&](const SceneValue& v)
         {
             unsigned* side = &scene.width;
             (void)v.numbers(2);
             v.forEachItem(
                 [&](const SceneValue& item)
                 {
                     *side = item.wholeNumber(8, kGreatestSide);
                     side = &scene.height;
                 });
         }},
    });
    if (scene.material.empty())
        file.fail("a \"material\" is missing");
}

void readFile(const std::string& path, Scene& scene)
{
    const SceneText text = readSceneText(path);
    readMembers(SceneValue(text, text.root, ""), scene);
    scene.files.push_back(path);
}

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

InputValue inputValue(const std::string& place, const std::string& text)
{
    InputValue input{{}, {"krview", nullptr, 0}, place};
    if (const auto numbers = numbersOf(text))
        input.value = *numbers;
    else if (text == "true" || text == "false")
        input.value = std::vector<double>{text == "true" ? 1.0 : 0.0};
    else
        input.value = NamedValue{text, "", 0};
    return input;
}

void applySize(const std::string& text, Scene& scene)
{
    const char* const end = text.data() + text.size();
    const auto width = std::from_chars(text.data(), end, scene.width);
    const bool hasHeight = width.ec == std::errc() && width.ptr != end && *width.ptr == 'x';
    const auto height = std::from_chars(hasHeight ? width.ptr + 1 : end, end, scene.height);
    if (!hasHeight || height.ec != std::errc() || height.ptr != end || std::min(scene.width, scene.height) < 8 ||
        std::max(scene.width, scene.height) > kGreatestSide)
        throw UsageError("--size " + text + ": WxH is wanted, from 8x8 to 8192x8192");
}

void applyOptions(const Options& options, Scene& scene)
{
    if (!options.material.empty())
        scene.material = options.material;
    if (!options.shape.empty())
        scene.shape = shapeNamed(options.shape);
    if (!options.stdlib.empty())
        scene.stdlib = options.stdlib;
    scene.libraries.insert(scene.libraries.end(), options.libraries.begin(), options.libraries.end());
    scene.includeFolders = options.includeFolders;
    scene.plain = options.plain;
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
    for (const std::string& option : options.settings)
    {
        const std::size_t equals = std::min(option.find('='), option.size());
        const std::string name = option.substr(0, equals);
        if (equals + 1 >= option.size() || !krTools::isName(name))
            throw UsageError("--set " + option + ": NAME=VALUE is wanted");
        scene.inputs[name] = inputValue("--set " + option, option.substr(equals + 1));
    }
    if (options.grid != 0)
        scene.grid = options.grid;
    if (scene.shape == Shape::Particles && scene.grid > 1)
        throw InputError({"krview", nullptr, 0},
                         "particles are sorted by depth as one object: a grid of them cannot be shown");
    if (!options.size.empty())
        applySize(options.size, scene);
}

} // namespace

Scene readScene(const Options& options)
{
    Scene scene;
    std::string file = options.scene;
    if (file.empty() && options.material.empty())
        file = krTools::dataFile("scenes/textured-sphere.json");
    if (!file.empty())
        readFile(file, scene);
    applyOptions(options, scene);
    scene.files.push_back(krTools::materialName(scene.material).file);
    const std::vector<std::string> libraries = krTools::libraryFiles(scene.stdlib, scene.libraries);
    scene.files.insert(scene.files.end(), libraries.begin(), libraries.end());
    for (const krTools::LightName& light : scene.lights.value_or(std::vector<krTools::LightName>()))
        if (!light.file.empty())
            scene.files.push_back(light.file);
    return scene;
}
