#pragma once
#include "Scene.h"

#include <krender/window/TumbleWindowsHandler.h>

/// How the scene is looked at, and what the user does to it with mouse and keys.
class View : public TumbleWindowsHandler
{
public:
    /// What a mouse button does, the second argument of mouseButton.
    enum Action : int
    {
        kReleased,
        kPressed,
        kMoved,
    };

    /// What keys ask for; each is taken once.
    struct Wishes
    {
        bool quit = false;
        bool picture = false;
        bool axes = false; ///< to be shown where they are not, and the other way around
        bool wire = false;
    };

    explicit View(const Scene& scene);

    /// Looks as the scene says.
    void reset(const Scene& scene);
    /// From top to bottom, in degrees.
    [[nodiscard]] float opening() const noexcept { return fOpening; }
    [[nodiscard]] Wishes takeWishes() noexcept;

    /// The picture is drawn when all that is waiting has been handled.
    void display() override { windowMoved(); }
    /// @param key  an X key symbol
    void keyboard(unsigned key) override;
    void mouseButton(int button, int action, int x, int y) override;

private:
    void turn(float pitch, float yaw);

    Scene fScene; ///< what a reset goes back to
    float fOpening = 0;
    float fPitch = 0;
    float fStartPitch = 0; ///< when the drag began
    Wishes fWishes;
};
