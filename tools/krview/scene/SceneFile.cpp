#include "SceneFile.h"

#include "InputError.h"
#include "ObjectKeys.h"
#include "SceneValue.h"

#include <common/PrintedMessage.h>
#include <common/Words.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

using krTools::inQuotes;

namespace
{

using Json = Key::Json;

Key lightsKey(std::optional<std::vector<SceneLight>>& lights)
{
    const auto settle = [](const SceneValue& value, std::vector<SceneLight>& all)
    {
        krTools::LightName& light = all.back().name;
        light.place = value.path();
        light.source = value.place().source;
        light.position = value.place().position;
        if (light.function.empty())
            value.fail("a \"function\" is missing");
        if (!krTools::isName(light.key))
            value.fail("a \"key\" is missing, a name that tells the light from others");
        if (std::any_of(all.begin(), all.end() - 1,
                        [&](const SceneLight& other) { return other.name.key == light.key; }))
            value.fail("another light has the key " + inQuotes(light.key));
    };
    return listKey("lights", lights, lightKeys, settle, [](const SceneLight&, std::size_t) { return SceneLight(); });
}

Key environmentKey(std::optional<Environment>& environment)
{
    return {"environment",
            [&environment](const SceneValue& value)
            {
                environment.emplace().origin = value.place();
                if (value.isText())
                    return pictureKey("", environment->picture).read(value);
                readKeys(value, environmentKeys(*environment));
                if (!value.has("picture"))
                    value.fail("a \"picture\" is missing");
            },
            [&environment](const std::string& folder)
            {
                Environment blank;
                return environment
                           ? shortened(writtenKeys(environmentKeys(*environment), environmentKeys(blank), folder))
                           : Json();
            }};
}

Key sizeKey(Scene& scene)
{
    return {"size",
            [&scene](const SceneValue& value)
            {
                unsigned* side = &scene.width;
                (void)value.numbers(2);
                value.forEachItem(
                    [&](const SceneValue& item)
                    {
                        *side = item.wholeNumber(kLeastSide, kGreatestSide);
                        side = &scene.height;
                    });
            },
            [&scene](const std::string&) {
                return Json{scene.width, scene.height};
            }};
}

/// The standard library, or "none".
Key stdlibKey(std::string& stdlib)
{
    Key key = fileKey("stdlib", stdlib);
    return {key.name,
            [&stdlib, key](const SceneValue& value)
            {
                if (value.isText() && value.text() == krTools::kNoLibrary)
                    stdlib = krTools::kNoLibrary;
                else
                    key.read(value);
            },
            [&stdlib, key](const std::string& folder)
            { return stdlib == krTools::kNoLibrary ? Json(stdlib) : key.write(folder); }};
}

/// Objects of any sizes and places are framed where nothing is said of the view; an only one is fitted.
Key viewKey(SceneFile& file)
{
    return {"view", groupKey("", viewKeys(file.scene)).read,
            [&file](const std::string& folder)
            {
                Scene blank;
                Json view = writtenKeys(viewKeys(file.scene), viewKeys(blank), folder);
                if (file.objects && file.objects->size() > 1)
                {
                    if (view.empty())
                        return Json{{"frame", false}};
                    if (view == Json{{"frame", true}})
                        return Json();
                }
                return view;
            }};
}

/// Editors find the schema by it.
Key schemaKey()
{
    return {"$schema", [](const SceneValue& v) { (void)v.text(); }, [](const std::string&) { return Json(); }};
}

void settleObjects(SceneFile& file, const SceneValue& root)
{
    if (!file.objects)
        file.objects = {file.only};
    else
        for (const Key& key : shapeKeys(file.only))
            if (key.name != "material" && root.has(key.name))
                root.fail(inQuotes(key.name) + " is a key of each of the \"objects\" here");
    for (SceneObject& object : *file.objects)
    {
        if (object.look.material.empty())
            object.look.material = file.only.look.material;
        if (object.look.material.empty())
            root.fail("a \"material\" is missing" + (object.name.empty() ? "" : " for " + inQuotes(object.name)));
    }
    if (file.scene.grid > 1 && file.objects->size() > 1)
        root.fail("a \"grid\" is of the only object: this scene has several");
}

/// Whether an object can be told of without a list of objects.
bool standsAlone(const SceneObject& object)
{
    const SceneObject blank;
    return (object.name.empty() || object.name == "object1") && object.position == blank.position &&
           object.rotation == blank.rotation && object.scale == blank.scale && object.isFitted == blank.isFitted &&
           object.castsShadow == blank.castsShadow;
}

/// Puts the inputs of lights beside them, but for those that stand beside the material in `like`.
void sortInputs(SceneFile& file, const SceneFile& like)
{
    InputValues rest;
    for (auto& [name, value] : file.scene.inputs)
    {
        SceneLight* owner = nullptr; // the one with the longest key that fits
        for (SceneLight& light : *file.lights)
            if (const std::string& key = light.name.key;
                name.size() > key.size() && name.starts_with(key) && (!owner || owner->name.key.size() < key.size()))
                owner = &light;
        if (owner && !like.scene.inputs.contains(name))
            owner->inputs[name.substr(owner->name.key.size())] = std::move(value);
        else
            rest[name] = std::move(value);
    }
    file.scene.inputs = std::move(rest);
}

} // namespace

