#include "Gui.h"

#include "GuiStyle.h"

#include <krview/gl/GlFeatures.h>
#include <krview/stage/View.h>

#include <X11/keysym.h>
#include <backends/imgui_impl_opengl2.h>
#include <backends/imgui_impl_opengl3.h>
#include <epoxy/gl.h>
#include <imgui.h>

#include <algorithm>
#include <array>
#include <cfloat>
#include <cstddef>

namespace
{

struct KnownKey
{
    unsigned symbol;
    ImGuiKey key;
};

constexpr std::array kKeys{
    KnownKey{XK_Tab, ImGuiKey_Tab},
    KnownKey{XK_Left, ImGuiKey_LeftArrow},
    KnownKey{XK_Right, ImGuiKey_RightArrow},
    KnownKey{XK_Up, ImGuiKey_UpArrow},
    KnownKey{XK_Down, ImGuiKey_DownArrow},
    KnownKey{XK_Page_Up, ImGuiKey_PageUp},
    KnownKey{XK_Page_Down, ImGuiKey_PageDown},
    KnownKey{XK_Home, ImGuiKey_Home},
    KnownKey{XK_End, ImGuiKey_End},
    KnownKey{XK_Insert, ImGuiKey_Insert},
    KnownKey{XK_Delete, ImGuiKey_Delete},
    KnownKey{XK_BackSpace, ImGuiKey_Backspace},
    KnownKey{XK_space, ImGuiKey_Space},
    KnownKey{XK_Return, ImGuiKey_Enter},
    KnownKey{XK_Escape, ImGuiKey_Escape},
    KnownKey{XK_KP_Enter, ImGuiKey_KeyPadEnter},
    KnownKey{XK_a, ImGuiKey_A},
    KnownKey{XK_c, ImGuiKey_C},
    KnownKey{XK_v, ImGuiKey_V},
    KnownKey{XK_x, ImGuiKey_X},
    KnownKey{XK_y, ImGuiKey_Y},
    KnownKey{XK_z, ImGuiKey_Z},
};

PointerShape shapeOf(ImGuiMouseCursor cursor)
{
    switch (cursor)
    {
    case ImGuiMouseCursor_TextInput:
        return PointerShape::Text;
    case ImGuiMouseCursor_Hand:
        return PointerShape::Hand;
    case ImGuiMouseCursor_ResizeEW:
        return PointerShape::Horizontal;
    default:
        return PointerShape::Arrow;
    }
}

} // namespace

Gui::Gui(GlWindow& window, GraphicsApi api, std::function<void()> build)
    : fWindow(window), fApi(api), fBuild(std::move(build)), fContext(ImGui::CreateContext())
{
    ImGuiIO& io = ImGui::GetIO();
    io.IniFilename = nullptr;
    io.LogFilename = nullptr;
    io.BackendFlags |= ImGuiBackendFlags_HasMouseCursors;
    io.ConfigInputTextCursorBlink = false; // or the window would be drawn again and again
    io.ConfigWindowsMoveFromTitleBarOnly = true;
    io.KeyRepeatDelay = FLT_MAX; // X repeats keys itself
    for (const KnownKey& known : kKeys)
        io.KeyMap[known.key] = known.key;
    io.ClipboardUserData = this;
    io.SetClipboardTextFn = [](void* self, const char* text)
    { static_cast<Gui*>(self)->fWindow.clipboard().copy(text); };
    io.GetClipboardTextFn = [](void* self)
    {
        auto& gui = *static_cast<Gui*>(self);
        gui.fPasted = gui.fWindow.clipboard().paste();
        return gui.fPasted.c_str();
    };
    applyGuiStyle();
    if (fApi == GraphicsApi::Gl21)
    {
        ImGui_ImplOpenGL2_Init();
        ImGui_ImplOpenGL2_CreateDeviceObjects();
    }
    else
    {
        ImGui_ImplOpenGL3_Init("#version 330 core");
        ImGui_ImplOpenGL3_CreateDeviceObjects();
    }
}

Gui::~Gui()
{
    fApi == GraphicsApi::Gl21 ? ImGui_ImplOpenGL2_Shutdown() : ImGui_ImplOpenGL3_Shutdown();
    ImGui::DestroyContext(fContext);
}

void Gui::resize(int width, int height)
{
    ImGui::GetIO().DisplaySize = ImVec2(static_cast<float>(width), static_cast<float>(height));
    fIsStale = true;
}

