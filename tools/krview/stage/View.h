#pragma once
#include <krview/scene/Scene.h>

#include <krender/spatial/AABoundingBox.h>
#include <krender/window/TumbleWindowsHandler.h>

/// How the scene is looked at, and what the user does to it with mouse and keys.
class View : public TumbleWindowsHandler
{
public:
    /// What the mouse did, the second argument of mouseButton().
    enum Action : int
    {
        kReleased,
        kPressed,
        kMoved,
    };

    /// The commands of the keys that were pressed.
    struct Commands
    {
        bool quit = false;
        bool savePicture = false;
        bool toggleAxes = false;
        bool toggleWire = false;
        bool frame = false;
    };

    explicit View(const Scene& scene);

    /// Takes the view that the scene asks for.
    void reset(const Scene& scene);
    /// Shows that view without making it the one that a reset goes back to.
    void show(const Scene& scene);
    /// Gives a scene the view as it is.
    void store(Scene& scene) const;
    /// Looks at the middle of a box from a distance at which all of it is in view.
    void frame(const AABoundingBox& bounds);
    /// The field of view from top to bottom, degrees.
    [[nodiscard]] float opening() const noexcept { return fOpening; }
    /// The commands since the last call.
    [[nodiscard]] Commands takeCommands() noexcept;

    /// Asks for a refresh: the picture is drawn once all waiting events have been handled.
    void display() override { windowMoved(); }
    /// @param key  an X key symbol
    void keyboard(unsigned key) override;
    /// @param button  as X numbers buttons; 0 for a move
    /// @param action  an Action
    /// @param x, y    where, in pixels from the upper left corner of the window
    void mouseButton(int button, int action, int x, int y) override;

private:
    void turn(float pitch, float yaw);

    Scene fScene; ///< what a reset goes back to
    float fOpening = 0;
    float fPitch = 0;
    float fStartPitch = 0; ///< when the drag began
    Commands fCommands;
};
