#include "WindowSession.h"

#include "FileWatch.h"
#include "Frames.h"
#include "SceneSource.h"
#include "WindowSaver.h"
#include "WindowTitle.h"

#include <krview/Progress.h>
#include <krview/gl/Frame.h>
#include <krview/gl/GlFeatures.h>
#include <krview/gl/GlWindow.h>
#include <krview/panel/Desk.h>
#include <krview/panel/WindowProgress.h>
#include <krview/scene/InputError.h>
#include <krview/scene/SceneOptions.h>
#include <krview/scene/SceneReader.h>
#include <krview/stage/Stage.h>
#include <krview/stage/View.h>

#include <common/ExitStatus.h>
#include <common/PrintedMessage.h>

#include <krender/draw/DrawProcedure.h>

#include <algorithm>
#include <epoxy/gl.h>

#include <chrono>
#include <cstdio>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;

namespace
{

constexpr int kWatchMilliseconds = 50; ///< between two looks at the sources

/// Whether errors do not end the program, but stand in the window until they are mended.
bool waitsForMends(const Options& options) { return options.watch && options.frames == 0; }

/// The scene that a window begins with: one that is broken has yet to be mended.
Scene readFirstScene(const Options& options)
{
    try
    {
        return readScene(options);
    }
    catch (const InputError&)
    {
        if (!waitsForMends(options))
            throw;
        Scene scene;
        if (!options.size.empty())
            applySize(options.size, scene);
        return scene;
    }
}

/// A run of the program in a window.
class WindowSession
{
public:
    /// @param hasPanel  whether the panel is there at first
    WindowSession(const Options& options, const Scene& scene, const GlWindow::Size& size, bool hasPanel)
        : fOptions(options), fView(scene), fDesk(newDesk(fView)), fWindow("krview", size, options.api, *fDesk)
    {
        // A counted run shows the picture alone.
        if (options.frames == 0)
            fDesk->furnish(fWindow, options.api, fStage, hasPanel);
    }

    int run()
    {
        reload();
        if (!fIsLoaded && !fIsClosed && !waitsForMends(fOptions))
            return krTools::kInputHasErrors;
        while (!fIsClosed && drawFrame())
            if (!fWindow.processEvents(waitingTime()))
                break;
        if (fOptions.stats && fIsLoaded)
            printStats(fStage, fFrames);
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
            tellOfReload();
        // Whoever asks for a number of frames gets them, whether or not they differ.
        const bool isPictureOld = fOptions.frames != 0 || fView.needsRefresh() || fStage.isMoving();
        if (!isPictureOld && !fDesk->isOutOfDate())
        {
            if (fTitle.isStale())
                updateTitle();
            return true;
        }

        ++fFrames;
        if (fIsLoaded && (isPictureOld || !frame().keepsPicture()))
            fStage.draw(fView, frame(), seconds());
        showFrame();
        fView.markDrawn();
        fTitle.countFrame();
        updateTitle();
        return fFrames != fOptions.frames;
    }

    /// Shows the last picture with what lies over and beside it.
    void showFrame()
    {
        if (fFrame)
            fFrame->show();
        else
            glClear(GL_COLOR_BUFFER_BIT);
        fDesk->draw();
        fWindow.swapBuffers();
    }

    /// Does what the keys ask for.
    /// @return  whether to go on
    bool runCommands()
    {
        fDesk->catchUp();
        const View::Commands commands = fView.takeCommands();
        if (commands.toggleAxes && fIsLoaded)
            toggle("Axes", &Scene::axes);
        if (commands.toggleWire && fIsLoaded)
            toggle("Wire frame", &Scene::wire);
        applyChanges();
        if (commands.frame && fIsLoaded)
            fView.frame(fStage.placements().bounds());
        if (commands.savePicture && fIsLoaded)
            fSaver.savePicture([this] { return frame().picture([this] { fStage.draw(fView, *fFrame, seconds()); }); });
        const Desk::Commands asked = fDesk->takeCommands();
        if (asked.saveScene && fIsLoaded)
            saveScene();
        if (asked.copyOptions && fIsLoaded)
            fSaver.copyOptions(sceneAsSeen());
        return !commands.quit;
    }

