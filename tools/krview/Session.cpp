#include "Session.h"

#include "DisplayError.h"
#include "FileWatch.h"
#include "GlWindow.h"
#include "InputError.h"
#include "OffscreenFrame.h"
#include "Picture.h"
#include "SceneReader.h"
#include "Stage.h"
#include "View.h"

#include <common/ExitStatus.h>
#include <common/Source.h>

#include <krender/core/IHWMemoryObject.h>
#include <krender/draw/DrawProcedure.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <filesystem>
#include <string>
#include <system_error>

using Clock = std::chrono::steady_clock;

namespace
{

constexpr int kWatchMilliseconds = 100; ///< between two checks of the sources
constexpr double kTitleSeconds = 0.5;   ///< between two updates of the title
constexpr double kNoteSeconds = 4;      ///< the least time that a note stays in the title

/// One run of the program.
class Session
{
public:
    Session(const Options& options, const Scene& scene)
        : fOptions(options),
          fPictureWidth(scene.width),
          fPictureHeight(scene.height),
          fView(scene),
          fWindow("krview", scene.width, scene.height, options.api, fView)
    {
    }

    /// @param before  a moment before the scene's file was read
    int run(const Scene& scene, FileWatch::Moment before)
    {
        if (!fStage.load(scene))
            return krTools::kInputHasErrors;
        fWatch.watch(fStage.files(), before);
        while (drawFrame())
            if (!fWindow.processEvents(waitingTime()))
                break;
        if (fOptions.stats)
            printStats();
        return krTools::kDone;
    }

private:
    /// Draws a frame if there is something new to see.
    /// @return  whether to go on
    bool drawFrame()
    {
        if (!runCommands())
            return false;
        if (fOptions.watch && fWatch.hasChanged())
            reload();
        // Whoever asks for a number of frames gets them, whether or not they differ.
        if (fOptions.frames == 0 && !fView.needsRefresh() && !fStage.isMoving())
            return true;

        ++fFrames;
        if (fFrames == fOptions.frames && !fOptions.screenshot.empty())
        {
            savePicture(fOptions.screenshot, fPictureWidth, fPictureHeight);
            return false;
        }
        fStage.draw(fView, fView.width(), fView.height(), seconds());
        fView.markDrawn();
        fWindow.swapBuffers();
        updateTitle();
        return fFrames != fOptions.frames;
    }

    /// Does what the keys ask for.
    /// @return  whether to go on
    bool runCommands()
    {
        const View::Commands commands = fView.takeCommands();
        if (commands.toggleAxes)
            toggle(kAxesProcedure);
        if (commands.toggleWire)
            toggle(kWireProcedure);
        if (commands.savePicture)
            saveNumberedPicture();
        return !commands.quit;
    }

    void savePicture(const std::string& path, unsigned width, unsigned height)
    {
        const OffscreenFrame frame(width, height);
        fStage.draw(fView, static_cast<int>(width), static_cast<int>(height), seconds());
        writePng(path, *frame.read());
    }

    /// Saves what the window shows and tells the user where; a failure does not end the program.
    void saveNumberedPicture()
    {
        const std::string path = freePictureName();
        try
        {
            savePicture(path, static_cast<unsigned>(fView.width()), static_cast<unsigned>(fView.height()));
            std::printf("krview: saved %s\n", path.c_str());
            std::fflush(stdout);
            showNote("saved " + path);
        }
        catch (const std::exception& error)
        {
            krTools::printError("krview", error.what());
            showNote(error.what());
        }
    }

    /// A counted run shows the same moments each time.
    [[nodiscard]] double seconds() const
    {
        constexpr double kFrameSeconds = 1.0 / 60;
        return fOptions.frames != 0 ? fFrames * kFrameSeconds
                                    : std::chrono::duration<double>(Clock::now() - fBegin).count();
    }

    [[nodiscard]] int waitingTime() const
    {
        if (fOptions.frames != 0 || fStage.isMoving() || fView.needsRefresh())
            return 0;
        return fOptions.watch ? kWatchMilliseconds : -1;
    }

