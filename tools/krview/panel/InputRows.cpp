#include "InputRows.h"

#include "Rows.h"

#include <krview/mesh/Streams.h>
#include <krview/picture/BuiltInPictures.h>

#include <imgui.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <initializer_list>
#include <utility>
#include <variant>

namespace
{

InputValue panelValue(std::variant<std::vector<double>, NamedValue> value)
{
    return {std::move(value), {"krview", nullptr, 0}, "the panel", true};
}

/// The look of a part of an object; null when it has none of its own.
template <class Object>
auto* partLook(Object& object, const std::string& part)
{
    const auto found = object.parts.find(part);
    return found == object.parts.end() ? nullptr : &found->second;
}

/// Where what the user sets for an input is kept.
InputValues& home(Scene& scene, const InputRows::Subject& subject, const InputForm& form)
{
    if (!form.light.empty())
        return scene.inputs;
    SceneObject& object = scene.objects[subject.object];
    if (!subject.part.empty())
        return object.parts[subject.part].inputs;
    const bool isShared = scene.objects.size() == 1 && !object.look.inputs.contains(form.name);
    return isShared ? scene.inputs : object.look.inputs;
}

std::string helpOf(const InputForm& form)
{
    const std::string name = form.name + ", " + dataTypeName(form.type);
    return form.help.empty() ? name : form.help + "\n" + name;
}

} // namespace

InputRows::InputRows(SceneEditor& editor, const Stage& stage)
    : fEditor(editor), fStage(stage), fPictures({".png", ".jpg", ".jpeg", ".hdr"}, builtInPictureNames())
{
}

const Surface& InputRows::surfaceOf(const Subject& subject) const
{
    return fStage.objects()[subject.object].surfaces[subject.surface];
}

const std::vector<InputForm>& InputRows::forms(const Subject& subject)
{
    const Material& material = surfaceOf(subject).material->material;
    const auto known = fForms.find(&material);
    return known != fForms.end() ? known->second : fForms.emplace(&material, inputForms(material)).first->second;
}

const InputValue* InputRows::value(const Subject& subject, const std::string& name) const
{
    const Scene& scene = fEditor.scene();
    const SceneObject& object = scene.objects[subject.object];
    const Look* const part = partLook(object, subject.part);
    for (const InputValues* values : {part ? &part->inputs : nullptr, &object.look.inputs, &scene.inputs})
        if (values)
            if (const auto found = values->find(name); found != values->end())
                return &found->second;
    return nullptr;
}

std::vector<double> InputRows::numbers(const Subject& subject, const InputForm& form) const
{
    const InputValue* const own = value(subject, form.name);
    const auto* numbers = own ? std::get_if<std::vector<double>>(&own->value) : nullptr;
    if (!numbers || numbers->size() != form.count) // such as one for a material that was replaced
        numbers = surfaceOf(subject).inputs.numbers(form.name);
    return numbers && numbers->size() == form.count ? *numbers : std::vector<double>(form.count, 0.0);
}

void InputRows::build(const Subject& subject, const std::string& light)
{
    std::vector<std::string> pages{""};
    for (const InputForm& form : forms(subject))
        if (form.light == light && std::find(pages.begin(), pages.end(), form.page) == pages.end())
            pages.push_back(form.page);
    bool isEmpty = true;
    for (const std::string& page : pages)
    {
        if (!page.empty())
        {
            ImGui::PushID(page.c_str());
            const bool isOpen =
                ImGui::TreeNodeEx("##page", ImGuiTreeNodeFlags_DefaultOpen | ImGuiTreeNodeFlags_NoTreePushOnOpen |
                                                ImGuiTreeNodeFlags_FramePadding | ImGuiTreeNodeFlags_SpanAvailWidth);
            ImGui::SameLine();
            ImGui::TextUnformatted(page.c_str());
            ImGui::PopID();
            isEmpty = false;
            if (!isOpen)
                continue;
        }
        for (const InputForm& form : forms(subject))
            if (form.light == light && form.page == page)
            {
                buildRow(subject, form);
                isEmpty = false;
            }
    }
    if (isEmpty)
        ImGui::TextDisabled("no inputs");
}

