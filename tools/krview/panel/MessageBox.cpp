#include "MessageBox.h"

#include "GuiStyle.h"

#include <imgui.h>

#include <array>
#include <cstddef>
#include <tuple>

using krTools::MessageKind;
using krTools::ShownMessage;

namespace
{

/// Of the kinds of messages, in their order.
const std::array gColours{ImVec4(1.00f, 0.45f, 0.40f, 1), ImVec4(0.95f, 0.70f, 0.30f, 1),
                          ImVec4(0.45f, 0.80f, 0.95f, 1), ImVec4(0.50f, 0.85f, 0.50f, 1),
                          ImVec4(0.75f, 0.75f, 0.75f, 1)};
static_assert(std::tuple_size_v<decltype(gColours)> == static_cast<std::size_t>(MessageKind::Rest) + 1);
const ImVec4 gOriginColour(0.70f, 0.70f, 0.74f, 1);
const ImVec4 gBoxColour(0.11f, 0.06f, 0.065f, 0.92f);

void textOf(const std::string& text) { ImGui::TextUnformatted(text.data(), text.data() + text.size()); }

void buildMessage(const ShownMessage& message)
{
    const ImVec4& colour = gColours[static_cast<std::size_t>(message.kind)];
    ImGui::PushStyleColor(ImGuiCol_Text, gOriginColour);
    textOf(message.origin + ":");
    ImGui::PopStyleColor();
    ImGui::PushStyleColor(ImGuiCol_Text, colour);
    if (KeptMessages::isOwnFault(message))
        ImGui::TextWrapped("a fault of krender's, not of the source");
    ImGui::PushTextWrapPos(0);
    textOf(krTools::messageWord(message.kind) + message.text);
    ImGui::PopTextWrapPos();
    ImGui::PopStyleColor();
    if (message.underline.empty())
        return;
    ImGui::PushFont(sourceFont());
    ImGui::PushStyleVar(ImGuiStyleVar_ItemSpacing, {0, 0});
    textOf(message.line);
    textOf(message.blanks);
    ImGui::SameLine();
    ImGui::PushStyleColor(ImGuiCol_Text, colour);
    textOf(message.underline);
    ImGui::PopStyleColor();
    ImGui::PopStyleVar();
    ImGui::PopFont();
}

} // namespace

void buildMessageBox(const KeptMessages& messages, float width, float height)
{
    if (messages.messages().empty())
        return;
    constexpr float kMostOfHeight = 0.6f;
    ImGui::SetNextWindowPos({0, 0});
    ImGui::SetNextWindowSizeConstraints({width, 0}, {width, height * kMostOfHeight});
    ImGui::PushStyleColor(ImGuiCol_WindowBg, gBoxColour);
    ImGui::Begin("messages", nullptr,
                 ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_AlwaysAutoResize |
                     ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_HorizontalScrollbar |
                     ImGuiWindowFlags_NoFocusOnAppearing);
    bool isFirst = true;
    for (const ShownMessage& message : messages.messages())
    {
        // A note or fix belongs to the message above it.
        if (!isFirst && message.kind != MessageKind::Note && message.kind != MessageKind::Fix)
            ImGui::Separator();
        buildMessage(message);
        isFirst = false;
    }
    ImGui::End();
    ImGui::PopStyleColor();
}
