#pragma once
#include "Options.h"

#include <krview/scene/Scene.h>
#include <krview/stage/View.h>

#include <krender/spatial/AABoundingBox.h>

#include <string>

/// Where the scene of a window comes from and goes to: its file, and the options that say something else than the file.
class SceneSource
{
public:
    /// @param options  those of the program
    explicit SceneSource(const Options& options) : fOptions(options), fFile(options.scene) {}

    /// Reads the scene. Throws an InputError, a krTools::UsageError and a krTools::FileError.
    [[nodiscard]] Scene read();
    /// The scene that was read last is shown. Has it seen from where it says, unless that is what it said before.
    /// @param bounds  of its objects
    void show(const Scene& scene, View& view, const AABoundingBox& bounds);
    /// Whether the file says what it said when it was shown last.
    [[nodiscard]] bool isShown() const { return text() == fShownText; }
    /// The scene's file; empty for none.
    [[nodiscard]] const std::string& file() const noexcept { return fFile; }

    /// A scene as it is seen: with the view as it is if it was changed, else as the file says it.
    [[nodiscard]] Scene asSeen(Scene scene, const View& view) const;
    /// Where a scene is saved: in its file, or in a new one.
    [[nodiscard]] std::string fileToSave() const;
    /// Saves a scene there, and has it be the one of that file from now on: what the options said stands in it. Throws an
    /// InputError and a krTools::FileError.
    /// @return  the options that the file needs nevertheless, for a shell; mostly empty
    std::string save(const Scene& scene, const std::string& path);

private:
    [[nodiscard]] std::string text() const;

    Options fOptions;
    std::string fFile;
    std::string fReadText; ///< what stood in the file when it was read last
    std::string fShownText;
    bool fHasView = false;
    Scene fFileView; ///< whose view is that of the file
    Scene fView;     ///< whose view is what it comes to in the window
};