    /// The frame that fits the window and the scene.
    [[nodiscard]] Frame& frame()
    {
        const Scene& scene = fStage.scene();
        const Frame::Format format{static_cast<unsigned>(fView.width()), static_cast<unsigned>(fView.height()),
                                   scene.samples, scene.encodes};
        if (!fFrame || fFrame->format() != format)
        {
            fFrame.reset();
            fFrame.emplace(format);
        }
        return *fFrame;
    }

    void saveScene()
    {
        const std::string path = fSaver.saveScene(sceneAsSeen());
        if (path.empty())
            return;
        fDesk->editor().markSaved(path);
        watch(fStage.files(), FileWatch::now());
    }

    [[nodiscard]] Scene sceneAsSeen() const
    {
        return fSource.asSeen(fStage.withoutUnused(fDesk->editor().scene()), fView);
    }

    /// A counted run shows the same moments each time.
    [[nodiscard]] double seconds() const
    {
        return fOptions.frames != 0 ? momentOfFrame(fFrames)
                                    : std::chrono::duration<double>(Clock::now() - fBegin).count();
    }

    [[nodiscard]] int waitingTime() const
    {
        if (fOptions.frames != 0 || fStage.isMoving() || fView.needsRefresh())
            return 0;
        return fOptions.watch || fTitle.isStale() ? kWatchMilliseconds : -1;
    }

    void toggle(const char* what, bool Scene::*switched)
    {
        Scene& scene = fDesk->editor().change(what, SceneEditor::Change::Values);
        scene.*switched = !(scene.*switched);
        fDesk->editor().endStep();
    }

    /// Loads what a function gives. Errors are shown, and the picture stays as it was; where there is none, and the window
    /// does not wait for mends, what is wrong is thrown or ends the program.
    /// @param read  gives the scene
    /// @return  whether the picture shows it now
    template <class Read>
    bool load(Read read)
    {
        const FileWatch::Moment before = FileWatch::now();
        std::vector<std::string> files = fStage.files();
        bool isGood = false;
        fDesk->messages().clear();
        if (fOptions.frames == 0)
            fProgress.begin();
        tell(
            [&]
            {
                const Scene scene = read();
                files = scene.files;
                isGood = fStage.load(scene, fDesk->messages(), fProgress);
                files = fStage.files();
                if (isGood)
                    fDesk->refresh();
            });
        fDesk->showProgress("", 0);
        // Also after an error: it may stand in a file that is included for the first time.
        watch(std::move(files), before);
        fView.windowMoved();
        fTitle.markStale();
        return isGood;
    }

