#include "Desk.h"
#include "Gui.h"
#include "MessageBox.h"
#include "Panel.h"
#include "Rows.h"

#include <X11/keysym.h>
#include <imgui.h>

#include <algorithm>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace
{

/// The smallest picture beside the panel, in pixels: in a narrower window the panel lies over the picture.
constexpr int kLeastPicture = 64;
/// The smallest picture that the panel stands beside from the beginning.
constexpr GlWindow::Size kLeastFirstPicture{320, 240};

class GuiDesk : public Desk
{
public:
    using Desk::Desk;

    void furnish(GlWindow& window, GraphicsApi api, const Stage& stage, bool isOpen) override
    {
        fPanel.emplace(
            fEditor, fView, stage,
            Panel::Actions{[this] { fCommands.saveScene = true; }, [this] { fCommands.copyOptions = true; }});
        fGui.emplace(window, api, [this] { build(); });
        fIsOpen = isOpen;
        arrange();
    }

    void refresh() override
    {
        if (fPanel)
            fPanel->refresh();
    }

    void resize(int width, int height) override
    {
        fWidth = width;
        fHeight = height;
        arrange();
    }

    void catchUp() override
    {
        for (const auto& act : std::exchange(fWaiting, {}))
            act();
    }

    void mouseButton(int button, int action, int x, int y) override
    {
        if (!fWork.empty())
        {
            if (action != View::kMoved) // the buttons have places of their own
                fWaiting.emplace_back([=, this] { mouseButton(button, action, x, y); });
            return;
        }
        const bool isTaken = fGui && fGui->mouseButton(button, action, x, y);
        // A drag of the picture goes on wherever it gets to.
        if (!isTaken || action != View::kPressed)
            fView.mouseButton(button, action, x, y);
    }

    void key(const KeyStroke& stroke) override
    {
        if (!fWork.empty())
        {
            fWaiting.emplace_back([=, this] { key(stroke); });
            return;
        }
        if (fGui && fGui->key(stroke))
            return;
        if (!fGui || !stroke.isDown)
            return Desk::key(stroke);
        if (stroke.hasControl)
            return stroke.key == XK_z ? takeStep(stroke.hasShift) : void();
        if (stroke.key != XK_Tab && stroke.key != XK_p)
            return Desk::key(stroke);
        fIsOpen = !fIsOpen;
        arrange();
    }

    void pointerLeft() override
    {
        if (fGui)
            fGui->pointerLeft();
    }

    void focusLost() override
    {
        if (fGui)
            fGui->focusLost();
    }

    bool isOutOfDate() override { return fGui && fGui->isOutOfDate(); }

    void draw() override
    {
        if (fGui)
            fGui->draw();
    }

private:
    static constexpr int kPanel = static_cast<int>(kPanelWidth);

    void takeStep(bool isForward) { isForward ? fEditor.redo() : fEditor.undo(); }

    /// The width that the panel leaves to the picture.
    [[nodiscard]] int pictureWidth() const
    {
        return fIsOpen && fWidth >= kPanel + kLeastPicture ? fWidth - kPanel : fWidth;
    }

    void arrange()
    {
        fView.resize(pictureWidth(), fHeight);
        if (fGui)
            fGui->resize(fWidth, fHeight);
    }

    void build()
    {
        buildMessageBox(fMessages, static_cast<float>(pictureWidth()), static_cast<float>(fHeight));
        if (!fWork.empty())
            buildProgress();
        if (fIsOpen)
            fPanel->build(static_cast<float>(fWidth), static_cast<float>(fHeight));
    }

    /// The bar in the middle of the picture.
    void buildProgress() const
    {
        constexpr float kHeight = 60;
        const float width = std::min(360.0f, static_cast<float>(pictureWidth()));
        ImGui::SetNextWindowPos(
            {(static_cast<float>(pictureWidth()) - width) / 2, (static_cast<float>(fHeight) - kHeight) / 2});
        ImGui::SetNextWindowSize({width, kHeight});
        ImGui::Begin("progress", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoSavedSettings);
        ImGui::TextUnformatted(fWork.c_str());
        const std::string percent = std::to_string(static_cast<int>(fShare * 100)) + " %";
        ImGui::ProgressBar(std::max(fShare, 0.0f), {-1, 0}, fShare < 0 ? "" : percent.c_str());
        ImGui::End();
    }

    int fWidth = 0;
    int fHeight = 0;
    bool fIsOpen = false;
    std::vector<std::function<void()>> fWaiting; ///< what the user did during a load
    std::optional<Panel> fPanel;
    std::optional<Gui> fGui;
};

} // namespace

std::unique_ptr<Desk> newDesk(View& view) { return std::make_unique<GuiDesk>(view); }

unsigned panelWidthBeside(const GlWindow::Size& picture)
{
    const bool hasRoom = picture.width >= kLeastFirstPicture.width && picture.height >= kLeastFirstPicture.height;
    return hasRoom ? static_cast<unsigned>(kPanelWidth) : 0;
}
