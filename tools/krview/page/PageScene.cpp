#include "PageScene.h"

#include "OwnPrograms.h"

#include <common/InterfaceJson.h>

#include <krender/spatial/AABoundingBox.h>

#include <algorithm>
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

/// A value as uniform blocks have it: matrices column by column.
ordered_json valueOf(const ResolvedInputs::Uniform& uniform)
{
    if (!dataTypeInfo[uniform.input->type].isMatrix)
        return uniform.numbers;
    const std::size_t side = maxDim(uniform.input->type);
    ordered_json columns = ordered_json::array();
    for (std::size_t i = 0; i < uniform.numbers.size(); ++i)
        columns.push_back(uniform.numbers[i % side * side + i / side]);
    return columns;
}

/// Whether an input tells where a light is and what it sees.
bool placesLight(const std::string& name)
{
    constexpr std::array<std::string_view, 5> kNames{"position", "target", "axis", "cone", "direction"};
    return std::find(kNames.begin(), kNames.end(), name) != kNames.end();
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
    return fPrograms.size() - 1;
}

std::size_t PageScene::addLook(const std::string& name, std::size_t program, const ResolvedInputs& inputs)
{
    const PageShadow* const shadow = fShadow ? &*fShadow : nullptr;
    Json values = Json::array();
    for (const ResolvedInputs::Uniform& uniform : inputs.uniforms())
        if (isSampler(uniform.input->type))
            values.push_back(fPictures.add(*uniform.input, uniform.picture, uniform.blur, shadow));
        else if (shadow && shadow->light == uniform.input->light && uniform.input->type == kMatrix4)
            values.push_back(shadow->toMap);
        else
            values.push_back(valueOf(uniform));
    const auto known =
        std::find_if(fLooks.begin(), fLooks.end(),
                     [&](const Json& look) { return look["program"] == program && look["values"] == values; });
    if (known != fLooks.end())
        return static_cast<std::size_t>(known - fLooks.begin());
    fLooks.push_back({{"program", program}, {"values", std::move(values)}});
    addControls(name, fLooks.size() - 1, inputs);
    return fLooks.size() - 1;
}

bool PageScene::isFixed(const ProgramInput& input, const ResolvedInputs& inputs) const
{
    if (fShadow && fShadow->light == input.light && placesLight(input.lightName))
        return true;
    return std::any_of(inputs.uniforms().begin(), inputs.uniforms().end(),
                       [&](const ResolvedInputs::Uniform& sampler)
                       {
                           const std::string& blur = sampler.input->hints.blur;
                           return !blur.empty() && sampler.input->light + blur == input.name;
                       });
}

void PageScene::addControls(const std::string& name, std::size_t look, const ResolvedInputs& inputs)
{
    const Json& values = fLooks[look]["values"];
    const Json& uniforms = fPrograms[fLooks[look]["program"].get<std::size_t>()]["interface"]["uniforms"];
    for (std::size_t i = 0; i < uniforms.size(); ++i)
    {
        const Json& uniform = uniforms[i];
        const std::string type = uniform["type"];
        if (type.starts_with("matrix") || (type.starts_with("sampler") && type != "sampler2D") ||
            isFixed(*inputs.uniforms()[i].input, inputs))
            continue;
        // All looks that give an input of a light the same value share its control.
        const bool isOfLight = uniform["light"].is_string();
        const std::string key = isOfLight ? Json{uniform["light"], uniform["name"], values[i]}.dump(
                                                -1, ' ', false, Json::error_handler_t::replace)
                                          : std::to_string(look) + ' ' + std::to_string(i);
        const auto [known, isNew] = fControls.emplace(key, std::pair<std::size_t, std::size_t>());
        if (!isNew)
        {
            fPanel[known->second.first]["rows"][known->second.second].push_back({look, i});
            continue;
        }
        std::string title = isOfLight ? "Light: " + uniform["light"].get<std::string>() : name;
        if (const auto page = uniform["metadata"].find("page");
            !isOfLight && page != uniform["metadata"].end() && page->is_string())
            title += ": " + page->get<std::string>();
        std::size_t group = 0;
        while (group < fPanel.size() && fPanel[group]["title"] != title)
            ++group;
        if (group == fPanel.size())
            fPanel.push_back({{"title", title}, {"rows", Json::array()}});
        known->second = {group, fPanel[group]["rows"].size()};
        fPanel[group]["rows"].push_back(Json::array({Json::array({look, i})}));
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
    for (const ResolvedInputs::Attribute& attribute : surface.inputs.attributes())
    {
        const std::optional<int> location = locationOf(surface.material.interface, attribute.name);
        if (!location)
            continue;
        std::array<double, 4> numbers{0, 0, 0, 1};
        std::copy_n(attribute.numbers.begin(), std::min<std::size_t>(attribute.numbers.size(), 4), numbers.begin());
        const GeometryData* found = findStream(surface.groups, attribute.stream);
        inputs.push_back({*location, found ? Json(stream(*found)) : Json(numbers)});
    }
    addObject(surface.look, "TRIANGLES", list(*triangles, 3), triangles->count(), std::move(inputs), surface.places);
    const krLinear::PointFlt center = triangles->boundingBox().center();
    fObjects.back().update({{"isTransparent", surface.isTransparent},
                            {"castsShadow", surface.castsShadow},
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
                        {"isTransparent", false},
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
}

void PageScene::addEdges(const Groups& groups, const std::array<float, 3>& color,
                         const std::vector<krLinear::AffineMatrix>& places)
{
    const GeometryDataIndex* edges = findList(groups, GeometryDataIndex::lines);
    const GeometryData* positions = findStream(groups, kStreamKinds[kPositions].name);
    if (edges && positions)
        addObject(ownLook(flatProgram(false, fEncodes), Json::array()), "LINES", list(*edges, 2), edges->count(),
                  {{0, stream(*positions)}, {1, {color[0], color[1], color[2], 1}}}, places);
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
