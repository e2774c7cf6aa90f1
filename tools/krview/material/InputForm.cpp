#include "InputForm.h"

#include "Inputs.h"

#include <krender/frontend/Interface.h>

#include <algorithm>
#include <charconv>
#include <string_view>

using krFrontend::MetadataItem;
using krFrontend::Value;

namespace
{

using Metadata = std::vector<MetadataItem>;

const Value* find(const Metadata& metadata, const char* name)
{
    const auto found =
        std::find_if(metadata.begin(), metadata.end(), [name](const MetadataItem& item) { return item.name == name; });
    return found == metadata.end() ? nullptr : &found->value;
}

std::string text(const Metadata& metadata, const char* name)
{
    const Value* value = find(metadata, name);
    return value ? value->text : "";
}

InputForm::End number(const Metadata& metadata, const char* name)
{
    const Value* value = find(metadata, name);
    if (value && value->floats.size() == 1)
        return value->floats.front();
    if (value && value->ints.size() == 1)
        return value->ints.front();
    return std::nullopt;
}

/// The choices of "soft|hard", which are numbered from 0, or of "soft:2|hard:5".
std::vector<InputForm::Choice> choicesOf(std::string_view options)
{
    std::vector<InputForm::Choice> choices;
    while (!options.empty())
    {
        std::string_view label = options.substr(0, options.find('|'));
        options.remove_prefix(std::min(label.size() + 1, options.size()));
        double value = static_cast<double>(choices.size());
        if (const std::size_t colon = label.rfind(':'); colon != std::string_view::npos)
        {
            (void)std::from_chars(label.data() + colon + 1, label.data() + label.size(), value);
            label = label.substr(0, colon);
        }
        choices.push_back({std::string(label), value});
    }
    return choices;
}

/// Sets the ends of the slider and of what makes sense.
void setRange(const Metadata& metadata, InputForm& form)
{
    form.least = number(metadata, "min");
    form.greatest = number(metadata, "max");
    form.sliderLeast = number(metadata, "slidermin");
    form.sliderGreatest = number(metadata, "slidermax");
    if (!form.sliderLeast)
        form.sliderLeast = form.least;
    if (!form.sliderGreatest)
        form.sliderGreatest = form.greatest;
    if (!form.sliderLeast || !form.sliderGreatest || !(*form.sliderLeast < *form.sliderGreatest))
        form.sliderLeast = form.sliderGreatest = std::nullopt;
    if (form.least && form.greatest && *form.least > *form.greatest)
        form.least = form.greatest = std::nullopt;
}

InputForm::Widget widgetOf(const InputForm& form, const std::string& name)
{
    using Widget = InputForm::Widget;
    if (isSampler(form.type))
        return form.type == kSampler2D || form.type == kSamplerCube ? Widget::Picture : Widget::None;
    if (isMatrix(form.type))
        return Widget::Matrix;
    if (form.type == kBool || (form.type == kInt && name == "checkBox"))
        return Widget::CheckBox;
    if (form.count == 1 && !form.choices.empty())
        return Widget::Choice;
    if ((form.type == kFloat3 || form.type == kFloat4) && name == "color")
        return Widget::Colour;
    return Widget::Numbers;
}

void describe(const std::string& name, const Metadata& metadata, InputForm& form)
{
    form.label = text(metadata, "label");
    if (form.label.empty())
        form.label = name;
    form.help = text(metadata, "help");
    form.page = text(metadata, "page");
    form.choices = choicesOf(text(metadata, "options"));
    setRange(metadata, form);
    form.widget = widgetOf(form, text(metadata, "widget"));
}

} // namespace

std::vector<InputForm> inputForms(const Material& material)
{
    std::vector<InputForm> forms;
    for (const ProgramInput& input : material.inputs)
    {
        InputForm form;
        form.name = input.name;
        form.light = input.light;
        form.type = input.type;
        form.count = numberCount(input.type);
        form.isWhole = dataTypeNumFloats(input.type) == 0;
        if (input.perVertex)
        {
            for (const krFrontend::VertexInputInterface& vertex : material.interface.vertexInputs)
                if (vertex.name == input.name)
                    describe(vertex.name, vertex.metadata, form);
            form.widget = InputForm::Widget::Stream;
        }
        else
            for (const krFrontend::UniformInterface& uniform : material.interface.uniforms)
                if (uniform.light == input.light && uniform.light + uniform.name == input.name)
                    describe(uniform.name, uniform.metadata, form);
        forms.push_back(std::move(form));
    }
    return forms;
}
