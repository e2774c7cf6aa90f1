#pragma once
#include "KeptMessages.h"
#include "SceneEditor.h"

#include <krview/gl/GlWindow.h>
#include <krview/gl/GraphicsApi.h>
#include <krview/gl/WindowHandler.h>
#include <krview/stage/Stage.h>
#include <krview/stage/View.h>

#include <memory>
#include <string>
#include <utility>

/// What krview's window holds: the picture, which is the view's, and in a krview with Dear ImGui the panel beside it and the
/// messages over it. This class knows the picture alone.
class Desk : public WindowHandler
{
public:
    explicit Desk(View& view) : fView(view) {}

    void display() override { fView.display(); }
    void windowMoved() override { fView.windowMoved(); }
    void resize(int width, int height) override { fView.resize(width, height); }
    void mouseButton(int button, int action, int x, int y) override { fView.mouseButton(button, action, x, y); }
    void key(const KeyStroke& stroke) override
    {
        if (stroke.isDown)
            fView.keyboard(stroke.key);
    }
    void pointerLeft() override {}
    void focusLost() override {}

    /// What the user asks for in the panel.
    struct Commands
    {
        bool saveScene = false;
        bool copyOptions = false;
    };

    /// Takes what lies beside and over the picture into the window.
    /// @param stage   what the panel tells of; borrowed
    /// @param isOpen  whether the panel is there at first
    virtual void furnish(GlWindow& /*window*/, GraphicsApi /*api*/, const Stage& /*stage*/, bool /*isOpen*/) {}
    /// Shows how far a load is from the next draw() on, or none; what the user does meanwhile waits for catchUp().
    /// @param what  empty for none
    void showProgress(const std::string& what, float share)
    {
        fWork = what;
        fShare = share;
    }
    /// Takes what the user did during a load.
    virtual void catchUp() {}
    /// The stage has loaded a scene.
    virtual void refresh() {}
    /// The commands since the last call.
    [[nodiscard]] Commands takeCommands() noexcept { return std::exchange(fCommands, {}); }
    /// The scene as the panel and the keys make it.
    [[nodiscard]] SceneEditor& editor() noexcept { return fEditor; }
    /// Whether something beside or over the picture is to be drawn again.
    [[nodiscard]] virtual bool isOutOfDate() { return false; }
    /// Draws it, once the picture is drawn.
    virtual void draw() {}

    /// What is shown over the picture.
    [[nodiscard]] KeptMessages& messages() noexcept { return fMessages; }

protected:
    View& fView;
    std::string fWork; ///< what is being loaded; empty for nothing
    float fShare = 0;  ///< of the work that is done; negative when it is not known
    KeptMessages fMessages;
    SceneEditor fEditor;
    Commands fCommands;
};

/// With the panel where krview was built with it.
/// @param view  borrowed
[[nodiscard]] std::unique_ptr<Desk> newDesk(View& view);

/// How much wider than a picture the window is at first, for the panel; pixels. 0: the panel is not there at first.
[[nodiscard]] unsigned panelWidthBeside(const GlWindow::Size& picture);
