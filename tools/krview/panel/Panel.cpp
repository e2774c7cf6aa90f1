#include "Panel.h"

#include "GuiStyle.h"
#include "Rows.h"

#include <imgui.h>

#include <algorithm>
#include <filesystem>
#include <utility>

Panel::Panel(SceneEditor& editor, View& view, const Stage& stage, Actions actions)
    : fEditor(editor), fStage(stage), fActions(std::move(actions)), fRows(editor, stage), fSettings(editor, view, stage)
{
}

void Panel::refresh()
{
    fRows.forget();
    fSubjects.clear();
    for (std::size_t object = 0; object < fStage.objects().size(); ++object)
    {
        const SceneObject& settings = fStage.scene().objects[object];
        const auto& parts = fStage.objects()[object].model->parts();
        // Parts without a look of their own are shown as their object, by the first of them.
        const auto first = std::find_if(parts.begin(), parts.end(),
                                        [&](const MeshPart& part) { return !settings.parts.contains(part.name); });
        if (first != parts.end())
            fSubjects.push_back({object, static_cast<std::size_t>(first - parts.begin()), ""});
        for (std::size_t surface = 0; surface < parts.size(); ++surface)
            if (parts.size() > 1 || settings.parts.contains(parts[surface].name))
                fSubjects.push_back({object, surface, parts[surface].name});
    }
    fSubject = std::min(fSubject, fSubjects.empty() ? 0 : fSubjects.size() - 1);
}

void Panel::build(float width, float height)
{
    const ImGuiStyle& style = ImGui::GetStyle();
    ImGui::SetNextWindowPos({std::max(0.0f, width - kPanelWidth), 0});
    ImGui::SetNextWindowSize({std::min(kPanelWidth, width), height});
    ImGui::SetNextWindowContentSize({kPanelWidth - 2 * style.WindowPadding.x - style.ScrollbarSize, 0});
    ImGui::Begin("panel", nullptr,
                 ImGuiWindowFlags_NoTitleBar | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoResize |
                     ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_AlwaysVerticalScrollbar |
                     ImGuiWindowFlags_HorizontalScrollbar);
    buildButtons();
    ImGui::Separator();
    if (fSubjects.empty())
        ImGui::TextDisabled("nothing is loaded yet");
    // After a step back to other objects the stage has yet to load them.
    else if (fEditor.scene().objects.size() == fStage.objects().size())
    {
        buildSubject();
        buildLights();
        fSettings.build(fSubjects[fSubject].object);
    }
    ImGui::TextDisabled("Ctrl+click a number to type it; Tab hides the panel");
    ImGui::End();
    if (!ImGui::IsAnyItemActive())
        fEditor.endStep();
}

void Panel::buildButtons()
{
    const auto button = [](const char* label, const char* help, bool isEnabled)
    {
        ImGui::BeginDisabled(!isEnabled);
        const bool isPressed = ImGui::Button(label);
        ImGui::EndDisabled();
        if (ImGui::IsItemHovered())
            ImGui::SetTooltip("%s", help);
        ImGui::SameLine();
        return isPressed;
    };
    if (button("Save scene", "into its file, or a new one in this folder", !fSubjects.empty()))
        fActions.save();
    if (button("Copy options", "the options that krview shows this with", !fSubjects.empty()))
        fActions.copy();
    if (button("Undo", "Ctrl+Z", fEditor.canUndo()))
        fEditor.undo();
    if (button("Redo", "Ctrl+Shift+Z", fEditor.canRedo()))
        fEditor.redo();
    ImGui::NewLine();
}

void Panel::buildSubject()
{
    const auto nameOf = [this](const InputRows::Subject& subject)
    {
        const std::string object = fStage.objects()[subject.object].name;
        const std::string part = subject.part.empty() ? "" : object.empty() ? subject.part : ": " + subject.part;
        const std::string name = object + part;
        return name.empty() ? std::string("all parts") : name;
    };
    if (fSubjects.size() > 1)
    {
        beginRow("Object");
        std::vector<std::string> names;
        std::vector<const char*> shown;
        names.reserve(fSubjects.size());
        shown.reserve(fSubjects.size());
        for (const InputRows::Subject& subject : fSubjects)
            names.push_back(nameOf(subject));
        for (const std::string& name : names)
            shown.push_back(name.c_str());
        (void)namesWidget(shown, fSubject);
        (void)endRow();
    }
    const InputRows::Subject& subject = fSubjects[fSubject];
    const std::string& material = fStage.objects()[subject.object].surfaces[subject.surface].material->material.name;
    if (!buildSection("Material", material, true))
        return;
    fRows.build(subject, "");
    if (ImGui::Button("Reset all"))
        fRows.resetAll(subject, "");
}

