#include "Options.h"

#include <krview/scene/Scene.h>

#include <common/CommandLine.h>
#include <common/Targets.h>
#include <common/UsageError.h>

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>

namespace
{

constexpr const char* kFooter = R"(
Inputs without a value from the scene or --set have the default that their source gives them, and a sampler2D with
[[ string file = "FILE.png" ]] shows that picture, which is relative to its source. Lights are looked for in the material's
file, then in the standard library and the others; a scene's light may name a "source" beside its "function".

Drag to tumble, drag with the right button or turn the wheel to change the distance.
R resets the view, F frames what is there, A shows the axes, W the wire frame, S saves a picture, Q quits.
Tab or P shows and hides the panel, Ctrl+Z and Ctrl+Shift+Z go a step back and forth.
)";

constexpr const char* kOldApi = "gl2.1";
constexpr const char* kCoreApi = "gl3.3";

constexpr unsigned kMaxFrames = 1000000000;

constexpr unsigned kMaxTurn = 100000;

/// The end of a file's name, in small letters.
std::string extensionOf(const std::string& name)
{
    std::string extension = std::filesystem::path(name).extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return extension;
}

/// Pictures are written as PNG and nothing else.
void checkPictureName(const std::string& option, const std::string& name)
{
    if (extensionOf(name) != ".png")
        throw krTools::UsageError(option + " " + name + ": pictures are written as PNG; give a name that ends in .png");
}

/// Pages are programs for a browser.
void checkPage(const Options& options)
{
    if (!krTools::canTranslate())
        throw krTools::UsageError("--export: this krview was built without krender-targets");
    if (options.plain)
        throw krTools::UsageError("--export takes full KRSL, which --plain does not read");
    if (options.wantsPictures() || options.watch)
        throw krTools::UsageError("--export writes a page and nothing else");
    const std::string extension = extensionOf(options.page);
    if (extension != ".html" && extension != ".htm")
        throw krTools::UsageError("--export " + options.page + ": pages are HTML; give a name that ends in .html");
}

unsigned pictureCount(const std::string& text)
{
    unsigned count = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, count);
    if (error != std::errc() || rest != end || count < 1 || count > kMaxTurn)
        throw krTools::UsageError("--turntable " + text + ": a number of pictures is wanted, from 1 to " +
                                  std::to_string(kMaxTurn));
    return count;
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
    app.add_option("--mesh", options.mesh, "the mesh that it is shown on")->type_name("FILE");
    app.add_option("--light", options.lights,
                   "a light, instead of the scene's: its name and its function in a library or a file of its own")
        ->type_name("KEY=[FILE:]FUNCTION")
        ->allow_extra_args(false);
    app.add_option("--set", options.settings,
                   "the value of an input of the material or, with the light's name ahead, of a light, instead of the "
                   "scene's or its default: numbers with commas between them, checker, noise, sky, a file (PNG, JPEG "
                   "or HDR), or an object as scenes have it")
        ->type_name("[OBJECT.]NAME=VALUE")
        ->allow_extra_args(false);
    app.add_option("--grid", options.grid, "show N times N objects")
        ->type_name("N")
        ->check(CLI::Range(1U, kMostObjects));
    app.add_option("--size", options.size, "the size of the window or picture in pixels")->type_name("WxH");
    app.add_option("--stdlib", options.stdlib, "the standard library; \"none\" for none")->type_name("FILE");
    app.add_option("--lib", options.libraries, "a further library")->type_name("FILE")->allow_extra_args(false);
    app.add_option("-I", options.includeFolders, "where included files are looked for after their own folder")
        ->type_name("FOLDER")
        ->allow_extra_args(false);
    app.add_flag("--plain", options.plain, "read the sources as plain KRSL, as hosts do that use its parser");
    app.add_option("--screenshot", options.screenshot,
                   "save the last frame as a picture and quit; --frames is 1 if not given")
        ->type_name("FILE.png");
    std::pair<std::string, std::string> turntable;
    app.add_option("--turntable", turntable, "save N pictures of a full turn as FOLDER/000.png and so on, and quit")
        ->type_name("N FOLDER");
    auto* compare =
        app.add_option("--compare", options.comparison.picture,
                       "compare the last frame with a picture, print how far they are apart, and quit: with status 1 "
                       "when more pixels differ than --tolerance and --allow permit, or the sizes do")
            ->type_name("FILE.png");
    app.add_option("--tolerance", options.comparison.tolerance,
                   "a pixel differs when its red, green or blue is off by more than this many levels of 255")
        ->type_name("LEVELS")
        ->check(CLI::Range(0U, 255U))
        ->capture_default_str()
        ->needs(compare);
    app.add_option("--allow", options.comparison.allowed, "as many pixels in a hundred may differ")
        ->type_name("PERCENT")
        ->check(CLI::Range(0.0, 100.0))
        ->capture_default_str()
        ->needs(compare);
    app.add_option("--diff", options.comparison.difference, "save a picture that shows in red which pixels differ")
        ->type_name("FILE.png")
        ->needs(compare);
    app.add_option("--export", options.page, "write the scene as a page for browsers, whole in one file, and quit")
        ->type_name("FILE.html");
    app.add_option("--frames", options.frames, "quit after N frames")
        ->type_name("N")
        ->check(CLI::Range(1U, kMaxFrames));
    app.add_option("--api", api, "what to draw with: OpenGL 2.1, or the core profile of OpenGL 3.3")
        ->type_name("API")
        ->check(CLI::IsMember({kOldApi, kCoreApi}));
    app.add_flag("--watch", options.watch, "read the sources again when they, or files that they include, change");
    app.add_flag("!--no-panel", options.panel, "begin without the panel");
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
        checkPictureName("--screenshot", options.screenshot);
    if (app.count("--diff") != 0)
        checkPictureName("--diff", options.comparison.difference);
    if (app.count("--turntable") != 0)
        options.turntable = {pictureCount(turntable.first), turntable.second};
    if (app.count("--compare") != 0 && options.comparison.picture.empty())
        throw krTools::UsageError("--compare: the name of a picture is missing");
    if (app.count("--export") != 0)
        checkPage(options);
    return options;
}
