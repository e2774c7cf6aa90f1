#include "PageScene.h"

#include "OwnPrograms.h"

#include <common/InterfaceJson.h>

#include <krender/spatial/AABoundingBox.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>
#include <string_view>

using nlohmann::ordered_json;

namespace
{

constexpr double kAnyStep = std::numeric_limits<double>::max();
/// Between two texture coordinates: a 16th of a pixel of a large picture.
constexpr double kTextureStep = 1.0 / (1 << 14);

std::span<const float> valuesOf(const GeometryData& stream)
{
    return {static_cast<const float*>(stream.data()), std::size_t{stream.count()} * stream.elementSize()};
}

/// A value as uniform blocks have it: matrices column by column, each with room for four numbers.
ordered_json valueOf(const ResolvedInputs::Uniform& uniform)
{
    if (!isMatrix(uniform.input->type))
        return uniform.numbers;
    const std::size_t side = maxDim(uniform.input->type);
    std::vector<double> columns(4 * side);
    for (std::size_t i = 0; i < uniform.numbers.size(); ++i)
        columns[i % side * 4 + i / side] = uniform.numbers[i];
    return columns;
}

/// Whether the inputs of a light tell by a name where it is or what it sees.
bool placesLight(const std::string& name, DataType type)
{
    constexpr std::array<std::string_view, 4> kVectors{"position", "target", "axis", "direction"};
    return ((type == kFloat3 || type == kFloat4) &&
            std::find(kVectors.begin(), kVectors.end(), name) != kVectors.end()) ||
           (type == kFloat && name == "cone");
}

constexpr std::array<const char*, 8> kWidgets{"numbers", "color", "check", "choice", "", "picture", "", ""};
static_assert(kWidgets.size() == static_cast<std::size_t>(InputForm::Widget::None) + 1);

bool speaksOfColor(std::string name)
{
    std::transform(name.begin(), name.end(), name.begin(),
                   [](char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); });
    return name.ends_with("color") || name.ends_with("colour");
}

/// The control of an input that has numbers or a picture; it lacks what shares it.
/// @param value  as it is at the start
ordered_json controlOf(const InputForm& form, const ordered_json& uniform, const ordered_json& value)
{
    InputForm::Widget widget = form.widget;
    if (widget == InputForm::Widget::Numbers && (form.type == kFloat3 || form.type == kFloat4) &&
        !uniform["metadata"].contains("widget") && speaksOfColor(uniform["name"]))
        widget = InputForm::Widget::Colour;
    double far = 1;
    for (const auto& number : value)
        far = std::max(far, 2 * std::abs(number.get<double>()));
    const bool isUpward = form.count == 1 && value.is_array() && value[0] >= 0;
    double least = form.sliderLeast.value_or(form.least.value_or(isUpward ? 0 : -far));
    double most = form.sliderGreatest.value_or(form.greatest.value_or(far));
    if (!(least < most))
    {
        least = form.least.value_or(-far);
        most = least + 2 * far;
    }
    ordered_json choices = ordered_json::array();
    for (const InputForm::Choice& choice : form.choices)
        choices.push_back({{"text", choice.label}, {"value", choice.value}});
    return {{"uses", ordered_json::array()},
            {"widget", kWidgets[static_cast<std::size_t>(widget)]},
            {"choices", std::move(choices)},
            {"least", least},
            {"most", most},
            {"min", form.least.value_or(std::numeric_limits<double>::lowest())},
            {"max", form.greatest.value_or(std::numeric_limits<double>::max())}};
}

std::optional<int> locationOf(const krFrontend::ProgramInterface& interface, const std::string& programName)
{
    for (const krFrontend::FrameInputInterface& input : interface.block.frameInputs)
        if (input.programName == programName)
            return input.location;
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        if (input.programName == programName)
            return input.location;
    return std::nullopt;
}