    /// Shows how far a load is, over the last picture.
    /// @return  whether the window is still open
    bool showProgress(const std::string& what, float share)
    {
        // What is being loaded may be on its way into a framebuffer of its own.
        GLint drawn = 0;
        GLint read = 0;
        if (hasFramebufferObjects())
        {
            glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &drawn);
            glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &read);
            glBindFramebuffer(GL_FRAMEBUFFER, 0);
        }
        fDesk->showProgress(what, share);
        showFrame();
        const int percent = static_cast<int>(share * 100);
        fTitle.showNow(what + (share < 0 ? "" : ", " + std::to_string(percent) + " %"));
        if (hasFramebufferObjects())
        {
            glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(drawn));
            glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(read));
        }
        return fWindow.processEvents(0);
    }

    /// Does something, and shows what it throws.
    template <class Work>
    void tell(Work work)
    {
        try
        {
            work();
        }
        catch (const Cancelled&)
        {
            fIsClosed = true;
        }
        catch (const std::exception& error)
        {
            if (!fIsLoaded && !waitsForMends(fOptions))
                throw;
            const auto* const inputError = dynamic_cast<const InputError*>(&error);
            inputError ? inputError->print(fDesk->messages())
                       : krTools::printError("krview", error.what(), fDesk->messages());
        }
    }

    /// Watches files and that of the scene.
    void watch(std::vector<std::string> files, FileWatch::Moment before)
    {
        files.push_back(fSource.file());
        fWatch.watch(files, before);
    }

    void tellOfReload()
    {
        if (!reload())
            return;
        std::printf("krview: now showing %s\n", fStage.description().c_str());
        std::fflush(stdout);
    }

    /// Loads the scene from its files. What the user has changed in the panel stays, unless the scene's own file says
    /// something else.
    /// @return  whether the picture shows it now
    bool reload()
    {
        const bool isSame = fIsLoaded && fSource.isShown();
        Scene scene;
        fIsBroken = !load([&] { return scene = isSame ? fDesk->editor().scene() : fSource.read(); });
        if (fIsBroken || isSame)
            return !fIsBroken;
        fDesk->editor().take(scene);
        fSource.show(scene, fView, fStage.placements().bounds());
        fIsLoaded = true;
        return true;
    }

    /// Shows what the user has changed in the panel.
    void applyChanges()
    {
        SceneEditor& editor = fDesk->editor();
        const SceneEditor::Change change = editor.takeChange();
        if (change == SceneEditor::Change::None)
            return;
        // What was wrong with the change before is no longer of interest; what is wrong with the files is.
        if (!fIsBroken && fDesk->messages().errorCount() != 0)
            fDesk->messages().clear();
        bool isGood = false;
        if (change == SceneEditor::Change::All)
            isGood = load([&] { return editor.scene(); });
        else
            tell(
                [&]
                {
                    fStage.setValues(editor.scene());
                    isGood = true;
                });
        fView.windowMoved();
        fTitle.markStale();
        isGood ? editor.accept() : editor.reject(fStage.scene());
    }

    void updateTitle()
    {
        fTitle.update(
            [this](double rate)
            {
                const std::string errors = fDesk->messages().summary();
                return errors.empty() ? whatIsShown(rate) : errors;
            });
    }

    /// @param rate  frames a second; 0: none
    [[nodiscard]] std::string whatIsShown(double rate) const
    {
        char shownRate[32] = "";
        if (rate > 0)
            std::snprintf(shownRate, sizeof shownRate, ", %.0f frames a second", rate);
        const Placements& placements = fStage.placements();
        return fStage.description() + shownRate + ", " +
               std::to_string(placements.count() - placements.visibleCount()) + " of " +
               std::to_string(placements.count()) + " objects culled";
    }

    const Options& fOptions;
    View fView;
    std::unique_ptr<Desk> fDesk;
    GlWindow fWindow;
    WindowTitle fTitle{fWindow};
    Stage fStage;
    SceneSource fSource{fOptions};
    WindowSaver fSaver{fWindow, fTitle, fSource};
    bool fIsClosed = false;
    bool fIsLoaded = false; ///< whether the stage has a scene
    bool fIsBroken = false; ///< whether the files cannot be shown as they are
    std::optional<Frame> fFrame;
    WindowProgress fProgress{[this](const std::string& what, float share) { return showProgress(what, share); }};
    FileWatch fWatch;
    unsigned fFrames = 0;
    Clock::time_point fBegin = Clock::now();
};

} // namespace

int showInWindow(const Options& options)
{
    // Without a display the toolkit would end the process.
    const GlWindow::Size display = GlWindow::displaySize();
    const Scene scene = readFirstScene(options);
    // More of a window would not be seen, and takes much memory.
    const unsigned panel = options.panel && options.frames == 0 ? panelWidthBeside({scene.width, scene.height}) : 0;
    const GlWindow::Size size{std::min(scene.width + panel, display.width), std::min(scene.height, display.height)};
    return WindowSession(options, scene, size, panel != 0).run();
}
