#include "PictureRun.h"

#include "Frames.h"

#include <krview/Progress.h>
#include <krview/gl/Frame.h>
#include <krview/gl/OffscreenContext.h>
#include <krview/picture/Comparison.h>
#include <krview/picture/Picture.h>
#include <krview/scene/SceneReader.h>
#include <krview/stage/Stage.h>
#include <krview/stage/View.h>

#include <common/ExitStatus.h>
#include <common/MessageOutput.h>
#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <krender/core/Ref.h>
#include <krender/pixels/PixelArray2D.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

namespace
{

using Path = std::filesystem::path;

/// Throws a krTools::FileError if a file's folder does not exist.
void checkFolder(const std::string& path)
{
    const Path folder = Path(path).parent_path();
    std::error_code failure;
    if (!folder.empty() && !std::filesystem::is_directory(folder, failure))
        throw krTools::FileError("cannot write '" + path + "': there is no folder '" + folder.string() + "'");
}

/// Makes a folder unless it is there. Throws a krTools::FileError.
void makeFolder(const std::string& path)
{
    std::error_code failure;
    std::filesystem::create_directories(path, failure);
    if (failure || !std::filesystem::is_directory(path, failure))
        throw krTools::FileError("cannot make the folder '" + path +
                                 "': " + (failure ? failure.message() : "there is a file of that name"));
}

/// The picture to compare with. Throws a krTools::FileError.
Ref<PixelArray2D> readExpected(const std::string& path)
{
    std::error_code failure;
    if (!std::filesystem::is_regular_file(path, failure))
        throw krTools::FileError("there is no picture '" + path + "'");
    Ref<PixelArray2D> picture = readPicture(path);
    if (isLight(*picture))
        throw krTools::FileError("cannot compare with '" + path + "': it is a picture of light, which has no levels");
    return picture;
}

bool isSameSize(const PixelArray2D& a, const PixelArray2D& b)
{
    return a.width() == b.width() && a.height() == b.height();
}

std::string sizeOf(const PixelArray2D& picture)
{
    return std::to_string(picture.width()) + "x" + std::to_string(picture.height());
}

/// A run of the program that shows nothing.
class PictureRun
{
public:
    /// @param scene  borrowed
    PictureRun(const Options& options, const Scene& scene)
        : fOptions(options),
          fScene(scene),
          fView(scene),
          fContext(makeOffscreenContext(options.api, std::min(scene.width, Frame::kPartSide),
                                        std::min(scene.height, Frame::kPartSide)))
    {
        fView.resize(static_cast<int>(scene.width), static_cast<int>(scene.height));
    }

    int run()
    {
        if (!fStage.load(fScene, krTools::standardMessages(), fProgress))
            return krTools::kInputHasErrors;
        if (fScene.isFramed)
            fView.frame(fStage.placements().bounds());
        krTools::ExitStatus status = krTools::kDone;
        if (fOptions.wantsLastFrame())
            status = useLastFrame();
        if (fOptions.turntable.pictures != 0)
            drawTurn();
        if (fOptions.stats)
            printStats(fStage, fFrames);
        return status;
    }

private:
    /// Draws the frames that the options ask for, saves and compares the last one.
    [[nodiscard]] krTools::ExitStatus useLastFrame()
    {
        const Comparison& comparison = fOptions.comparison;
        Ref<PixelArray2D> expected;
        if (!comparison.picture.empty())
            expected = readExpected(comparison.picture);
        Ref<PixelArray2D> seen = drawFrame();
        while (fFrames < fOptions.frames)
            seen = drawFrame();
        if (!fOptions.screenshot.empty())
            writePng(fOptions.screenshot, *seen);
        if (!expected)
            return krTools::kDone;
        if (!comparison.difference.empty() && isSameSize(*seen, *expected))
            writePng(comparison.difference, *markDifferences(*seen, *expected, comparison.tolerance));
        return report(*seen, *expected);
    }

    /// Prints how far a picture is from what is expected.
    [[nodiscard]] krTools::ExitStatus report(const PixelArray2D& seen, const PixelArray2D& expected) const
    {
        const Comparison& comparison = fOptions.comparison;
        if (!isSameSize(seen, expected))
        {
            krTools::printError("krview", "the picture has " + sizeOf(seen) + " pixels, and '" + comparison.picture +
                                              "' has " + sizeOf(expected));
            return krTools::kInputHasErrors;
        }
        const Difference difference = compare(seen, expected, comparison.tolerance);
        std::array<char, 32> share{};
        std::snprintf(share.data(), share.size(), "%.4f %%", 100 * difference.share);
        std::printf("mean difference %.4f\ngreatest difference %u at %u,%u\ndiffering pixels %s\n", difference.mean,
                    difference.greatest, difference.x, difference.y, share.data());
        if (100 * difference.share <= comparison.allowed)
            return krTools::kDone;
        krTools::printError("krview", "the picture differs from '" + comparison.picture + "': " + share.data() +
                                          " of its pixels by more than " + krTools::digitsOf(comparison.tolerance) +
                                          " levels, and " + krTools::digitsOf(comparison.allowed) + " % may");
        return krTools::kInputHasErrors;
    }

    /// Saves pictures of a full turn about the upright axis.
    void drawTurn()
    {
        const unsigned count = fOptions.turntable.pictures;
        makeFolder(fOptions.turntable.folder);
        const std::size_t digits = std::max<std::size_t>(3, std::to_string(count - 1).size());
        const float begin = fView.angleY();
        for (unsigned i = 0; i < count; ++i)
        {
            const float turned = 360.0f * static_cast<float>(i) / static_cast<float>(count);
            // As a scene's own angle is reduced.
            fView.setAngles(fView.angleX(), std::remainder(begin + turned, 360.0f), fView.angleZ());
            std::string name = std::to_string(i);
            name.insert(0, digits - name.size(), '0');
            writePng((Path(fOptions.turntable.folder) / (name + ".png")).string(), *drawFrame());
        }
    }

    /// Draws the next frame.
    [[nodiscard]] Ref<PixelArray2D> drawFrame()
    {
        ++fFrames;
        return fFrame.picture([this] { fStage.draw(fView, fFrame, momentOfFrame(fFrames)); });
    }

    const Options& fOptions;
    const Scene& fScene;
    View fView;
    std::unique_ptr<GlContext> fContext;
    Frame fFrame{{fScene.width, fScene.height, fScene.samples, fScene.encodes}, Frame::kPartSide};
    Stage fStage;
    NoProgress fProgress;
    unsigned fFrames = 0;
};

} // namespace

int drawPictures(const Options& options)
{
    for (const std::string& path : {options.screenshot, options.comparison.difference})
        if (!path.empty())
            checkFolder(path);
    const Scene scene = readScene(options);
    return PictureRun(options, scene).run();
}