void InputRows::buildRow(const Subject& subject, const InputForm& form)
{
    ImGui::PushID(form.name.c_str());
    beginRow(form.label, helpOf(form));
    if (form.widget == InputForm::Widget::Picture)
        buildPicture(subject, form);
    else if (form.widget == InputForm::Widget::Stream)
        buildStream(subject, form);
    else if (form.widget == InputForm::Widget::None)
        ImGui::TextDisabled("%s", dataTypeName(form.type));
    else if (std::vector<double> now = numbers(subject, form); buildNumbers(form, now))
        set(subject, form, panelValue(std::move(now)));
    if (endRow(value(subject, form.name) != nullptr))
        reset(subject, form, "take back " + form.name);
    ImGui::PopID();
}

bool InputRows::buildNumbers(const InputForm& form, std::vector<double>& numbers) const
{
    switch (form.widget)
    {
    case InputForm::Widget::Colour:
        return colourWidget(numbers);
    case InputForm::Widget::Matrix:
        return matrixWidget(form, numbers);
    case InputForm::Widget::Choice:
        return choiceWidget(form, numbers);
    case InputForm::Widget::CheckBox:
    {
        bool isSet = numbers[0] != 0;
        if (!checkBox(isSet))
            return false;
        numbers[0] = isSet ? 1 : 0;
        return true;
    }
    default:
        return numbersWidget(form, numbers);
    }
}

void InputRows::buildPicture(const Subject& subject, const InputForm& form)
{
    const InputValue* const own = value(subject, form.name);
    const auto* named = own ? std::get_if<NamedValue>(&own->value) : nullptr;
    std::string shown = "as in the source";
    if (named)
        shown = named->faces.empty() ? std::filesystem::path(named->name).filename().string() : "six pictures";
    ImGui::PushStyleVar(ImGuiStyleVar_ButtonTextAlign, {0, 0.5f});
    // Behind the name an id, so that a name of any signs is only shown.
    const bool isPressed = ImGui::Button((shown + "##picture").c_str(), {ImGui::CalcItemWidth(), 0});
    ImGui::PopStyleVar();
    if (isPressed)
        fPictures.open(named ? (std::filesystem::path(named->directory) / named->name).parent_path().string() : "");
    if (const auto taken = fPictures.build())
    {
        NamedValue next = named ? *named : NamedValue{};
        next.name = *taken;
        next.directory = "";
        next.faces.clear();
        set(subject, form, panelValue(std::move(next)));
    }
}

void InputRows::buildStream(const Subject& subject, const InputForm& form)
{
    const std::vector<std::string> streams = streamNames();
    std::vector<const char*> names{"as its name says"};
    const InputValue* const own = value(subject, form.name);
    const auto* named = own ? std::get_if<NamedValue>(&own->value) : nullptr;
    std::size_t chosen = own && !named ? streams.size() + 1 : 0; // numbers are none of the names
    for (const std::string& stream : streams)
    {
        if (named && named->name == stream)
            chosen = names.size();
        names.push_back(stream.c_str());
    }
    if (!namesWidget(names, chosen))
        return;
    if (chosen == 0)
        reset(subject, form, form.name);
    else
        set(subject, form, panelValue(NamedValue{names[chosen], "", 0}));
}

void InputRows::set(const Subject& subject, const InputForm& form, InputValue value)
{
    Scene& scene = fEditor.change(form.name, SceneEditor::Change::Values);
    home(scene, subject, form)[form.name] = std::move(value);
}

void InputRows::reset(const Subject& subject, const InputForm& form, const std::string& step)
{
    Scene& scene = fEditor.change(step, SceneEditor::Change::Values);
    SceneObject& object = scene.objects[subject.object];
    if (form.light.empty())
    {
        if (Look* part = partLook(object, subject.part))
            part->inputs.erase(form.name);
        if (subject.part.empty())
            object.look.inputs.erase(form.name);
    }
    if (!form.light.empty() || scene.objects.size() == 1)
        scene.inputs.erase(form.name);
}

void InputRows::resetAll(const Subject& subject, const std::string& light)
{
    for (const InputForm& form : forms(subject))
        if (form.light == light)
            reset(subject, form, "take back all");
}
