#include "Options.h"

#include "Scene.h"

#include <common/CommandLine.h>
#include <common/Targets.h>
#include <common/UsageError.h>

#include <algorithm>
#include <filesystem>

namespace
{

constexpr const char* kFooter = R"(
Inputs without a value from the scene or --set have the default that their source gives them, and a sampler2D with
[[ string file = "FILE.png" ]] shows that picture, which is relative to its source. Lights are looked for in the material's
file, then in the standard library and the others; a scene's light may name a "source" beside its "function".

Drag to tumble, drag with the right button or turn the wheel to change the distance.
R resets the view, A shows the axes, W the wire frame, S saves a picture, Q quits.
)";

constexpr const char* kOldApi = "gl2.1";
constexpr const char* kCoreApi = "gl3.3";

constexpr unsigned kMaxFrames = 1000000000;

/// Pictures are written as PNG and nothing else.
void checkPictureName(const std::string& name)
{
    std::string extension = std::filesystem::path(name).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    if (extension != ".png")
        throw krTools::UsageError("--screenshot " + name +
                                  ": pictures are written as PNG; give a name that ends in .png");
}

} // namespace

std::optional<Options> readOptions(int argc, char** argv)
{
    Options options;
    std::string api = kOldApi;
    CLI::App app("krview, a viewer of KRSL materials", "krview");
    app.footer(kFooter);
    app.set_version_flag("--version", "krview " KRENDER_VERSION);
    app.add_option("scene", options.scene, "what to show; a textured sphere if neither it nor a material is given")
        ->type_name("SCENE.json");
    app.add_option("--material", options.material, "the material: a file, and a function in it")
        ->type_name("FILE[:NAME]");
    app.add_option("--shape", options.shape, "what it is shown on")
        ->type_name("SHAPE")
        ->check(CLI::IsMember(std::vector<std::string>(kShapeNames.begin(), kShapeNames.end())));
    app.add_option("--light", options.lights,
                   "a light, instead of the scene's: its name and its function in a library or a file of its own")
        ->type_name("KEY=[FILE:]FUNCTION")
        ->allow_extra_args(false);
    app.add_option("--set", options.settings,
                   "the value of an input of the material or, with the light's name ahead, of a light, instead of the "
                   "scene's or its default: numbers with commas between them, checker, noise, sky, or a PNG file")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    app.add_option("--grid", options.grid, "show N times N objects")
        ->type_name("N")
        ->check(CLI::Range(1U, kMostObjects));
    app.add_option("--size", options.size, "the window's size in pixels")->type_name("WxH");
    app.add_option("--stdlib", options.stdlib, "the standard library; \"none\" for none")->type_name("FILE");
    app.add_option("--lib", options.libraries, "a further library")->type_name("FILE")->allow_extra_args(false);
    app.add_option("-I", options.includeFolders, "where included files are looked for after their own folder")
        ->type_name("FOLDER")
        ->allow_extra_args(false);
    app.add_flag("--plain", options.plain, "read the sources as plain KRSL, as hosts do that use its parser");
    app.add_option("--screenshot", options.screenshot, "save the last frame and quit; --frames is 1 if not given")
        ->type_name("FILE.png");
    app.add_option("--frames", options.frames, "quit after N frames")
        ->type_name("N")
        ->check(CLI::Range(1U, kMaxFrames));
    app.add_option("--api", api, "what to draw with: OpenGL 2.1, or the core profile of OpenGL 3.3")
        ->type_name("API")
        ->check(CLI::IsMember({kOldApi, kCoreApi}));
    app.add_flag("--watch", options.watch, "read the sources again when they, or files that they include, change");
    app.add_flag("--stats", options.stats, "print at the end what was drawn, culled and uploaded");
    if (!krTools::readCommandLine(app, argc, argv))
        return std::nullopt;
    if (api == kCoreApi)
    {
        if (!krTools::canTranslate())
            throw krTools::UsageError("--api gl3.3: this krview was built without krender-targets");
        if (options.plain)
            throw krTools::UsageError("--api gl3.3 takes full KRSL, which --plain does not read");
        options.api = GraphicsApi::Gl33;
    }
    if (app.count("--screenshot") != 0)
    {
        checkPictureName(options.screenshot);
        options.frames = std::max(options.frames, 1U);
    }
    return options;
}
