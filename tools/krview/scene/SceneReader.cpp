#include "SceneReader.h"

#include "SceneFile.h"
#include "SceneOptions.h"
#include "SceneText.h"

#include <common/DataFiles.h>
#include <common/MaterialCompiler.h>
#include <common/SourceNames.h>

#include <string>
#include <vector>

Scene readScene(const Options& options)
{
    Scene scene;
    std::string file = options.scene;
    if (file.empty() && options.material.empty())
        file = krTools::dataFile("scenes/textured-sphere.json");
    if (!file.empty())
    {
        const SceneText text = readSceneText(file);
        scene = sceneOf(readSceneFile(text), text);
    }
    applyOptions(options, scene);
    for (SceneObject& object : scene.objects)
    {
        for (const Look* look : looksOf(object))
            if (!look->material.empty())
                scene.files.push_back(krTools::materialName(look->material).file);
        if (!object.mesh.empty())
            scene.files.push_back(object.mesh);
    }
    const std::vector<std::string> libraries = krTools::libraryFiles(scene.stdlib, scene.libraries);
    scene.files.insert(scene.files.end(), libraries.begin(), libraries.end());
    for (const krTools::LightName& light : scene.lights.value_or(std::vector<krTools::LightName>()))
        if (!light.file.empty())
            scene.files.push_back(light.file);
    return scene;
}