/// Whether pictures of the page were made for the value of an input, which therefore has no control.
bool isFixed(const ProgramInput& input, const ResolvedInputs& inputs)
{
    return std::any_of(inputs.uniforms().begin(), inputs.uniforms().end(),
                       [&](const ResolvedInputs::Uniform& sampler)
                       {
                           const std::string& blur = sampler.input->hints.blur;
                           return !blur.empty() && sampler.input->light + blur == input.name;
                       });
}

/// What is no UTF-8 in a source becomes the sign for that.
std::string textOf(const ordered_json& json)
{
    return json.dump(-1, ' ', false, ordered_json::error_handler_t::replace);
}

ordered_json placesOf(const std::vector<krLinear::AffineMatrix>& places)
{
    ordered_json all = ordered_json::array();
    for (const krLinear::AffineMatrix& place : places)
    {
        // The memory of the library's matrices is that of a matrix for columns.
        const krLinear::ProjMatrix matrix(place);
        const krLinear::ProjMatrix back(place.inverse());
        ordered_json normals = ordered_json::array();
        for (unsigned i = 0; i < 16; ++i)
            normals.push_back(back(i % 4, i / 4));
        all.push_back(
            ordered_json::array({std::vector<double>(matrix.elements(), matrix.elements() + 16), std::move(normals)}));
    }
    return all;
}

} // namespace

std::size_t PageScene::addProgram(const Material& material)
{
    fPrograms.push_back({{"vertex", material.vertexProgram.text()},
                         {"fragment", material.fragmentProgram.text()},
                         {"interface", krTools::jsonOf(material.interface, material.translation)}});
    fForms[fPrograms.size() - 1] = inputForms(material);
    return fPrograms.size() - 1;
}

std::size_t PageScene::addLook(const std::string& name, std::size_t program, const ResolvedInputs& inputs)
{
    const PageShadow* const shadow = fShadow ? &*fShadow : nullptr;
    Json values = Json::array();
    for (const ResolvedInputs::Uniform& uniform : inputs.uniforms())
        if (isSampler(uniform.input->type))
            values.push_back(fPictures.add(*uniform.input, uniform.picture, uniform.blur, shadow));
        else
            values.push_back(valueOf(uniform));
    const auto known =
        std::find_if(fLooks.begin(), fLooks.end(),
                     [&](const Json& look) { return look["program"] == program && look["values"] == values; });
    if (known != fLooks.end())
        return static_cast<std::size_t>(known - fLooks.begin());
    fLooks.push_back({{"program", program}, {"values", std::move(values)}});
    if (shadow)
        addShadowInputs(fLooks.size() - 1, inputs);
    addControls(name, fLooks.size() - 1, inputs);
    return fLooks.size() - 1;
}

void PageScene::setShadow(PageShadow shadow)
{
    const auto ballOf = [](const Ball& ball) {
        return Json{{"middle", {ball.middle.x, ball.middle.y, ball.middle.z}}, {"radius", ball.radius}};
    };
    fScene["shadow"] = {{"light", shadow.light},
                        {"picture", fPictures.addDepths(&shadow)},
                        {"casters", ballOf(shadow.casters)},
                        {"all", ballOf(shadow.all)},
                        {"inputs", Json::object()},
                        {"matrices", Json::array()}};
    fShadow = std::move(shadow);
}

void PageScene::addShadowInputs(std::size_t look, const ResolvedInputs& inputs)
{
    Json& shadow = fScene["shadow"];
    for (std::size_t i = 0; i < inputs.uniforms().size(); ++i)
    {
        const ProgramInput& input = *inputs.uniforms()[i].input;
        if (input.light != fShadow->light)
            continue;
        if (input.type == kMatrix4)
            shadow["matrices"].push_back({look, i});
        else if (placesLight(input.lightName, input.type) && !shadow["inputs"].contains(input.lightName))
            shadow["inputs"][input.lightName] = {look, i};
    }
}