std::vector<krTools::LightName>& Panel::lights(const std::string& step)
{
    Scene& scene = fEditor.change(step, SceneEditor::Change::All);
    if (!scene.lights)
        scene.lights = defaultLights();
    return *scene.lights;
}

void Panel::buildLights()
{
    const std::vector<krTools::LightName> lights = fEditor.scene().lights.value_or(defaultLights());
    if (!buildSection("Lights", std::to_string(lights.size()), true))
        return;
    for (std::size_t i = 0; i < lights.size(); ++i)
        buildLight(lights, i);
    buildNewLight(lights);
}

void Panel::buildLight(const std::vector<krTools::LightName>& all, std::size_t index)
{
    const krTools::LightName& light = all[index];
    ImGui::PushID(light.key.c_str());
    const bool isOpen =
        ImGui::TreeNodeEx("##light", ImGuiTreeNodeFlags_NoTreePushOnOpen | ImGuiTreeNodeFlags_SpanAvailWidth |
                                         ImGuiTreeNodeFlags_AllowItemOverlap | ImGuiTreeNodeFlags_FramePadding);
    ImGui::SameLine();
    ImGui::Text("%s", light.key.c_str());
    ImGui::SameLine();
    ImGui::TextDisabled("%s", light.function.c_str());
    ImGui::SameLine(ImGui::GetContentRegionMax().x - 3 * kRowHeight - 8);
    ImGui::BeginDisabled(index == 0);
    if (ImGui::ArrowButton("up", ImGuiDir_Up))
        std::swap(lights("move " + light.key)[index], lights("move " + light.key)[index - 1]);
    ImGui::EndDisabled();
    ImGui::SameLine(0, 4);
    ImGui::BeginDisabled(index + 1 == all.size());
    if (ImGui::ArrowButton("down", ImGuiDir_Down))
        std::swap(lights("move " + light.key)[index], lights("move " + light.key)[index + 1]);
    ImGui::EndDisabled();
    ImGui::SameLine(0, 4);
    const bool isRemoved = ImGui::Button("x", {kRowHeight, kRowHeight});
    if (ImGui::IsItemHovered())
        ImGui::SetTooltip("remove this light");
    if (isOpen)
        fRows.build(fSubjects[fSubject], light.key);
    ImGui::PopID();
    if (isRemoved)
        remove(light.key);
}

void Panel::remove(const std::string& key)
{
    const std::string step = "remove " + key;
    std::vector<krTools::LightName>& left = lights(step);
    std::erase_if(left, [&](const krTools::LightName& light) { return light.key == key; });
    // Its values and its shadow would be those of no light.
    Scene& scene = fEditor.change(step, SceneEditor::Change::All);
    if (scene.shadow.light == key)
        scene.shadow.light.clear();
    const Surface& surface = fStage.objects()[fSubjects[fSubject].object].surfaces[fSubjects[fSubject].surface];
    for (const ProgramInput& input : surface.material->material.inputs)
        if (input.light == key)
            for (InputValues* values : inputsOf(scene))
                values->erase(input.name);
}

void Panel::buildNewLight(const std::vector<krTools::LightName>& all)
{
    constexpr const char* kPopup = "new light";
    if (ImGui::Button("Add light"))
    {
        fLightChoices = lightChoices(fEditor.scene());
        ImGui::OpenPopup(kPopup);
    }
    if (!ImGui::BeginPopup(kPopup))
        return;
    for (std::size_t i = 0; i < fLightChoices.size(); ++i)
    {
        const LightChoice& choice = fLightChoices[i];
        ImGui::PushID(static_cast<int>(i));
        const bool isTaken = ImGui::Selectable(choice.function.c_str());
        ImGui::PopID();
        if (!isTaken)
            continue;
        const std::string key = newLightKey(all, choice.function);
        lights("add " + key).push_back({"the panel", key, choice.function, choice.file});
    }
    ImGui::EndPopup();
}
