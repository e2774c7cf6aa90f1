#include "ResolvedInputs.h"

#include <krview/mesh/Streams.h>
#include <krview/scene/InputError.h>

#include <common/Findings.h>
#include <common/Source.h>

#include <krender/frontend/NearNames.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <limits>
#include <string_view>
#include <utility>
#include <variant>

using krTools::inQuotes;

namespace
{

[[noreturn]] void fail(const InputValue& value, const std::string& text)
{
    throw InputError(value.origin, value.place + ": " + text);
}

bool endsWith(const std::string& name, std::string_view end)
{
    const auto isSame = [](char a, char b) { return std::tolower(static_cast<unsigned char>(a)) == b; };
    return name.size() >= end.size() &&
           std::equal(end.begin(), end.end(), name.end() - static_cast<std::ptrdiff_t>(end.size()),
                      [&](char b, char a) { return isSame(a, b); });
}

/// The default value of inputs whose names end in `nameEnd`.
struct NamedDefault
{
    const char* nameEnd;
    std::array<double, 4> numbers;
};

/// Only the name of a light's input tells what it means.
constexpr std::array kLightDefaults{
    NamedDefault{"position", {3, 4, 5, 1}},      NamedDefault{"direction", {-0.8, 1.3, 1.7, 0}},
    NamedDefault{"axis", {3, 4, 5, 0}},          NamedDefault{"decay", {0, 0, 0, 0}},
    NamedDefault{"color", {0.9, 0.88, 0.82, 1}}, NamedDefault{"width", {0.3, 0.3, 0.3, 0.3}},
};

/// The values for inputs that the user does not set: numbers in the middle of 0 to 1 and bright colours suit most
/// materials.
std::vector<double> defaultNumbers(const ProgramInput& input)
{
    const std::size_t count = numberCount(input.type);
    if (isMatrix(input.type))
    {
        std::vector<double> identity(count, 0.0);
        for (std::size_t i = 0; i < count; i += maxDim(input.type) + 1)
            identity[i] = 1;
        return identity;
    }
    if (!isFloatVector(input.type))
        return std::vector<double>(count, 1.0);
    if (input.perVertex)
        return std::vector<double>(count, 0.25);
    for (const NamedDefault& known : kLightDefaults)
        if (!input.light.empty() && endsWith(input.lightName, known.nameEnd))
            return {known.numbers.begin(), known.numbers.begin() + static_cast<std::ptrdiff_t>(count)};
    return std::vector<double>(count, count < 3 ? 0.5 : 0.45);
}

/// The stream that a per-vertex input most likely means, by its name and type; empty when there is none.
std::string likelyStream(const ProgramInput& input)
{
    const auto contains = [&](std::string_view part)
    {
        return std::search(input.name.begin(), input.name.end(), part.begin(), part.end(),
                           [](char a, char b)
                           { return std::tolower(static_cast<unsigned char>(a)) == b; }) != input.name.end();
    };
    if (contains("tangent"))
        return "tangent";
    if (contains("normal"))
        return "normal";
    if (contains("col") || contains("paint"))
        return "color";
    if (contains("pos"))
        return "position";
    return input.type == kFloat2 ? "textureCoord" : "";
}

/// Whether a number can be a component of a value of that type.
bool fits(double number, DataType type)
{
    if (type == kBool)
        return number == 0 || number == 1;
    if (dataTypeNumFloats(type) > 0)
        return std::abs(number) <= std::numeric_limits<float>::max();
    return number == std::trunc(number) && number >= std::numeric_limits<int>::min() &&
           number <= std::numeric_limits<int>::max();
}

/// Whether a value is of the kind that an input takes, and has as many numbers.
bool hasForm(const InputValue& value, const ProgramInput& input)
{
    const auto* numbers = std::get_if<std::vector<double>>(&value.value);
    if (!numbers)
        return isSampler(input.type) || input.perVertex;
    return !isSampler(input.type) && numbers->size() == numberCount(input.type);
}

/// The numbers of an input, as many as its type takes.
/// @param value  null: the default
std::vector<double> numbersOf(const ProgramInput& input, const InputValue* value)
{
    if (!value)
        return defaultNumbers(input);
    const auto* numbers = std::get_if<std::vector<double>>(&value->value);
    const std::size_t count = numberCount(input.type);
    if (!numbers || !hasForm(*value, input))
        fail(*value, inQuotes(input.name) + " is of type " + dataTypeName(input.type) + " and wants " +
                         (count == 1 ? "a number" : std::to_string(count) + " numbers"));
    for (const double number : *numbers)
        if (!fits(number, input.type))
            fail(*value, inQuotes(input.name) + " is of type " + dataTypeName(input.type) + " and cannot be " +
                             krTools::digitsOf(number));
    return *numbers;
}

/// The value of an input: the first that some name, else that of its source. Null for none.
const InputValue* valueOf(const ProgramInput& input, const std::vector<const InputValues*>& values)
{
    for (const InputValues* some : values)
        if (const auto found = some->find(input.name);
            found != some->end() && !(found->second.isOptional && !suits(found->second, input)))
            return &found->second;
    return input.defaultValue ? &*input.defaultValue : nullptr;
}

/// How blurred the surroundings are that a sampler mirrors: the number of another input, which its metadata name.
float blurOf(const ProgramInput& sampler, const Material& material, const std::vector<const InputValues*>& values)
{
    for (const ProgramInput& input : material.inputs)
        if (!sampler.hints.blur.empty() && input.name == sampler.light + sampler.hints.blur && input.type == kFloat)
            return static_cast<float>(std::clamp(numbersOf(input, valueOf(input, values)).front(), 0.0, 1.0));
    return 0;
}

} // namespace

