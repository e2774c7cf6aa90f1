#include "Inputs.h"

#include "BuiltInPictures.h"
#include "DeviceBuffer.h"
#include "InputError.h"
#include "Picture.h"
#include "Streams.h"

#include <common/Findings.h>
#include <common/Source.h>

#include <krender/frontend/NearNames.h>
#include <krender/geometry/GeometryData.h>
#include <krender/geometry/ParticleData.h>
#include <krender/pixels/IHWTexture.h>
#include <krender/pixels/PixelArray2D.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <string_view>
#include <system_error>
#include <utility>
#include <variant>

using krTools::inQuotes;

namespace
{

[[noreturn]] void fail(const InputValue& value, const std::string& text)
{
    throw InputError(value.origin, value.place + ": " + text);
}

/// The number of components of a type; 0 for samplers and whatever else takes no numbers.
std::size_t numberCount(DataType type)
{
    if (dataTypeNumFloats(type) > 0)
        return dataTypeNumFloats(type);
    return dataTypeInfo[type].isVector ? maxDim(type) : 0;
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
    if (dataTypeInfo[input.type].isMatrix)
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
        if (!input.lightName.empty() && endsWith(input.lightName, known.nameEnd))
            return {known.numbers.begin(), known.numbers.begin() + static_cast<std::ptrdiff_t>(count)};
    return std::vector<double>(count, count < 3 ? 0.5 : 0.7);
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
    return number == std::trunc(number) && number >= std::numeric_limits<GLint>::min() &&
           number <= std::numeric_limits<GLint>::max();
}

/// The numbers of a value, as many as the type takes.
std::vector<double> numbersOf(const InputValue& value, const ProgramInput& input)
{
    const auto* numbers = std::get_if<std::vector<double>>(&value.value);
    const std::size_t count = numberCount(input.type);
    if (!numbers || numbers->size() != count)
        fail(value, inQuotes(input.name) + " is of type " + dataTypeName(input.type) + " and wants " +
                        (count == 1 ? "a number" : std::to_string(count) + " numbers"));
    for (const double number : *numbers)
        if (!fits(number, input.type))
            fail(value, inQuotes(input.name) + " is of type " + dataTypeName(input.type) + " and cannot be " +
                            krTools::digitsOf(number));
    return *numbers;
}

/// Turns heights into normals. The slopes of the last row and column need neighbours, so the heights are first extended
/// by their first row and column and the map is cut back afterwards: it then tiles without a seam.
Ref<PixelArray2D> normalMap(const PixelArray2D& heights, float scale)
{
    const auto copyRows = [](const PixelArray2D& from, PixelArray2D& to)
    {
        const auto* source = static_cast<const std::uint32_t*>(from.data());
        auto* target = static_cast<std::uint32_t*>(to.data());
        for (unsigned y = 0; y < to.height(); ++y)
            for (unsigned x = 0; x < to.width(); ++x)
                *target++ = source[std::size_t{from.width()} * (y % from.height()) + x % from.width()];
    };
    Ref<PixelArray2D> larger = newPicture(heights.width() + 1, heights.height() + 1);
    copyRows(heights, *larger);
    (void)larger->convertToNormalMap(scale); // its answer is always false
    Ref<PixelArray2D> normals = newPicture(heights.width(), heights.height());
    copyRows(*larger, *normals);
    return normals;
}

/// Resizes a picture to sides that every OpenGL 2.1 driver takes: powers of two within the limit of the driver.
void fitToDriver(PixelArray2D& picture)
{
    GLint greatest = 0;
    glGetIntegerv(GL_MAX_TEXTURE_SIZE, &greatest);
    const auto fitted = [&](unsigned side) { return std::min(ceilPow2(side), static_cast<unsigned>(greatest)); };
    picture.resize(fitted(picture.width()), fitted(picture.height()));
}

} // namespace

Inputs::Inputs(const Scene& scene, const Material& material, std::vector<std::string>& files)
{
    std::vector<std::string> names;
    for (const ProgramInput& input : material.inputs)
        names.push_back(input.name);
    for (const auto& [name, value] : scene.inputs)
        if (std::find(names.begin(), names.end(), name) == names.end())
            fail(value, "neither the material " + inQuotes(material.name) + " nor its lights have an input " +
                            inQuotes(name) + krFrontend::didYouMean(name, names));

    for (const ProgramInput& input : material.inputs)
    {
        const auto found = scene.inputs.find(input.name);
        const InputValue* const ownValue = input.defaultValue ? &*input.defaultValue : nullptr;
        const InputValue* const value = found == scene.inputs.end() ? ownValue : &found->second;
        if (input.perVertex)
            addAttribute(input, value);
        else
            addUniform(input, value, files);
    }
    fAttributes.push_back({"gObjTangent", "tangent", {1, 0, 0}});
    // OpenGL 2.1 has names of its own for these.
    fAttributes.push_back({"kr_Vertex", "position", {}});
    fAttributes.push_back({"kr_Normal", "normal", {}});
}

