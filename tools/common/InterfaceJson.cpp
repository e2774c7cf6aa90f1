#include <common/InterfaceJson.h>

#include <common/PrintedMessage.h>

#include <nlohmann/json.hpp>

#include <array>
#include <cstdlib>
#include <utility>

using krFrontend::MetadataItem;
using krFrontend::Value;
using nlohmann::ordered_json;

namespace krTools
{

namespace
{

/// A number with the digits that it has as a float.
double roundedOf(float number) { return std::strtod(digitsOf(number).c_str(), nullptr); }

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

/// A number, or null where it is negative.
ordered_json numberOrNull(int number) { return number < 0 ? ordered_json() : ordered_json(number); }

/// How a target's programs reach what the host gives them.
class Addresses
{
public:
    Addresses(const krFrontend::UniformBlockInterface& block, const std::optional<krTargets::Translation>& translation)
        : fBlock(block), fTranslation(translation ? &*translation : nullptr)
    {
        const bool isFree = fTranslation && !fTranslation->uniformPrefix.empty();
        fHasBlock = !fBlock.name.empty() && !isFree;
        fAddressing = fTranslation ? fTranslation->addressing : krTargets::Addressing::Binding;
    }

    [[nodiscard]] std::string uniformName(const std::string& name) const
    {
        return fTranslation ? fTranslation->uniformPrefix + name : name;
    }

    /// Adds where a uniform stands in the block.
    void addPlace(ordered_json& json, DataType type, int offset, int matrixStride) const
    {
        const bool isInBlock = fHasBlock && !isSampler(type);
        json["offset"] = isInBlock ? numberOrNull(offset) : ordered_json();
        json["matrixStride"] = isInBlock && matrixStride > 0 ? ordered_json(matrixStride) : ordered_json();
    }

    [[nodiscard]] ordered_json binding(int number) const
    {
        return fAddressing == krTargets::Addressing::Binding ? numberOrNull(number) : ordered_json();
    }

    [[nodiscard]] const krTargets::SamplerPlace* sampler(unsigned index) const
    {
        return fTranslation && index < fTranslation->samplers.size() ? &fTranslation->samplers[index] : nullptr;
    }

    [[nodiscard]] ordered_json location(int number) const
    {
        const bool hasLocations = fHasBlock && !(fTranslation && fTranslation->hasSemantics);
        return hasLocations ? numberOrNull(number) : ordered_json();
    }

    [[nodiscard]] ordered_json texCoord(int ofRegister, int location) const
    {
        return numberOrNull(fTranslation && fTranslation->hasSemantics ? location : ofRegister);
    }

    [[nodiscard]] ordered_json block() const
    {
        if (!fHasBlock)
            return nullptr;
        const bool isBound = fAddressing == krTargets::Addressing::Binding;
        const bool isIndexed = fAddressing == krTargets::Addressing::Index;
        return {{"name", fBlock.name},
                {"size", fBlock.size},
                {"set", isBound ? ordered_json(0) : ordered_json()},
                {"binding", isBound ? ordered_json(0) : ordered_json()},
                {"index", isIndexed ? ordered_json(0) : ordered_json()}};
    }

private:
    const krFrontend::UniformBlockInterface& fBlock;
    const krTargets::Translation* fTranslation; ///< null: the target's programs are krender's own
    krTargets::Addressing fAddressing = krTargets::Addressing::Binding;
    bool fHasBlock = false;
};

} // namespace

ordered_json jsonOf(const krFrontend::ProgramInterface& interface,
                    const std::optional<krTargets::Translation>& translation)
{
    const Addresses addresses(interface.block, translation);
    ordered_json uniforms = ordered_json::array();
    unsigned samplers = 0;
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
    {
        ordered_json& json = uniforms.emplace_back(ordered_json{
            {"programName", isSampler(uniform.type) ? uniform.programName : addresses.uniformName(uniform.programName)},
            {"name", uniform.name},
            {"light", uniform.light.empty() ? ordered_json() : ordered_json(uniform.light)},
            {"type", dataTypeName(uniform.type)},
            {"default", jsonOf(uniform.defaultValue)},
            {"metadata", jsonOf(uniform.metadata)}});
        addresses.addPlace(json, uniform.type, uniform.offset, uniform.matrixStride);
        json["binding"] = addresses.binding(uniform.binding);
        const krTargets::SamplerPlace* place = isSampler(uniform.type) ? addresses.sampler(samplers++) : nullptr;
        json["texture"] = place ? ordered_json(place->texture) : ordered_json();
        json["sampler"] = place ? ordered_json(place->sampler) : ordered_json();
    }
    ordered_json inputs = ordered_json::array();
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        inputs.push_back({{"programName", input.programName},
                          {"name", input.name},
                          {"type", dataTypeName(input.type)},
                          {"texCoord", addresses.texCoord(input.texCoord, input.location)},
                          {"location", addresses.location(input.location)},
                          {"metadata", jsonOf(input.metadata)}});
    ordered_json frameUniforms = ordered_json::array();
    for (const krFrontend::FrameUniformInterface& uniform : interface.block.frameUniforms)
        addresses.addPlace(
            frameUniforms.emplace_back(ordered_json{{"programName", addresses.uniformName(uniform.programName)},
                                                    {"type", dataTypeName(uniform.type)}}),
            uniform.type, uniform.offset, uniform.matrixStride);
    ordered_json frameInputs = ordered_json::array();
    for (const krFrontend::FrameInputInterface& input : interface.block.frameInputs)
        frameInputs.push_back({{"programName", input.programName},
                               {"type", dataTypeName(input.type)},
                               {"texCoord", addresses.texCoord(-1, input.location)},
                               {"location", addresses.location(input.location)}});
    return {{"entryPoint", translation ? translation->entryPoint : "main"},
            {"uniforms", std::move(uniforms)},
            {"vertexInputs", std::move(inputs)},
            {"providedValues", interface.providedValues},
            {"block", addresses.block()},
            {"frameUniforms", std::move(frameUniforms)},
            {"frameInputs", std::move(frameInputs)}};
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

} // namespace krTools
