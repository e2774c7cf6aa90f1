#include "Session.h"

#include "FileWatch.h"
#include "GlWindow.h"
#include "InputError.h"
#include "SceneReader.h"
#include "Stage.h"

#include <common/ExitStatus.h>
#include <common/Findings.h>
#include <common/Source.h>

#include <krender/core/IHWMemoryObject.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>

using Clock = std::chrono::steady_clock;

namespace
{

constexpr int kWatchMilliseconds = 100; ///< from one look at the sources to the next
constexpr double kTitleSeconds = 0.5;

/// One run of the program.
class Session
{
public:
    Session(const Options& options, const Scene& scene)
        : fOptions(options), fView(scene), fWindow("krview", scene.width, scene.height, fView)
    {
    }

    int run(const Scene& scene)
    {
        if (!fStage.load(scene))
            return krTools::kInputHasErrors;
        fWatch.watch(fStage.files());
        while (drawFrame())
            if (!fWindow.processEvents(waitingTime()))
                break;
        if (fOptions.stats)
            printStats();
        return krTools::kDone;
    }

private:
    /// Draws where there is something new to see.
    /// @return  whether to go on
    bool drawFrame()
    {
        const View::Wishes wishes = fView.takeWishes();
        if (wishes.quit)
            return false;
        if (wishes.axes)
            toggle(kAxesProcedure);
        if (wishes.wire)
            toggle(kWireProcedure);
        if (wishes.picture)
            savePicture(fStage.overlays(), freePictureName());
        if (fOptions.watch && fWatch.hasChanged())
            reload();
        // Whoever asks for a number of frames gets them, whether or not they differ.
        if (fOptions.frames == 0 && !fView.needsRefresh() && !fStage.isMoving())
            return true;

        ++fFrames;
        const bool isLast = fFrames == fOptions.frames;
        if (isLast && !fOptions.screenshot.empty())
            savePicture(fStage.overlays(), fOptions.screenshot);
        fStage.draw(fView, seconds());
        fView.markDrawn();
        fWindow.swapBuffers();
        updateTitle();
        return !isLast;
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
        try
        {
            const std::optional<Scene> scene = readScene(fOptions);
            if (scene && fStage.load(*scene))
            {
                fWatch.watch(fStage.files());
                std::printf("krview: now showing %s\n", fStage.description().c_str());
                std::fflush(stdout);
            }
        }
        catch (const InputError& error)
        {
            krTools::print(stderr, error.origin(), krTools::Severity::Error, error.what());
        }
        catch (const krTools::FileError& error)
        {
            krTools::print(stderr, "krview", krTools::Severity::Error, error.what());
        }
        fView.windowMoved();
    }

    void updateTitle()
    {
        ++fTitleFrames;
        const double passed = std::chrono::duration<double>(Clock::now() - fTitleTime).count();
        if (passed < kTitleSeconds && fFrames > 1)
            return;
        char rate[32] = "";
        if (fFrames > 1)
            std::snprintf(rate, sizeof rate, ", %.0f frames a second", fTitleFrames / passed);
        const ObjectGrid& grid = fStage.grid();
        fWindow.setTitle("krview: " + fStage.description() + rate + ", " +
                         std::to_string(grid.count() - grid.visibleCount()) + " of " + std::to_string(grid.count()) +
                         " objects culled");
        fTitleTime = Clock::now();
        fTitleFrames = 0;
    }

    /// "krview-1.png" or the first after it that is not there yet.
    [[nodiscard]] static std::string freePictureName()
    {
        for (unsigned number = 1;; ++number)
        {
            std::string name = "krview-" + std::to_string(number) + ".png";
            std::error_code failure;
            if (!std::filesystem::exists(name, failure))
                return name;
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
    View fView;
    GlWindow fWindow;
    Stage fStage;
    FileWatch fWatch;
    unsigned fFrames = 0;
    unsigned fTitleFrames = 0;
    Clock::time_point fBegin = Clock::now();
    Clock::time_point fTitleTime = Clock::now();
};

} // namespace

int showScene(const Options& options)
{
    // Without a display the toolkit would end the process.
    if (!SimpleWindow::displayAvailable())
    {
        const char* name = std::getenv("DISPLAY");
        throw DisplayError(name && *name ? "cannot open the display \"" + std::string(name) + "\""
                                         : std::string("there is no display: DISPLAY is not set"));
    }
    const std::optional<Scene> scene = readScene(options);
    return scene ? Session(options, *scene).run(*scene) : krTools::kInputHasErrors;
}
