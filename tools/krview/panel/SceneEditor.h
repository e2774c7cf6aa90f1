#pragma once
#include <krview/scene/Scene.h>

#include <string>
#include <vector>

/// The scene as the user has it in the panel, with the steps back from there.
class SceneEditor
{
public:
    /// What has to be done for a change to be seen.
    enum class Change
    {
        None,
        Values, ///< the values of inputs and the like are set anew
        All,    ///< the scene is loaded anew
    };

    [[nodiscard]] const Scene& scene() const noexcept { return fScene; }
    /// Takes a scene that is shown already.
    void take(const Scene& scene) { fScene = scene; }

    /// The scene has been saved, and is from now on the one of that file.
    void markSaved(const std::string& file) { fScene.file = file; }

    /// The scene, to be changed at once. Changes of one thing that follow each other are one step back.
    /// @param what  the thing that changes, such as the name of an input
    [[nodiscard]] Scene& change(const std::string& what, Change change);
    /// Has the next change be a step of its own.
    void endStep() { fStepIsOpen = false; }
    /// What has to be done for the changes since the last call.
    [[nodiscard]] Change takeChange();
    /// Forgets the last step, which cannot be shown.
    /// @param shown  the scene that is shown
    void reject(const Scene& shown);

    [[nodiscard]] bool canUndo() const noexcept { return !fUndone.empty(); }
    [[nodiscard]] bool canRedo() const noexcept { return !fRedone.empty(); }
    void undo() { step(fUndone, fRedone); }
    void redo() { step(fRedone, fUndone); }

private:
    struct Step
    {
        Scene scene;
        Change change; ///< what it takes to get there
        std::string what;
    };
    using Steps = std::vector<Step>;

    void step(Steps& from, Steps& to);
    void note(Change change);

    Scene fScene;
    Change fChange = Change::None;
    Steps fUndone; ///< the scenes before, the last one at the end
    Steps fRedone;
    bool fStepIsOpen = false;
};