void PageScene::addControls(const std::string& name, std::size_t look, const ResolvedInputs& inputs)
{
    const Json& values = fLooks[look]["values"];
    const std::size_t program = fLooks[look]["program"];
    const Json& uniforms = fPrograms[program]["interface"]["uniforms"];
    const std::vector<InputForm>& forms = fForms.at(program);
    for (std::size_t i = 0; i < uniforms.size(); ++i)
    {
        const ProgramInput& input = *inputs.uniforms()[i].input;
        const auto form =
            std::find_if(forms.begin(), forms.end(),
                         [&](const InputForm& each) { return each.name == input.name && each.light == input.light; });
        if (form == forms.end() || isMatrix(input.type) || (isSampler(input.type) && input.type != kSampler2D) ||
            isFixed(input, inputs))
            continue;
        // All looks that give an input of a light the same value share its control.
        const bool isOfLight = !input.light.empty();
        const std::string key = isOfLight ? textOf({input.light, input.name, values[i]}) : textOf({look, i});
        const auto [known, isNew] = fControls.emplace(key, std::pair<std::size_t, std::size_t>());
        if (isNew)
        {
            std::string title = isOfLight ? "Light: " + input.light : name;
            if (!isOfLight && !form->page.empty())
                title += ": " + form->page;
            std::size_t group = 0;
            while (group < fPanel.size() && fPanel[group]["title"] != title)
                ++group;
            if (group == fPanel.size())
                fPanel.push_back({{"title", title}, {"rows", Json::array()}});
            known->second = {group, fPanel[group]["rows"].size()};
            fPanel[group]["rows"].push_back(controlOf(*form, uniforms[i], values[i]));
        }
        fPanel[known->second.first]["rows"][known->second.second]["uses"].push_back({look, i});
    }
}

std::size_t PageScene::stream(const GeometryData& stream)
{
    const auto [known, isNew] = fKnown.emplace(&stream, fStreams.size());
    if (isNew)
        fStreams.push_back(fBytes.addStream(valuesOf(stream), stream.elementSize(),
                                            stream.dataType() == GeometryData::textureCoord ? kTextureStep : kAnyStep));
    return known->second;
}

std::size_t PageScene::list(const GeometryDataIndex& list, unsigned corners)
{
    const auto [known, isNew] = fKnown.emplace(&list, fStreams.size());
    if (isNew)
        fStreams.push_back(fBytes.addList({list.indices(), list.count()}, corners));
    return known->second;
}

void PageScene::addSurface(const Surface& surface)
{
    const GeometryDataIndex* triangles = findList(surface.groups, GeometryDataIndex::triangles);
    Json inputs = Json::array();
    Json constants = Json::array();
    for (const ResolvedInputs::Attribute& attribute : surface.inputs.attributes())
    {
        const std::optional<int> location = locationOf(surface.material.interface, attribute.name);
        if (!location)
            continue;
        std::array<double, 4> numbers{0, 0, 0, 1};
        std::copy_n(attribute.numbers.begin(), std::min<std::size_t>(attribute.numbers.size(), 4), numbers.begin());
        const GeometryData* found = findStream(surface.groups, attribute.stream);
        if (found)
            inputs.push_back({*location, stream(*found)});
        else
            constants.push_back({*location, numbers});
    }
    addObject(surface.look, "TRIANGLES", list(*triangles, 3), triangles->count(), std::move(inputs), surface.places);
    const krLinear::PointFlt center = triangles->boundingBox().center();
    fObjects.back().update({{"constants", std::move(constants)},
                            {"pass", surface.isTransparent ? "transparent" : "opaque"},
                            {"castsShadow", surface.castsShadow && !surface.isTransparent},
                            {"center", {center.x, center.y, center.z}},
                            {"positions", stream(*findStream(surface.groups, kStreamKinds[kPositions].name))}});
}

std::size_t PageScene::ownLook(Json program, Json values)
{
    fPrograms.push_back(std::move(program));
    fLooks.push_back({{"program", fPrograms.size() - 1}, {"values", std::move(values)}});
    return fLooks.size() - 1;
}

