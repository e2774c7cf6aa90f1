#include "SettingsRows.h"

#include "Rows.h"

#include <krview/picture/BuiltInPictures.h>

#include <common/SourceNames.h>

#include <imgui.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <filesystem>
#include <optional>
#include <utility>

namespace
{

/// Numbers of the scene that a row shows: what is dragged, and its ends.
struct Drag
{
    float speed;
    double least;
    double greatest;
};

template <class Number, std::size_t Count>
bool drag(std::array<Number*, Count> numbers, const Drag& how)
{
    std::array<float, Count> floats{};
    std::transform(numbers.begin(), numbers.end(), floats.begin(),
                   [](const Number* n) { return static_cast<float>(*n); });
    if (!ImGui::DragScalarN("##value", ImGuiDataType_Float, floats.data(), static_cast<int>(Count), how.speed))
        return false;
    // The others keep all their digits.
    for (std::size_t i = 0; i < Count; ++i)
        if (floats[i] != static_cast<float>(*numbers[i]) && std::isfinite(floats[i]))
            *numbers[i] = static_cast<Number>(std::clamp(shortest(floats[i]), how.least, how.greatest));
    return true;
}

template <class Number>
bool drag(Number& number, const Drag& how)
{
    return drag(std::array{&number}, how);
}

bool drag(std::array<double, 3>& numbers, const Drag& how)
{
    return drag(std::array{&numbers[0], &numbers[1], &numbers[2]}, how);
}

bool drag(unsigned& number, unsigned least, unsigned greatest)
{
    int value = static_cast<int>(number);
    if (!ImGui::DragInt("##value", &value, 0.5f, static_cast<int>(least), static_cast<int>(greatest), "%d",
                        ImGuiSliderFlags_AlwaysClamp))
        return false;
    number = static_cast<unsigned>(value);
    return true;
}

bool colour(std::array<float, 3>& value)
{
    std::array<double, 3> numbers{value[0], value[1], value[2]};
    if (!colourWidget(numbers))
        return false;
    std::transform(numbers.begin(), numbers.end(), value.begin(),
                   [](double n) { return std::clamp(static_cast<float>(n), 0.0f, 1.0f); });
    return true;
}

/// A button with a file's name that opens a list of files.
std::optional<std::string> file(FileChooser& chooser, const std::string& path, const char* none)
{
    const std::string shown = path.empty() ? none : std::filesystem::path(path).filename().string();
    if (ImGui::Button((shown + "##file").c_str(), {ImGui::CalcItemWidth(), 0}))
        chooser.open(std::filesystem::path(path).parent_path().string());
    return chooser.build();
}

} // namespace

bool buildSection(const char* name, const std::string& detail, bool isAtFirst)
{
    const bool isOpen = ImGui::CollapsingHeader(name, isAtFirst ? ImGuiTreeNodeFlags_DefaultOpen : 0);
    if (!detail.empty())
    {
        ImGui::SameLine(ImGui::GetStyle().WindowPadding.x + 118);
        ImGui::TextDisabled("%s", detail.c_str());
    }
    return isOpen;
}

SettingsRows::SettingsRows(SceneEditor& editor, View& view, const Stage& stage)
    : fEditor(editor),
      fView(view),
      fStage(stage),
      fMaterials({".krs"}, {}),
      fMeshes({".obj", ".ply", ".gltf", ".glb", ".stl", ".fbx", ".dae", ".off", ".3ds"}, {}),
      fSurroundings({".hdr", ".png", ".jpg", ".jpeg"}, builtInPictureNames())
{
}

template <class Widget>
void SettingsRows::row(const char* label, Change change, Widget widget)
{
    ImGui::PushID(label);
    beginRow(label);
    Scene next = fEditor.scene();
    if (widget(next))
        fEditor.change(label, change) = std::move(next);
    (void)endRow();
    ImGui::PopID();
}

void SettingsRows::build(std::size_t object)
{
    if (buildSection("Object", fEditor.scene().objects[object].name, false))
        buildObject(object);
    if (buildSection("Scene", "", false))
        buildScene();
    if (buildSection("View", "", false))
        buildView();
}

