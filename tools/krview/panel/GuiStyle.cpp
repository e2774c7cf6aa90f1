#include "GuiStyle.h"

#include <imgui.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <system_error>

namespace
{

constexpr float kTextSize = 14;   // pixels
constexpr float kSourceSize = 13; // pixels

constexpr std::array kTextFonts{
    "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf", "/usr/share/fonts/dejavu-sans-fonts/DejaVuSans.ttf",
    "/usr/share/fonts/TTF/DejaVuSans.ttf", "/usr/share/fonts/truetype/noto/NotoSans-Regular.ttf",
    "/usr/share/fonts/truetype/liberation/LiberationSans-Regular.ttf"};
constexpr std::array kSourceFonts{
    "/usr/share/fonts/truetype/dejavu/DejaVuSansMono.ttf", "/usr/share/fonts/dejavu-sans-mono-fonts/DejaVuSansMono.ttf",
    "/usr/share/fonts/TTF/DejaVuSansMono.ttf", "/usr/share/fonts/truetype/noto/NotoSansMono-Regular.ttf",
    "/usr/share/fonts/truetype/liberation/LiberationMono-Regular.ttf"};

/// Latin, Greek and Cyrillic with punctuation and arrows: what labels and sources are mostly written in.
constexpr std::array<ImWchar, 9> kCharacters{0x20, 0x24f, 0x370, 0x52f, 0x2000, 0x206f, 0x2190, 0x21ff, 0};

ImFont* addFont(const std::array<const char*, 5>& files, float size)
{
    ImFontAtlas& fonts = *ImGui::GetIO().Fonts;
    std::error_code failure;
    for (const char* file : files)
        if (std::filesystem::is_regular_file(file, failure))
            if (ImFont* font = fonts.AddFontFromFileTTF(file, size, nullptr, kCharacters.data()))
                return font;
    return fonts.AddFontDefault();
}

ImVec4 grey(float value, float alpha = 1) { return {value, value, value * 1.04f, alpha}; }

} // namespace

void applyGuiStyle()
{
    ImFont* const text = addFont(kTextFonts, kTextSize);
    (void)addFont(kSourceFonts, kSourceSize);
    ImGui::GetIO().Fonts->Build(); // fonts have a size once they are built

    ImGuiStyle& style = ImGui::GetStyle();
    ImGui::StyleColorsDark();
    style.WindowRounding = 0;
    style.PopupRounding = style.FrameRounding = style.GrabRounding = style.ScrollbarRounding = 3;
    style.WindowBorderSize = 0;
    style.WindowPadding = {10, 8};
    style.FramePadding = {6, std::floor((kRowHeight - text->FontSize) / 2)};
    style.ItemSpacing = {6, 4};
    style.ItemInnerSpacing = {6, 4};
    style.ScrollbarSize = 12;
    style.GrabMinSize = 8;
    style.IndentSpacing = 12;
    const ImVec4 accent(0.20f, 0.46f, 0.78f, 1);
    const ImVec4 bright(0.30f, 0.58f, 0.92f, 1);
    ImVec4* const colors = style.Colors;
    colors[ImGuiCol_Text] = grey(0.90f);
    colors[ImGuiCol_TextDisabled] = grey(0.55f);
    colors[ImGuiCol_WindowBg] = grey(0.155f);
    colors[ImGuiCol_PopupBg] = grey(0.12f, 0.98f);
    colors[ImGuiCol_Border] = grey(0.30f);
    colors[ImGuiCol_FrameBg] = grey(0.23f);
    colors[ImGuiCol_FrameBgHovered] = grey(0.28f);
    colors[ImGuiCol_FrameBgActive] = grey(0.32f);
    colors[ImGuiCol_SliderGrab] = accent;
    colors[ImGuiCol_SliderGrabActive] = bright;
    colors[ImGuiCol_CheckMark] = bright;
    colors[ImGuiCol_PlotHistogram] = accent;
    colors[ImGuiCol_Button] = grey(0.27f);
    colors[ImGuiCol_ButtonHovered] = grey(0.34f);
    colors[ImGuiCol_ButtonActive] = accent;
    colors[ImGuiCol_Header] = grey(0.21f);
    colors[ImGuiCol_HeaderHovered] = grey(0.27f);
    colors[ImGuiCol_HeaderActive] = grey(0.30f);
    colors[ImGuiCol_Separator] = grey(0.26f);
    colors[ImGuiCol_ScrollbarBg] = grey(0.13f);
    colors[ImGuiCol_TextSelectedBg] = ImVec4(accent.x, accent.y, accent.z, 0.6f);
}

ImFont* sourceFont() { return ImGui::GetIO().Fonts->Fonts.back(); }
