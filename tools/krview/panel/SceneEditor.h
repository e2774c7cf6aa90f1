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
    /// Takes a scene that was read from its files and is shown already. It takes the place of another by a step of its own.
    void take(const Scene& scene);

    /// The scene has been saved, and is from now on the one of that file.
    void markSaved(const std::string& file) { fScene.file = file; }

    /// The scene, to be changed at once. Changes of one thing that follow each other are one step back.
    /// @param what  the thing that changes, such as the name of an input
    [[nodiscard]] Scene& change(const std::string& what, Change change);
    /// Has the next change be a step of its own.
    void endStep() { fStepIsOpen = false; }
    /// What has to be done for the changes since the last call.
    [[nodiscard]] Change takeChange();
    /// The scene is shown.
    void accept() { fShown = fPosition; }
    /// Goes back to where the scene was shown last, since it cannot be shown as it is.
    /// @param shown  the scene that is shown
    void reject(const Scene& shown);

    [[nodiscard]] bool canUndo() const noexcept { return !fUndone.empty(); }
    [[nodiscard]] bool canRedo() const noexcept { return !fRedone.empty(); }
    void undo();
    void redo();

private:
    struct Step
    {
        Scene scene;
        Change change; ///< what it takes to get there
        std::string what;
    };
    using Steps = std::vector<Step>;

    void begin(const std::string& what, Change change);
    void step(Steps& from, Steps& to);
    void note(Change change);
    void replace(Scene scene);

    Scene fScene;
    Change fChange = Change::None;
    Steps fUndone; ///< the scenes before, the last one at the end
    Steps fRedone;
    bool fStepIsOpen = false;
    bool fHasScene = false;
    long fPosition = 0; ///< steps forth less steps back
    long fShown = 0;    ///< the position of the scene that is shown
};
