#include "Rows.h"

#include "GuiStyle.h"

#include <common/PrintedMessage.h>

#include <imgui.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace
{

constexpr float kLabelWidth = 118;
constexpr float kGreatestEnd = 1e9f; ///< of sliders: ImGui takes no ranges that overflow

bool isUsable(const InputForm::End& end) { return end && std::abs(*end) <= static_cast<double>(kGreatestEnd); }

/// How far a pixel of a drag goes.
float dragSpeed(std::span<const double> numbers)
{
    double greatest = 1;
    for (const double number : numbers)
        greatest = std::max(greatest, std::abs(number));
    return static_cast<float>(greatest / 100);
}

double withinEnds(const InputForm& form, double number)
{
    if (form.least)
        number = std::max(number, *form.least);
    if (form.greatest)
        number = std::min(number, *form.greatest);
    return number;
}

/// Whether the user has given another number than that which was shown; the others keep all their digits.
bool isOther(float number, double before) { return std::isfinite(number) && number != static_cast<float>(before); }

/// A slider where both its ends are known, else a field that is dragged.
/// @param type  of T
template <class T>
bool scalars(const InputForm& form, ImGuiDataType type, std::vector<T>& values, float speed)
{
    const auto count = static_cast<int>(values.size());
    if (!isUsable(form.sliderLeast) || !isUsable(form.sliderGreatest))
        return ImGui::DragScalarN("##value", type, values.data(), count, speed);
    const T least = static_cast<T>(*form.sliderLeast);
    const T greatest = static_cast<T>(*form.sliderGreatest);
    return ImGui::SliderScalarN("##value", type, values.data(), count, &least, &greatest);
}

} // namespace

double shortest(float number)
{
    const std::string digits = krTools::digitsOf(number);
    double value = number;
    (void)std::from_chars(digits.data(), digits.data() + digits.size(), value);
    return value;
}

void beginRow(const std::string& label, const std::string& help)
{
    ImGui::AlignTextToFramePadding();
    const ImVec2 at = ImGui::GetCursorScreenPos();
    ImGui::PushClipRect(at, {at.x + kLabelWidth - 6, at.y + kRowHeight}, true);
    ImGui::TextUnformatted(label.data(), label.data() + label.size());
    const bool isHovered = ImGui::IsItemHovered();
    const bool isCut = ImGui::GetItemRectSize().x > kLabelWidth - 6;
    ImGui::PopClipRect();
    if (isHovered && (isCut || !help.empty()))
    {
        ImGui::BeginTooltip();
        ImGui::PushTextWrapPos(kPanelWidth);
        if (isCut)
            ImGui::TextUnformatted(label.data(), label.data() + label.size());
        if (!help.empty())
            ImGui::TextUnformatted(help.data(), help.data() + help.size());
        ImGui::PopTextWrapPos();
        ImGui::EndTooltip();
    }
    ImGui::SameLine(ImGui::GetStyle().WindowPadding.x + kLabelWidth);
    ImGui::SetNextItemWidth(ImGui::GetContentRegionAvail().x - kRowHeight - ImGui::GetStyle().ItemSpacing.x);
}

bool endRow(bool canReset)
{
    if (!canReset)
        return false;
    ImGui::SameLine(ImGui::GetContentRegionMax().x - kRowHeight);
    constexpr ImWchar kTurnBack = 0x21ba;
    const bool hasSign = ImGui::GetFont()->FindGlyphNoFallback(kTurnBack) != nullptr;
    ImGui::PushStyleColor(ImGuiCol_Button, {0, 0, 0, 0});
    const bool isPressed = ImGui::Button(hasSign ? "\xe2\x86\xba##reset" : "x##reset", {kRowHeight, kRowHeight});
    ImGui::PopStyleColor();
    if (ImGui::IsItemHovered())
        ImGui::SetTooltip("take back");
    return isPressed;
}

bool numbersWidget(const InputForm& form, std::vector<double>& numbers)
{
    bool isChanged = false;
    if (form.isWhole)
    {
        std::vector<int> whole(numbers.size());
        std::transform(numbers.begin(), numbers.end(), whole.begin(),
                       [](double number) { return static_cast<int>(number); });
        isChanged = scalars(form, ImGuiDataType_S32, whole, 0.1f);
        for (std::size_t i = 0; isChanged && i < whole.size(); ++i)
            if (whole[i] != static_cast<int>(numbers[i]))
                numbers[i] = withinEnds(form, whole[i]);
    }
    else
    {
        std::vector<float> floats(numbers.begin(), numbers.end());
        isChanged = scalars(form, ImGuiDataType_Float, floats, dragSpeed(numbers));
        for (std::size_t i = 0; isChanged && i < floats.size(); ++i)
            if (isOther(floats[i], numbers[i]))
                numbers[i] = withinEnds(form, shortest(floats[i]));
    }
    return isChanged;
}

