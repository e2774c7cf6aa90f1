#include "OptionsText.h"

#include "Keys.h"
#include "SceneFile.h"
#include "SceneOptions.h"
#include "SceneReader.h"
#include "SceneText.h"
#include "TextEdit.h"

#include <algorithm>
#include <cstddef>
#include <set>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

using Json = Key::Json;

namespace
{

/// A word as a shell reads it as one.
std::string quoted(const std::string& word)
{
    constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_./:=,+-@%";
    if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos)
        return word;
    std::string text(1, '\'');
    for (const char c : word)
        if (c == '\'')
            text += "'\\''";
        else
            text += c;
    return text + '\'';
}

/// Values of inputs as scene files say them, with files named from the working folder.
Json written(InputValues inputs)
{
    const Json values = inputsKey("", inputs).write("");
    return values.is_null() ? Json::object() : values;
}

/// A value as --set takes it.
std::string settingOf(const Json& value)
{
    if (value.is_string())
    {
        const auto name = value.get<std::string>();
        const bool isName = std::holds_alternative<NamedValue>(inputOfOption("", name).value) && name.front() != '{';
        return isName ? name : flatText(Json{{"picture", name}});
    }
    if (!value.is_array())
        return flatText(value);
    std::string numbers;
    for (const Json& number : value)
    {
        if (!numbers.empty())
            numbers += ',';
        numbers += flatText(number);
    }
    return numbers;
}

std::vector<std::string> lightsOf(const Scene& scene)
{
    std::vector<std::string> lights;
    for (const krTools::LightName& light : scene.lights.value_or(std::vector<krTools::LightName>()))
        lights.push_back(light.key + '=' + (light.file.empty() ? "" : light.file + ':') + light.function);
    return lights;
}

/// The options that turn one scene into another.
class Difference
{
public:
    Difference(const Scene& from, const Scene& to) : fFrom(from), fTo(to) {}

    [[nodiscard]] std::vector<std::string> words()
    {
        if (!fTo.file.empty())
            add(fTo.file);
        addObject();
        addSources();
        addInputs();
        if (fTo.grid != fFrom.grid)
            add("--grid", std::to_string(fTo.grid));
        if (fTo.width != fFrom.width || fTo.height != fFrom.height)
            add("--size", std::to_string(fTo.width) + 'x' + std::to_string(fTo.height));
        return std::move(fWords);
    }

private:
    void add(const std::string& word) { fWords.push_back(word); }
    void add(const char* option, const std::string& value)
    {
        add(std::string(option));
        add(value);
    }

    void addObject()
    {
        const SceneObject& from = fFrom.objects.front();
        const SceneObject& to = fTo.objects.front();
        if (to.look.material != from.look.material)
            add("--material", to.look.material);
        if (to.mesh.empty() && (to.shape != from.shape || !from.mesh.empty()))
            add("--shape", shapeName(to.shape));
        if (!to.mesh.empty() && to.mesh != from.mesh)
            add("--mesh", to.mesh);
    }

    void addSources()
    {
        if (fTo.stdlib != fFrom.stdlib)
            add("--stdlib", fTo.stdlib);
        for (std::size_t i = fFrom.libraries.size(); i < fTo.libraries.size(); ++i)
            add("--lib", fTo.libraries[i]);
        for (const std::string& folder : fTo.includeFolders)
            add("-I", folder);
        if (fTo.plain)
            add("--plain");
        if (lightsOf(fTo) != lightsOf(fFrom))
            for (const std::string& light : lightsOf(fTo))
                add("--light", light);
    }

    void addInputs()
    {
        // What is set for all replaces what single objects have.
        const std::set<std::string> replaced = addInputs("", written(fFrom.inputs), written(fTo.inputs));
        for (const SceneObject& object : fTo.objects)
        {
            const auto same = std::find_if(fFrom.objects.begin(), fFrom.objects.end(),
                                           [&](const SceneObject& other) { return other.name == object.name; });
            Json before = written(same == fFrom.objects.end() ? InputValues() : same->look.inputs);
            for (const std::string& name : replaced)
                before.erase(name);
            addInputs(object.name.empty() ? "" : object.name + '.', before, written(object.look.inputs));
        }
    }

    /// @return  the names of those that are set
    std::set<std::string> addInputs(const std::string& owner, const Json& from, const Json& to)
    {
        std::set<std::string> names;
        for (const auto& [name, value] : to.items())
            if (!from.contains(name) || from[name] != value)
            {
                add("--set", owner + name + '=' + settingOf(value));
                names.insert(name);
            }
        return names;
    }

    const Scene& fFrom;
    const Scene& fTo;
    std::vector<std::string> fWords;
};

/// The scene that krview shows with these words.
Scene sceneOf(std::vector<std::string> words)
{
    words.insert(words.begin(), "krview");
    std::vector<char*> argv;
    argv.reserve(words.size());
    for (std::string& word : words)
        argv.push_back(word.data());
    return readScene(readOptions(static_cast<int>(argv.size()), argv.data()).value());
}

void addDifferent(const Json& one, const Json& other, std::vector<std::string>& keys)
{
    for (const auto& [key, value] : one.items())
        if ((!other.contains(key) || other[key] != value) && std::find(keys.begin(), keys.end(), key) == keys.end())
            keys.push_back(key);
}

/// The keys of what two scenes say differently.
std::vector<std::string> differentKeys(Scene one, Scene other)
{
    std::vector<std::string> keys;
    const auto compare = [&](const Json& a, const Json& b)
    {
        addDifferent(a, b, keys);
        addDifferent(b, a, keys);
    };
    // Objects are told one by one, so that an only one is told as it would be among others.
    SceneFile list;
    list.objects.emplace();
    Json a = writtenScene(sceneFileOf(std::move(one), list), "");
    Json b = writtenScene(sceneFileOf(std::move(other), list), "");
    for (std::size_t i = 0; i < std::max(a["objects"].size(), b["objects"].size()); ++i)
        compare(a["objects"][i], b["objects"][i]);
    a.erase("objects");
    b.erase("objects");
    compare(a, b);
    return keys;
}

} // namespace

OptionsText optionsText(const Scene& scene)
{
    Scene before;
    if (!scene.file.empty())
    {
        const SceneText text = readSceneText(scene.file);
        before = sceneOf(readSceneFile(text), text);
    }
    const std::vector<std::string> words = Difference(before, scene).words();
    const auto textOf = [&words](std::size_t first)
    {
        std::string text;
        for (std::size_t i = first; i < words.size(); ++i)
        {
            text += text.empty() ? "" : " ";
            text += quoted(words[i]);
        }
        return text;
    };
    return {textOf(0), textOf(scene.file.empty() ? 0 : 1), differentKeys(sceneOf(words), scene)};
}