void PageScene::addObject(std::size_t look, const char* mode, std::size_t list, std::size_t count, Json inputs,
                          const std::vector<krLinear::AffineMatrix>& places)
{
    fObjects.push_back({{"look", look},
                        {"mode", mode},
                        {"list", list},
                        {"count", count},
                        {"inputs", std::move(inputs)},
                        {"constants", Json::array()},
                        {"pass", "opaque"},
                        {"castsShadow", false},
                        {"places", placesOf(places)}});
}

void PageScene::addFlat(const char* mode, std::span<const FlatVertex> vertices, bool isOnScreen)
{
    std::vector<float> places;
    std::vector<float> colors;
    for (const FlatVertex& vertex : vertices)
    {
        places.insert(places.end(), vertex.place.begin(), vertex.place.end());
        colors.insert(colors.end(), vertex.color.begin(), vertex.color.end());
    }
    std::vector<unsigned> entries(vertices.size());
    std::iota(entries.begin(), entries.end(), 0U);
    const std::size_t first = fStreams.size();
    fStreams.push_back(fBytes.addStream(places, 3, kAnyStep));
    fStreams.push_back(fBytes.addStream(colors, 3, kAnyStep));
    fStreams.push_back(fBytes.addList(entries, 1));
    addObject(ownLook(flatProgram(isOnScreen, fEncodes), Json::array()), mode, first + 2, entries.size(),
              {{0, first}, {1, first + 1}}, {krLinear::AffineMatrix()});
    if (!isOnScreen)
        fObjects.back()["pass"] = "lines";
}

void PageScene::addEdges(const Groups& groups, const std::array<float, 3>& color,
                         const std::vector<krLinear::AffineMatrix>& places)
{
    const GeometryDataIndex* edges = findList(groups, GeometryDataIndex::lines);
    const GeometryData* positions = findStream(groups, kStreamKinds[kPositions].name);
    if (!edges || !positions)
        return;
    addObject(ownLook(flatProgram(false, fEncodes), Json::array()), "LINES", list(*edges, 2), edges->count(),
              Json::array({{0, stream(*positions)}}), places);
    fObjects.back().update({{"pass", "lines"}, {"constants", {{1, {color[0], color[1], color[2], 1}}}}});
}

bool PageScene::addSky()
{
    const auto background = fPictures.addBackground();
    if (!background)
        return false;
    // A cube around the eye.
    std::vector<float> corners;
    for (unsigned corner = 0; corner < 8; ++corner)
        for (unsigned axis = 0; axis < 3; ++axis)
            corners.push_back((corner >> axis & 1U) != 0 ? 1.0f : -1.0f);
    constexpr std::array<unsigned, 36> kSides{0, 1, 3, 0, 3, 2, 4, 5, 7, 4, 7, 6, 0, 1, 5, 0, 5, 4,
                                              2, 3, 7, 2, 7, 6, 0, 2, 6, 0, 6, 4, 1, 3, 7, 1, 7, 5};
    const std::size_t first = fStreams.size();
    fStreams.push_back(fBytes.addStream(corners, 3, kAnyStep));
    fStreams.push_back(fBytes.addList(kSides, 3));
    addObject(ownLook(skyProgram(background->second), Json::array({background->first})), "TRIANGLES", first + 1,
              kSides.size(), Json::array({Json::array({0, first})}), {krLinear::AffineMatrix()});
    return true;
}

std::string PageScene::packed()
{
    fPrograms.push_back(showingProgram(fEncodes));
    fScene["shown"] = fPrograms.size() - 1;
    fScene["programs"] = fPrograms;
    fScene["pictures"] = fPictures.all();
    fScene["streams"] = fStreams;
    fScene["looks"] = fLooks;
    fScene["objects"] = fObjects;
    fScene["panel"] = fPanel;
    return fBytes.packed(fScene);
}