bool colourWidget(std::span<double> numbers)
{
    const float width = ImGui::CalcItemWidth();
    const auto shown = [&](std::size_t i) { return i < numbers.size() ? static_cast<float>(numbers[i]) : 1.0f; };
    std::array<float, 4> picked{shown(0), shown(1), shown(2), shown(3)};
    if (ImGui::ColorButton("##colour", {picked[0], picked[1], picked[2], 1}, ImGuiColorEditFlags_NoTooltip,
                           {kRowHeight, kRowHeight}))
        ImGui::OpenPopup("picker");
    ImGui::SameLine();
    ImGui::SetNextItemWidth(width - kRowHeight - ImGui::GetStyle().ItemSpacing.x);
    std::vector<float> floats(numbers.begin(), numbers.end());
    bool isChanged =
        ImGui::DragScalarN("##numbers", ImGuiDataType_Float, floats.data(), static_cast<int>(floats.size()), 0.005f);
    if (ImGui::BeginPopup("picker"))
    {
        constexpr ImGuiColorEditFlags kFlags =
            ImGuiColorEditFlags_NoSidePreview | ImGuiColorEditFlags_PickerHueWheel | ImGuiColorEditFlags_NoOptions;
        const bool hasAlpha = numbers.size() == 4;
        if (hasAlpha ? ImGui::ColorPicker4("##picker", picked.data(), kFlags | ImGuiColorEditFlags_AlphaBar)
                     : ImGui::ColorPicker3("##picker", picked.data(), kFlags))
        {
            isChanged = true;
            for (std::size_t i = 0; i < floats.size(); ++i)
                floats[i] = picked[i];
        }
        ImGui::EndPopup();
    }
    for (std::size_t i = 0; isChanged && i < floats.size(); ++i)
        if (isOther(floats[i], numbers[i]))
            numbers[i] = shortest(std::max(0.0f, floats[i]));
    return isChanged;
}

bool matrixWidget(const InputForm& form, std::vector<double>& numbers)
{
    const auto side = static_cast<std::size_t>(std::lround(std::sqrt(static_cast<double>(form.count))));
    const float left = ImGui::GetCursorPosX();
    const float width = ImGui::CalcItemWidth();
    bool isChanged = false;
    for (std::size_t row = 0; row < side; ++row)
    {
        const auto begin = numbers.begin() + static_cast<std::ptrdiff_t>(row * side);
        std::vector<float> floats(begin, begin + static_cast<std::ptrdiff_t>(side));
        ImGui::PushID(static_cast<int>(row));
        ImGui::SetCursorPosX(left);
        ImGui::SetNextItemWidth(width);
        if (ImGui::DragScalarN("##row", ImGuiDataType_Float, floats.data(), static_cast<int>(side), 0.01f))
        {
            isChanged = true;
            for (std::size_t i = 0; i < side; ++i)
                if (isOther(floats[i], numbers[row * side + i]))
                    numbers[row * side + i] = shortest(floats[i]);
        }
        ImGui::PopID();
    }
    return isChanged;
}

bool choiceWidget(const InputForm& form, std::vector<double>& numbers)
{
    const auto chosen = std::find_if(form.choices.begin(), form.choices.end(),
                                     [&](const InputForm::Choice& choice) { return choice.value == numbers[0]; });
    const std::string other = krTools::digitsOf(numbers[0]);
    bool isChanged = false;
    if (!ImGui::BeginCombo("##choice", (chosen == form.choices.end() ? other : chosen->label).c_str()))
        return false;
    for (std::size_t i = 0; i < form.choices.size(); ++i)
    {
        ImGui::PushID(static_cast<int>(i));
        const InputForm::Choice& choice = form.choices[i];
        if (ImGui::Selectable("##choice", choice.value == numbers[0]))
        {
            numbers[0] = choice.value;
            isChanged = true;
        }
        ImGui::SameLine();
        ImGui::TextUnformatted(choice.label.c_str());
        ImGui::PopID();
    }
    ImGui::EndCombo();
    return isChanged;
}

bool checkBox(bool& value) { return ImGui::Checkbox("##box", &value); }

bool namesWidget(std::span<const char* const> names, std::size_t& chosen)
{
    bool isChanged = false;
    if (!ImGui::BeginCombo("##name", chosen < names.size() ? names[chosen] : ""))
        return false;
    for (std::size_t i = 0; i < names.size(); ++i)
        if (ImGui::Selectable(names[i], i == chosen))
        {
            chosen = i;
            isChanged = true;
        }
    ImGui::EndCombo();
    return isChanged;
}