void Inputs::addUniform(const ProgramInput& input, const InputValue* value, std::vector<std::string>& files)
{
    Uniform uniform{input.programName, input.type, {}, {}};
    if (isSampler(input.type))
        uniform.texture = texture(input, value, files);
    else
        uniform.numbers = value ? numbersOf(*value, input) : defaultNumbers(input);
    fUniforms.push_back(std::move(uniform));
}

void Inputs::addAttribute(const ProgramInput& input, const InputValue* value)
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
        attribute.numbers = numbersOf(*value, input);
    }
    fAttributes.push_back(std::move(attribute));
}

Ref<Texture> Inputs::texture(const ProgramInput& input, const InputValue* value, std::vector<std::string>& files)
{
    const auto* named = value ? std::get_if<NamedValue>(&value->value) : nullptr;
    if (value && (!named || input.type != kSampler2D))
        fail(*value,
             inQuotes(input.name) + " is of type " + dataTypeName(input.type) +
                 (input.type == kSampler2D ? " and wants a picture" : ", and there is one picture for all of them"));
    switch (input.type)
    {
    case kSampler1D:
        return Texture::upload(IHWTexture::kTexture1D, *builtInRamp());
    case kSampler3D:
        return Texture::upload(IHWTexture::kTexture3D, *builtInNoise());
    case kSamplerCube:
        return Texture::upload(IHWTexture::kTextureCubeMap, *builtInSurroundings());
    case kSampler1DShadow:
        return Texture::emptyShadowMap(IHWTexture::kTexture1D);
    case kSampler2DShadow:
        return Texture::emptyShadowMap(IHWTexture::kTexture2D);
    default:
        break;
    }

    // The name tells a normal map. Its default is made from a picture of heights.
    constexpr float kBuiltInScale = 12;
    const bool isNormalMap = input.name.find("ormal") != std::string::npos;
    const NamedValue picture =
        named ? *named : NamedValue{isNormalMap ? "noise" : "checker", "", isNormalMap ? kBuiltInScale : 0};
    const std::vector<std::string>& builtIn = builtInPictureNames();
    Ref<PixelArray2D> pixels;
    if (std::find(builtIn.begin(), builtIn.end(), picture.name) != builtIn.end())
        pixels = builtInPicture(picture.name);
    else
    {
        const std::string path = (std::filesystem::path(picture.directory) / picture.name).lexically_normal().string();
        files.push_back(path);
        std::error_code failure;
        if (!std::filesystem::is_regular_file(path, failure))
            fail(*value, "there is no picture '" + path + "'" + krFrontend::didYouMean(picture.name, builtIn));
        pixels = readPng(path);
        fitToDriver(*pixels);
    }
    if (picture.normalScale != 0)
        pixels = normalMap(*pixels, picture.normalScale);
    return Texture::upload(IHWTexture::kTexture2D, *pixels);
}

void Inputs::setUniforms(GlUniforms& uniforms) const
{
    GLint unit = 0;
    for (const Uniform& uniform : fUniforms)
    {
        if (!uniform.texture)
        {
            uniforms.set(uniform.name, uniform.type, uniform.numbers);
            continue;
        }
        glActiveTexture(static_cast<GLenum>(GL_TEXTURE0 + unit));
        uniform.texture->bind();
        uniforms.setSampler(uniform.name, unit++);
    }
    glActiveTexture(GL_TEXTURE0);
}

void Inputs::bindAttributes(const GlProgram& program, const Geometry& geometry) const
{
    for (const Attribute& attribute : fAttributes)
    {
        const GLint found = program.attribute(attribute.name);
        if (found < 0)
            continue;
        const auto location = static_cast<GLuint>(found);
        if (const GeometryData* stream = findStream(geometry, attribute.stream))
        {
            DeviceBuffer::of(*stream).bind();
            glVertexAttribPointer(location, static_cast<GLint>(stream->elementSize()), GL_FLOAT, GL_FALSE, 0, nullptr);
            glEnableVertexAttribArray(location);
            continue;
        }
        std::array<GLdouble, 4> numbers{0, 0, 0, 1};
        std::copy_n(attribute.numbers.begin(), std::min<std::size_t>(attribute.numbers.size(), 4), numbers.begin());
        glVertexAttrib4dv(location, numbers.data());
    }
}

void Inputs::unbindAttributes(const GlProgram& program) const
{
    for (const Attribute& attribute : fAttributes)
        if (const GLint location = program.attribute(attribute.name); location >= 0)
            glDisableVertexAttribArray(static_cast<GLuint>(location));
}