std::size_t numberCount(DataType type)
{
    if (dataTypeNumFloats(type) > 0)
        return dataTypeNumFloats(type);
    return dataTypeInfo[type].isVector ? maxDim(type) : 0;
}

bool suits(const InputValue& value, const ProgramInput& input)
{
    const auto* numbers = std::get_if<std::vector<double>>(&value.value);
    return hasForm(value, input) && (!numbers || std::all_of(numbers->begin(), numbers->end(),
                                                             [&](double number) { return fits(number, input.type); }));
}

ResolvedInputs::ResolvedInputs(const std::vector<const InputValues*>& values, const Material& material)
{
    for (const ProgramInput& input : material.inputs)
    {
        const InputValue* const value = valueOf(input, values);
        if (input.perVertex)
            addAttribute(input, value);
        else if (isSampler(input.type))
            fUniforms.push_back({&input, {}, value, blurOf(input, material, values)});
        else
            fUniforms.push_back({&input, numbersOf(input, value), nullptr, 0});
    }
    fAttributes.push_back({"gObjTangent", "tangent", {1, 0, 0}});
    // OpenGL 2.1 has names of its own for these.
    fAttributes.push_back({"kr_Vertex", "position", {}});
    fAttributes.push_back({"kr_Normal", "normal", {}});
}

void ResolvedInputs::addAttribute(const ProgramInput& input, const InputValue* value)
{
    Attribute attribute{input.programName, likelyStream(input), defaultNumbers(input)};
    if (const auto* named = value ? std::get_if<NamedValue>(&value->value) : nullptr)
    {
        const std::vector<std::string> names = streamNames();
        if (std::find(names.begin(), names.end(), named->name) == names.end())
            fail(*value, "shapes have no stream " + inQuotes(named->name) + krFrontend::didYouMean(named->name, names));
        attribute.stream = named->name;
    }
    else if (value)
    {
        attribute.stream.clear();
        attribute.numbers = numbersOf(input, value);
    }
    fAttributes.push_back(std::move(attribute));
}

const std::vector<double>* ResolvedInputs::numbers(const std::string& name) const
{
    const auto found = std::find_if(fUniforms.begin(), fUniforms.end(),
                                    [&name](const Uniform& uniform) { return uniform.input->name == name; });
    return found == fUniforms.end() || isSampler(found->input->type) ? nullptr : &found->numbers;
}
