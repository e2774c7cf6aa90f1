#include "InterfaceJson.h"

#include <common/PrintedMessage.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cstdlib>
#include <utility>

using krFrontend::MetadataItem;
using krFrontend::Value;
using nlohmann::ordered_json;

namespace
{

/// A number with the digits that it has as a float.
double roundedOf(float number) { return std::strtod(krTools::digitsOf(number).c_str(), nullptr); }

/// A number, true or false, a text, or a list of numbers; null where there is no value.
ordered_json jsonOf(const Value& value)
{
    if (!value.isSet())
        return nullptr;
    if (value.type == kString)
        return value.text;
    if (value.type == kBool)
        return value.ints.at(0) != 0;
    ordered_json list = ordered_json::array();
    for (const float number : value.floats)
        list.push_back(roundedOf(number));
    for (const int number : value.ints)
        list.push_back(number);
    return list.size() == 1 ? ordered_json(list[0]) : list;
}

ordered_json jsonOf(const std::vector<MetadataItem>& metadata)
{
    ordered_json object = ordered_json::object();
    for (const MetadataItem& item : metadata)
        object[item.name] = jsonOf(item.value);
    return object;
}

} // namespace

ordered_json jsonOf(const krFrontend::ProgramInterface& interface)
{
    ordered_json uniforms = ordered_json::array();
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        uniforms.push_back({{"programName", uniform.programName},
                            {"name", uniform.name},
                            {"light", uniform.light.empty() ? ordered_json() : ordered_json(uniform.light)},
                            {"type", dataTypeName(uniform.type)},
                            {"default", jsonOf(uniform.defaultValue)},
                            {"metadata", jsonOf(uniform.metadata)}});
    ordered_json inputs = ordered_json::array();
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        inputs.push_back({{"programName", input.programName},
                          {"name", input.name},
                          {"type", dataTypeName(input.type)},
                          {"texCoord", input.texCoord < 0 ? ordered_json() : ordered_json(input.texCoord)},
                          {"metadata", jsonOf(input.metadata)}});
    return {{"uniforms", std::move(uniforms)},
            {"vertexInputs", std::move(inputs)},
            {"providedValues", interface.providedValues}};
}

ordered_json jsonOf(const krFrontend::SourceSet& sources, const krFrontend::ShaderInterface& shader)
{
    ordered_json arguments = ordered_json::array();
    for (const krFrontend::InputInterface& argument : shader.arguments)
        arguments.push_back({{"name", argument.name},
                             {"type", dataTypeName(argument.type)},
                             {"isOutput", argument.isOutput},
                             {"minFrequency", krShadingDag::compFreqName(argument.frequencies.minFreq)},
                             {"maxFrequency", krShadingDag::compFreqName(argument.frequencies.maxFreq)},
                             {"default", jsonOf(argument.defaultValue)},
                             {"metadata", jsonOf(argument.metadata)}});
    const krFrontend::SourceLocation place = sources.location(shader.range.begin);
    return {{"kind", kindName(shader.kind)},
            {"name", shader.name},
            {"result", dataTypeName(shader.result)},
            {"hasBody", shader.hasBody},
            {"file", place.file},
            {"line", place.line},
            {"column", place.column},
            {"arguments", std::move(arguments)}};
}

const char* kindName(krFrontend::ShaderKind kind) noexcept
{
    constexpr std::array kNames{"function", "material", "light", "displacement"};
    static_assert(kNames.size() == static_cast<std::size_t>(krFrontend::ShaderKind::Displacement) + 1);
    return kNames[static_cast<std::size_t>(kind)];
}