Keys viewKeys(Scene& scene)
{
    return {numberKey("pitch", scene.pitch, -90, 90),
            numberKey("yaw", scene.yaw, -360, 360),
            numberKey("distance", scene.distance, kLeastDistance, kGreatestDistance),
            numberKey("opening", scene.opening, 1, 150),
            tripleKey("target", scene.target),
            truthKey("frame", scene.isFramed)};
}

Keys backgroundKeys(Scene& scene) { return {colourKey("top", scene.top), colourKey("bottom", scene.bottom)}; }

Keys environmentKeys(Environment& environment)
{
    return {pictureKey("picture", environment.picture), numberKey("turn", environment.turn, -360, 360),
            numberKey("intensity", environment.intensity, 0, 1000), truthKey("background", environment.isShown),
            numberKey("blur", environment.blur, 0, 1)};
}

Keys shadowKeys(Shadow& shadow)
{
    Key light = textKey("light", shadow.light);
    light.read = [&shadow](const SceneValue& value)
    {
        shadow.light = value.text();
        shadow.origin = value.place();
    };
    return {light, wholeNumberKey("size", shadow.size, kLeastShadow, kGreatestShadow)};
}

Keys lightKeys(SceneLight& light)
{
    return {textKey("key", light.name.key), textKey("function", light.name.function),
            fileKey("source", light.name.file), inputsKey("inputs", light.inputs)};
}

Keys sceneKeys(SceneFile& file)
{
    Scene& scene = file.scene;
    Keys keys{schemaKey()};
    for (Key& key : shapeKeys(file.only))
        keys.push_back(std::move(key));
    for (Key& key :
         Keys{stdlibKey(scene.stdlib), filesKey("libraries", scene.libraries), inputsKey("inputs", scene.inputs),
              objectsKey(file.objects), lightsKey(file.lights), groupKey("shadow", shadowKeys(scene.shadow)),
              environmentKey(scene.environment), wholeNumberKey("grid", scene.grid, 1, kMostObjects),
              numberKey("spacing", scene.spacing, 0, 1000), truthKey("axes", scene.axes), truthKey("wire", scene.wire),
              viewKey(file), groupKey("background", backgroundKeys(scene)),
              wholeNumberKey("samples", scene.samples, 1, kMostSamples), truthKey("encode", scene.encodes),
              sizeKey(scene)})
        keys.push_back(std::move(key));
    return keys;
}

SceneFile readSceneFile(const SceneText& text)
{
    SceneFile file;
    const SceneValue root(text, text.root, "");
    readKeys(root, sceneKeys(file));
    if (file.objects && file.objects->size() > 1 && !root.has("view"))
        file.scene.isFramed = true;
    return file;
}

Scene sceneOf(SceneFile file, const SceneText& text)
{
    settleObjects(file, SceneValue(text, text.root, ""));
    Scene scene = std::move(file.scene);
    scene.objects = std::move(*file.objects);
    if (file.lights)
        scene.lights.emplace();
    for (SceneLight& light : file.lights.value_or(std::vector<SceneLight>()))
    {
        for (auto& [name, value] : light.inputs)
            if (const auto [at, isNew] = scene.inputs.emplace(light.name.key + name, value); !isNew)
                throw InputError(value.origin, value.place + ": " + at->second.place + " is this input too");
        scene.lights->push_back(std::move(light.name));
    }
    scene.file = text.source->name();
    scene.files.push_back(scene.file);
    return scene;
}

SceneFile sceneFileOf(Scene scene, const SceneFile& like)
{
    SceneFile file;
    if (scene.lights)
        file.lights.emplace();
    for (krTools::LightName& light : scene.lights.value_or(std::vector<krTools::LightName>()))
        file.lights->push_back({std::move(light), {}});
    if (like.objects || scene.objects.size() > 1 || !standsAlone(scene.objects.front()))
    {
        file.only.look.material = like.objects ? like.only.look.material : "";
        for (SceneObject& object : scene.objects)
            if (object.look.material == file.only.look.material)
                object.look.material.clear();
        file.objects = std::move(scene.objects);
    }
    else
    {
        file.only = std::move(scene.objects.front());
        for (auto& [name, value] : file.only.look.inputs)
            scene.inputs[name] = std::move(value);
    }
    file.scene = std::move(scene);
    if (file.lights)
        sortInputs(file, like);
    return file;
}

Json writtenScene(SceneFile file, const std::string& folder)
{
    SceneFile blank;
    return writtenKeys(sceneKeys(file), sceneKeys(blank), folder);
}
