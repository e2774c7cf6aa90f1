#include "SceneSource.h"

#include "FileNames.h"

#include <krview/scene/OptionsText.h>
#include <krview/scene/SceneReader.h>
#include <krview/scene/SceneWriter.h>

#include <common/Source.h>

#include <cstddef>
#include <tuple>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t kMostText = 1000000; ///< bytes that are compared

/// What a scene says of the view.
template <class Scene>
auto viewOf(Scene& scene)
{
    return std::tie(scene.pitch, scene.yaw, scene.distance, scene.opening, scene.target, scene.isFramed);
}

} // namespace

Scene SceneSource::read()
{
    fReadText = text();
    Scene scene = readScene(fOptions);
    fFile = scene.file;
    return scene;
}

void SceneSource::show(const Scene& scene, View& view, const AABoundingBox& bounds)
{
    fShownText = fReadText;
    if (!fHasView || viewOf(scene) != viewOf(std::as_const(fFileView)))
    {
        view.show(scene);
        if (scene.isFramed)
            view.frame(bounds);
        view.store(fView);
        view.reset(fView);
    }
    fFileView = scene;
    fHasView = true;
}

Scene SceneSource::asSeen(Scene scene, const View& view) const
{
    Scene now;
    view.store(now);
    viewOf(scene) = viewOf(std::as_const(now)) == viewOf(fView) ? viewOf(fFileView) : viewOf(std::as_const(now));
    return scene;
}

/// Nothing where the file cannot be read, which readScene() tells of.
std::string SceneSource::text() const
{
    try
    {
        return fFile.empty() ? "" : krTools::readText(fFile, kMostText);
    }
    catch (const krTools::FileError&)
    {
        return "";
    }
}

std::string SceneSource::fileToSave() const
{
    // The scene that is shown when none is asked for is everybody's.
    return fOptions.scene.empty() ? freeFileName(".json") : fOptions.scene;
}

std::string SceneSource::save(const Scene& scene, const std::string& path)
{
    saveScene(scene, path);
    fFile = fOptions.scene = path;
    for (std::string* said : {&fOptions.material, &fOptions.shape, &fOptions.mesh, &fOptions.stdlib, &fOptions.size})
        said->clear();
    for (std::vector<std::string>* said : {&fOptions.libraries, &fOptions.lights, &fOptions.settings})
        said->clear();
    fOptions.grid = 0;
    fShownText = text();
    if (viewOf(scene) != viewOf(std::as_const(fFileView)))
        fFileView = fView = scene;
    return optionsText(readScene(fOptions)).added;
}
