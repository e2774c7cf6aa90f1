#include "LightChoices.h"

#include <common/DataFiles.h>
#include <common/MaterialCompiler.h>
#include <common/Source.h>
#include <common/SourceNames.h>

#include <krender/frontend/Interface.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <system_error>

namespace fs = std::filesystem;

namespace
{

/// Appends the lights of a file; of one that cannot be read there are none.
void addLights(const Scene& scene, const std::string& path, bool isNamed, std::vector<LightChoice>& choices)
{
    try
    {
        const krFrontend::Module module = krTools::readModule(path, {scene.includeFolders, nullptr});
        for (const krFrontend::ShaderInterface& shader : krFrontend::interfaceOf(module))
            if (shader.kind == krFrontend::ShaderKind::Light && shader.hasBody)
                choices.push_back({shader.name, isNamed ? path : ""});
    }
    catch (const krTools::FileError&)
    {
    }
}

} // namespace

std::vector<LightChoice> lightChoices(const Scene& scene)
{
    std::vector<LightChoice> choices;
    std::set<std::string> materials;
    for (const SceneObject& object : scene.objects)
        materials.insert(krTools::materialName(object.look.material).file);
    for (const std::string& file : materials)
        addLights(scene, file, false, choices);
    for (const std::string& file : krTools::libraryFiles(scene.stdlib, scene.libraries))
        addLights(scene, file, false, choices);
    std::set<std::string> files;
    std::error_code failure;
    fs::directory_iterator entry(krTools::dataFile("lights"), failure);
    for (; !failure && entry != fs::directory_iterator(); entry.increment(failure))
        if (entry->path().extension() == ".krs")
            files.insert(entry->path().string());
    for (const krTools::LightName& light : scene.lights.value_or(defaultLights()))
        if (!light.file.empty())
            files.insert(light.file);
    for (const std::string& file : files)
        addLights(scene, file, true, choices);
    return choices;
}

std::string newLightKey(const std::vector<krTools::LightName>& lights, const std::string& function)
{
    constexpr std::string_view kEnd = "Light";
    const std::string base = function.size() > kEnd.size() && function.ends_with(kEnd)
                                 ? function.substr(0, function.size() - kEnd.size())
                                 : function;
    for (unsigned number = 1;; ++number)
    {
        std::string key = number == 1 ? base : base + std::to_string(number);
        if (std::none_of(lights.begin(), lights.end(),
                         [&](const krTools::LightName& light) { return light.key == key; }))
            return key;
    }
}