    void toggle(const char* procedure)
    {
        DrawProcedure* found = fStage.overlays().find(procedure);
        found->enable(!found->isEnabled());
    }

    void reload()
    {
        const FileWatch::Moment before = FileWatch::now();
        try
        {
            if (fStage.load(readScene(fOptions)))
            {
                std::printf("krview: now showing %s\n", fStage.description().c_str());
                std::fflush(stdout);
            }
        }
        catch (const InputError& error)
        {
            error.print();
        }
        catch (const std::exception& error)
        {
            krTools::printError("krview", error.what());
        }
        // Also after an error: it may stand in a file that is included for the first time.
        fWatch.watch(fStage.files(), before);
        fView.windowMoved();
    }

    void updateTitle()
    {
        ++fTitleFrames;
        const double passed = std::chrono::duration<double>(Clock::now() - fTitleTime).count();
        if (passed < fTitleSeconds && fFrames > 1)
            return;
        char rate[32] = "";
        if (fFrames > 1)
            std::snprintf(rate, sizeof rate, ", %.0f frames a second", fTitleFrames / passed);
        const ObjectGrid& grid = fStage.grid();
        fWindow.setTitle("krview: " + fStage.description() + rate + ", " +
                         std::to_string(grid.count() - grid.visibleCount()) + " of " + std::to_string(grid.count()) +
                         " objects culled");
        restartTitle(kTitleSeconds);
    }

    void showNote(const std::string& text)
    {
        fWindow.setTitle("krview: " + text);
        restartTitle(kNoteSeconds);
    }

    void restartTitle(double seconds)
    {
        fTitleTime = Clock::now();
        fTitleFrames = 0;
        fTitleSeconds = seconds;
    }

    /// The path of the first of krview-1.png, krview-2.png, ... in the working folder that does not exist.
    [[nodiscard]] static std::string freePictureName()
    {
        std::error_code failure;
        const std::filesystem::path folder = std::filesystem::current_path(failure);
        for (unsigned number = 1;; ++number)
        {
            const std::filesystem::path path = folder / ("krview-" + std::to_string(number) + ".png");
            if (!std::filesystem::exists(path, failure))
                return path.string();
        }
    }

    void printStats() const
    {
        const ObjectGrid& grid = fStage.grid();
        std::printf("frames %u\nobjects %zu\nculled %zu\nuploads %llu\nuploaded bytes %llu\ndevice bytes %u\n", fFrames,
                    grid.count(), grid.count() - grid.visibleCount(),
                    static_cast<unsigned long long>(fStage.upload().uploads()),
                    static_cast<unsigned long long>(fStage.upload().bytes()), IHWMemoryObject::fsMemoryUsage);
    }

    const Options& fOptions;
    unsigned fPictureWidth; ///< of the screenshot, whatever size the window gets
    unsigned fPictureHeight;
    View fView;
    GlWindow fWindow;
    Stage fStage;
    FileWatch fWatch;
    unsigned fFrames = 0;
    unsigned fTitleFrames = 0; ///< drawn since the last update of the title
    double fTitleSeconds = 0;  ///< from it to the next at least
    Clock::time_point fBegin = Clock::now();
    Clock::time_point fTitleTime = Clock::now();
};

/// Throws a krTools::FileError if a file's folder does not exist.
void checkFolder(const std::string& path)
{
    const std::filesystem::path folder = std::filesystem::path(path).parent_path();
    std::error_code failure;
    if (!folder.empty() && !std::filesystem::is_directory(folder, failure))
        throw krTools::FileError("cannot write '" + path + "': there is no folder '" + folder.string() + "'");
}

} // namespace

int showScene(const Options& options)
{
    if (!options.screenshot.empty())
        checkFolder(options.screenshot);
    // Without a display the toolkit would end the process.
    if (!SimpleWindow::displayAvailable())
    {
        const char* name = std::getenv("DISPLAY");
        throw DisplayError(name && *name ? "cannot open the display \"" + std::string(name) + "\""
                                         : std::string("there is no display: DISPLAY is not set"));
    }
    const FileWatch::Moment before = FileWatch::now();
    const Scene scene = readScene(options);
    return Session(options, scene).run(scene, before);
}