void SettingsRows::buildObject(std::size_t index)
{
    row("Material", Change::All,
        [&](Scene& scene)
        {
            std::string& material = scene.objects[index].look.material;
            const auto taken = file(fMaterials, krTools::materialName(material).file, "none");
            if (!taken)
                return false;
            material = *taken;
            // What only the former material has is no error.
            for (InputValues* values : inputsOf(scene))
                for (auto& [name, value] : *values)
                    value.isOptional = true;
            return true;
        });
    buildShape(index);
    constexpr Drag kPlace{0.02f, -1e6, 1e6};
    row("Position", Change::Values, [&](Scene& scene) { return drag(scene.objects[index].position, kPlace); });
    row("Rotation", Change::Values,
        [&](Scene& scene) {
            return drag(scene.objects[index].rotation, {0.5f, -360, 360});
        });
    row("Scale", Change::Values, [&](Scene& scene) { return drag(scene.objects[index].scale, {0.01f, 0.001, 1e6}); });
    row("Casts shadow", Change::All, [&](Scene& scene) { return checkBox(scene.objects[index].castsShadow); });
    const SceneObject& shown = fEditor.scene().objects[index];
    const bool isParticles = shown.mesh.empty() && shown.shape == Shape::Particles;
    if (fEditor.scene().objects.size() == 1 && !isParticles)
    {
        row("Grid", Change::All, [](Scene& scene) { return drag(scene.grid, 1, kMostObjects); });
        row("Spacing", Change::Values, [](Scene& scene) { return drag(scene.spacing, {0.02f, 0, 1000}); });
    }
}

void SettingsRows::buildShape(std::size_t index)
{
    // Each row may replace the scene.
    const auto shown = [&]() -> const SceneObject& { return fEditor.scene().objects[index]; };
    row("Mesh", Change::All,
        [&](Scene& scene)
        {
            const auto taken = file(fMeshes, shown().mesh, "none: a shape");
            if (taken)
                scene.objects[index].mesh = *taken;
            return taken.has_value();
        });
    row("Shape", Change::All,
        [&](Scene& scene)
        {
            SceneObject& object = scene.objects[index];
            std::size_t chosen = object.mesh.empty() ? static_cast<std::size_t>(object.shape) : kShapeNames.size();
            if (!namesWidget(kShapeNames, chosen))
                return false;
            object.shape = static_cast<Shape>(chosen);
            object.mesh.clear();
            object.parts.clear();
            if (object.shape == Shape::Particles)
                scene.grid = 1;
            return true;
        });
    if (!shown().mesh.empty())
        return;
    if (shown().shape == Shape::Particles)
        row("Particles", Change::All,
            [&](Scene& scene) { return drag(scene.objects[index].particles, 1, kMostParticles); });
    else if (shown().shape < Shape::Particles)
        row("Smooth", Change::All, [&](Scene& scene) { return checkBox(scene.objects[index].isSmooth); });
    else
        row("Fineness", Change::All,
            [&](Scene& scene) { return drag(scene.objects[index].fineness, kLeastFineness, kGreatestFineness); });
}

void SettingsRows::buildScene()
{
    row("Top", Change::Values, [](Scene& scene) { return colour(scene.top); });
    row("Bottom", Change::Values, [](Scene& scene) { return colour(scene.bottom); });
    buildEnvironment();
    row("Samples", Change::Values, [](Scene& scene) { return drag(scene.samples, 1, kMostSamples); });
    row("Axes", Change::Values, [](Scene& scene) { return checkBox(scene.axes); });
    row("Wire frame", Change::Values, [](Scene& scene) { return checkBox(scene.wire); });
    row("Encode", Change::Values, [](Scene& scene) { return checkBox(scene.encodes); });
}

void SettingsRows::buildEnvironment()
{
    row("Environment", Change::All,
        [&](Scene& scene)
        {
            const auto taken = file(fSurroundings, scene.environment ? scene.environment->picture.name : "", "none");
            if (!taken)
                return false;
            if (!scene.environment)
                scene.environment.emplace();
            scene.environment->picture.name = *taken;
            scene.environment->picture.directory = "";
            scene.environment->picture.faces.clear();
            return true;
        });
    if (!fEditor.scene().environment)
        return;
    row("Turn", Change::Values, [](Scene& scene) { return drag(scene.environment->turn, {0.5f, -360, 360}); });
    row("Intensity", Change::Values, [](Scene& scene) { return drag(scene.environment->intensity, {0.01f, 0, 1000}); });
    row("As background", Change::Values, [](Scene& scene) { return checkBox(scene.environment->isShown); });
    row("Blur", Change::Values, [](Scene& scene) { return drag(scene.environment->blur, {0.005f, 0, 1}); });
}

void SettingsRows::buildView()
{
    Scene seen = fEditor.scene();
    fView.store(seen);
    bool isChanged = false;
    const auto field = [&](const char* label, auto& number, const Drag& how)
    {
        ImGui::PushID(label);
        beginRow(label);
        isChanged |= drag(number, how);
        (void)endRow();
        ImGui::PopID();
    };
    field("Pitch", seen.pitch, {0.5f, -90, 90});
    field("Yaw", seen.yaw, {0.5f, -360, 360});
    field("Distance", seen.distance, {0.02f, shortest(kLeastDistance), kGreatestDistance});
    field("Field of view", seen.opening, {0.2f, 1, 150});
    field("Target", seen.target, {0.01f, -1e6, 1e6});
    if (isChanged)
        fView.show(seen);
    if (ImGui::Button("Frame all"))
        fView.frame(fStage.placements().bounds());
}
