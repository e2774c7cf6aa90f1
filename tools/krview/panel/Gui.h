#pragma once
#include <krview/gl/GlWindow.h>
#include <krview/gl/GraphicsApi.h>
#include <krview/gl/WindowHandler.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>

struct ImGuiContext;

/// Dear ImGui in krview's window: takes what the user does, has its windows built, and draws them over the picture.
///
/// Its frames are not those of the window. Each key and button gets a frame of its own, so that none is lost when several
/// come at once, and the frames that only let a layout settle are not drawn.
class Gui
{
public:
    /// @param window  borrowed; its context is current
    /// @param build   builds the windows with ImGui's functions; called for every frame
    Gui(GlWindow& window, GraphicsApi api, std::function<void()> build);
    Gui(const Gui&) = delete;
    Gui& operator=(const Gui&) = delete;
    ~Gui();

    void resize(int width, int height);
    /// @return  whether somebody types into a field, so that the key is none of the picture's
    bool key(const KeyStroke& stroke);
    /// Takes what View::mouseButton does.
    /// @return  whether it is over a window of ImGui's, so that a press or a turn of the wheel is none of the picture's
    bool mouseButton(int button, int action, int x, int y);
    void pointerLeft();
    void focusLost();

    /// Takes in what happened since the last call.
    /// @return  whether it looks otherwise than what was drawn last
    [[nodiscard]] bool isOutOfDate();
    /// Draws the windows as they are now into the frame buffer of the window.
    void draw();

private:
    void frame();
    void settle();
    void moveTo(int x, int y);
    [[nodiscard]] std::uint64_t look() const;

    GlWindow& fWindow;
    GraphicsApi fApi;
    std::function<void()> fBuild;
    ImGuiContext* fContext;
    std::string fPasted; ///< what ImGui borrows
    std::chrono::steady_clock::time_point fLastFrame = std::chrono::steady_clock::now();
    bool fIsStale = true; ///< whether something happened since the last frame
    std::uint64_t fDrawn = 0;
};