bool Gui::key(const KeyStroke& stroke)
{
    ImGuiIO& io = ImGui::GetIO();
    const bool isTaken = io.WantCaptureKeyboard;
    io.KeyCtrl = stroke.hasControl;
    io.KeyShift = stroke.hasShift;
    io.KeyAlt = stroke.hasAlt;
    const auto* const known =
        std::find_if(kKeys.begin(), kKeys.end(), [&](const KnownKey& row) { return row.symbol == stroke.key; });
    if (known != kKeys.end())
        io.KeysDown[known->key] = stroke.isDown;
    if (!stroke.hasControl && !stroke.hasAlt)
        io.AddInputCharactersUTF8(stroke.text.c_str());
    frame();
    return isTaken;
}

void Gui::moveTo(int x, int y)
{
    ImGuiIO& io = ImGui::GetIO();
    const ImVec2 place(static_cast<float>(x), static_cast<float>(y));
    fIsStale |= place.x != io.MousePos.x || place.y != io.MousePos.y;
    io.MousePos = place;
}

bool Gui::mouseButton(int button, int action, int x, int y)
{
    constexpr std::array kImGuiButtons{0, 2, 1}; // by X's buttons from 1
    constexpr int kWheelUp = 4;
    constexpr int kWheelDown = 5;
    ImGuiIO& io = ImGui::GetIO();
    moveTo(x, y);
    if (action == View::kMoved)
        return io.WantCaptureMouse;
    // What was dragged is to arrive before it is let go.
    if (fIsStale)
        frame();
    if (button >= 1 && button <= static_cast<int>(kImGuiButtons.size()))
        io.MouseDown[kImGuiButtons[static_cast<std::size_t>(button) - 1]] = action == View::kPressed;
    else if (action == View::kPressed && (button == kWheelUp || button == kWheelDown))
        io.MouseWheel += button == kWheelUp ? 1.0f : -1.0f;
    frame();
    return io.WantCaptureMouse;
}

void Gui::pointerLeft()
{
    // A drag goes on outside of the window.
    if (!ImGui::IsAnyMouseDown())
        moveTo(-1, -1);
}

void Gui::focusLost()
{
    ImGuiIO& io = ImGui::GetIO();
    std::fill(std::begin(io.KeysDown), std::end(io.KeysDown), false);
    io.KeyCtrl = io.KeyShift = io.KeyAlt = false;
    fIsStale = true;
}

void Gui::frame()
{
    ImGuiIO& io = ImGui::GetIO();
    const auto now = std::chrono::steady_clock::now();
    io.DeltaTime = std::max(1e-4f, std::chrono::duration<float>(now - fLastFrame).count());
    fLastFrame = now;
    fIsStale = true;
    ImGui::NewFrame();
    fBuild();
    ImGui::Render();
}

std::uint64_t Gui::look() const
{
    std::uint64_t hash = 0xcbf29ce484222325;
    const auto add = [&hash](const void* data, std::size_t size)
    {
        for (std::size_t i = 0; i < size; ++i)
            hash = (hash ^ static_cast<const unsigned char*>(data)[i]) * 0x100000001b3;
    };
    const ImDrawData& data = *ImGui::GetDrawData();
    for (int i = 0; i < data.CmdListsCount; ++i)
    {
        const ImDrawList& list = *data.CmdLists[i];
        add(list.VtxBuffer.Data, static_cast<std::size_t>(list.VtxBuffer.size_in_bytes()));
        for (const ImDrawCmd& command : list.CmdBuffer)
            add(&command.ClipRect, sizeof command.ClipRect);
    }
    return hash;
}

/// Runs frames until two look alike.
void Gui::settle()
{
    // Windows that fit their contents take two frames to find their size.
    constexpr int kMostFrames = 4;
    frame();
    std::uint64_t now = look();
    for (int i = 1; i < kMostFrames; ++i)
    {
        frame();
        const std::uint64_t next = look();
        if (next == now)
            break;
        now = next;
    }
    fIsStale = false;
    fWindow.setPointer(shapeOf(ImGui::GetMouseCursor()));
}

bool Gui::isOutOfDate()
{
    if (fIsStale)
        settle();
    return look() != fDrawn;
}

void Gui::draw()
{
    settle(); // what they show may have changed with the picture
    const bool isCoded = hasSrgbFrames() && glIsEnabled(GL_FRAMEBUFFER_SRGB) == GL_TRUE;
    if (isCoded)
        glDisable(GL_FRAMEBUFFER_SRGB);
    if (fApi == GraphicsApi::Gl21)
        ImGui_ImplOpenGL2_RenderDrawData(ImGui::GetDrawData());
    else
        ImGui_ImplOpenGL3_RenderDrawData(ImGui::GetDrawData());
    if (isCoded)
        glEnable(GL_FRAMEBUFFER_SRGB);
    fDrawn = look();
}
