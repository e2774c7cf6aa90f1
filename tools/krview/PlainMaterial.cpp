#include "PlainMaterial.h"

#include <common/Findings.h>
#include <common/Modules.h>
#include <common/NearNames.h>
#include <common/Source.h>

#include <krender/core/Exception.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/Token.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using krShadingDag::ShadingAttribute;
using krShadingDag::ShadingNodeSpec;
using krShadingDag::ShadingParser;
using krShadingDag::Token;
using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::Severity;

namespace
{

using Specs = std::vector<std::unique_ptr<ShadingNodeSpec>>;

constexpr krShadingDag::ShadingParserLimits kLimits{
    .refuseEmptyStatements = true, .maxNesting = 5000, .maxHeaderTokens = 50000};

/// Reads the functions of a source.
class PlainReader
{
public:
    explicit PlainReader(const std::string& path) : fSource(path) { fParser.setLimits(kLimits); }

    /// Reads all functions. An error is printed.
    /// @return  whether there was none
    bool read(Specs& specs)
    {
        // A parser goes on in its source when it is given more of it, so each further function takes an empty piece.
        const krString::CString nothing;
        ShadingNodeSpec* spec = nullptr;
        for (bool more = fParser.parseString(fSource.contents(), &spec); more;
             more = fParser.parseString(nothing, &spec))
            specs.emplace_back(spec);
        return hasEnded();
    }

private:
    /// Whether the parser stopped because there was nothing left. An error is printed.
    bool hasEnded()
    {
        const std::string message(fParser.errorString().view());
        constexpr std::string_view kError = "error ";
        if (message.starts_with(kError))
            return fail(message.substr(kError.size(), message.find('\n') - kError.size()));
        return position() == fSource.size() || fail("the source ends within this header");
    }

    bool fail(const std::string& text)
    {
        krTools::Findings findings;
        findings.error(position(), text.empty() ? "the source ends within what begins here" : text);
        krTools::print(stderr, fSource, findings);
        return false;
    }

    /// Where the parser stands.
    [[nodiscard]] std::size_t position()
    {
        try
        {
            const Token front = fParser.token_ahead(0);
            if (front.type != TokenType::EndOfStream)
                return std::min(static_cast<std::size_t>(front.position), fSource.size());
        }
        catch (const Exception&)
        {
            // What it stands at goes on to the end of the source.
        }
        return fSource.size();
    }

    krTools::Source fSource;
    ShadingParser fParser;
};

bool hasBody(const ShadingNodeSpec& spec) { return spec.nodeType() == krShadingDag::kDefinition; }

bool isMaterial(const ShadingNodeSpec& spec)
{
    bool found = false;
    (void)spec.output("outRGBA", found);
    return found;
}

/// The function of that name that has a body; if the name is empty, the first that gives a colour, or the first of all.
/// That there is none is printed.
/// @param place  who asks, for the message
const ShadingNodeSpec* find(const Specs& specs, const std::string& name, const std::string& place)
{
    const ShadingNodeSpec* found = nullptr;
    std::vector<std::string> names;
    for (const auto& spec : specs)
    {
        if (!hasBody(*spec))
            continue;
        names.emplace_back(spec->name().view());
        const bool isWanted = name.empty() ? isMaterial(*spec) : names.back() == name;
        if (isWanted)
            return spec.get();
        if (name.empty() && !found)
            found = spec.get();
    }
    if (!found)
        krTools::print(stderr, "krview", Severity::Error,
                       place + ": there is no function " + (name.empty() ? "" : inQuotes(name) + " ") + "with a body" +
                           krTools::didYouMean(name, names));
    return found;
}

/// Lists the inputs of a material or, with its key, of a light.
void listInputs(const ShadingNodeSpec& spec, const std::string& key, std::vector<ProgramInput>& inputs)
{
    for (const ShadingAttribute& input : spec.inputs())
    {
        const bool perVertex = key.empty() && input.range() == krShadingDag::kVertexRange;
        const std::string name(input.name().view());
        if (perVertex || input.range() == krShadingDag::kUniformRange)
            inputs.push_back({key + name, key + name, input.dataType(), perVertex, key.empty() ? "" : name, {}});
    }
}

} // namespace

std::optional<Material> compilePlainMaterial(const Scene& scene)
{
    const krTools::MaterialName name = krTools::materialName(scene.material);
    Specs libraries;
    Specs functions;
    bool ok = PlainReader(scene.stdlib).read(libraries);
    for (const std::string& library : scene.libraries)
        ok &= PlainReader(library).read(libraries);
    ok &= PlainReader(name.file).read(functions);
    const ShadingNodeSpec* const spec = ok ? find(functions, name.function, name.file) : nullptr;
    if (!spec)
        return std::nullopt;

    std::vector<LightSpec> lights;
    std::vector<ProgramInput> inputs;
    listInputs(*spec, "", inputs);
    for (const SceneLight& light : scene.lights.value_or(defaultLights()))
    {
        Specs own;
        ok &= light.source.empty() || PlainReader(light.source).read(own);
        const ShadingNodeSpec* const found =
            ok ? find(light.source.empty() ? libraries : own, light.function, light.place) : nullptr;
        ok &= found != nullptr;
        if (!found)
            continue;
        lights.push_back({found, light.key.c_str()});
        listInputs(*found, light.key, inputs);
        std::move(own.begin(), own.end(), std::back_inserter(functions));
    }
    if (!ok)
        return std::nullopt;
    FragmentExtras extras;
    krString::CString vertex;
    krString::CString fragment;
    glslTarget().compile(*spec, &lights, extras, vertex, fragment);
    std::string materialName(spec->name().view());
    if (!checkSize(materialName, extras.isTooLarge ? kMostProgramBytes : std::max(vertex.length(), fragment.length())))
        return std::nullopt;
    return Material{.name = std::move(materialName),
                    .vertexProgram = programSource("<vertex program>", vertex.view()),
                    .fragmentProgram = programSource("<fragment program>", fragment.view()),
                    .inputs = std::move(inputs),
                    .fragmentOrigins = {},
                    .modules = {}};
}
