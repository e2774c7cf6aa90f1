#include "PlainMaterial.h"

#include <common/Findings.h>
#include <common/MaterialReader.h>
#include <common/NearNames.h>
#include <common/Source.h>

#include <krender/core/Exception.h>
#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/ShadingParser.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>
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
using krShadingDag::StatementCompound;
using krShadingDag::StatementType;
using krShadingDag::TokenType;
using krTools::inQuotes;
using krTools::Severity;

namespace
{

using Specs = std::vector<std::unique_ptr<ShadingNodeSpec>>;

constexpr krShadingDag::ShadingParserLimits kLimits{
    .refuseEmptyStatements = true, .maxNesting = 5000, .maxHeaderTokens = 50000};

/// The illuminance blocks that a program may hold, far more than any driver takes. A block comes once a light, and so does
/// every block within it: a short source could fill the memory.
constexpr double kMostBlocks = 10000;

void printError(const krTools::Source& source, std::size_t position, std::string_view text)
{
    text.remove_prefix(text.starts_with("error ") ? 6 : 0);
    text.remove_suffix(text.ends_with('\n') ? 1 : 0);
    krTools::Findings findings;
    findings.error(position, std::string(text));
    krTools::print(stderr, source, findings);
}

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
        krString::CString piece = fSource.contents();
        do
        {
            ShadingNodeSpec* spec = nullptr;
            if (!fParser.parseString(std::exchange(piece, {}), &spec))
            {
                (void)findNext();
                printError(fSource, fPosition, fParser.errorString().view());
                return false;
            }
            specs.emplace_back(spec);
        } while (findNext());
        return true;
    }

private:
    /// Finds the place of the next token; one that cannot be read leaves the place before it.
    /// @return  whether there is one
    bool findNext()
    {
        try
        {
            const krShadingDag::Token token = fParser.token_ahead(0);
            if (token.type == TokenType::EndOfStream)
                return false;
            fPosition = static_cast<std::size_t>(token.position);
        }
        catch (const Exception&)
        {
            // The next function will not be read, and then the parser says why.
        }
        return true;
    }

    krTools::Source fSource;
    ShadingParser fParser;
    std::size_t fPosition = 0;
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

/// The illuminance blocks in the program of that many lights.
double countBlocks(const StatementCompound& list, double lights)
{
    double count = 0;
    for (unsigned i = 0; i < list.size(); ++i)
    {
        const krShadingDag::Statement& statement = *list.statement(i);
        const double below = countBlocks(statement.children(), lights);
        count += statement.type() == StatementType::Illuminance ? lights * (1 + below) : below;
    }
    return count;
}

/// Lights for a scene that names none. Each illuminance block declares the inputs of its lights, so a material with
/// several blocks gets lights without inputs.
std::vector<SceneLight> suitableLights(const StatementCompound& body)
{
    std::vector<SceneLight> lights = defaultLights();
    if (countBlocks(body, 1) > 1)
        lights[0] = {"eye", "headLight", lights[0].place, ""};
    return lights;
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
    for (const SceneLight& light : scene.lights ? *scene.lights : suitableLights(spec->body()))
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
    if (countBlocks(spec->body(), static_cast<double>(lights.size())) > kMostBlocks)
    {
        krTools::print(stderr, "krview", Severity::Error,
                       "with so many lights the illuminance blocks within each other in " +
                           inQuotes(spec->name().view()) + " would come to more than 10000 copies");
        return std::nullopt;
    }

    krString::CString vertex;
    krString::CString fragment;
    compileMaterialToGlsl(*spec, &lights, vertex, fragment);
    return Material{.name = std::string(spec->name().view()),
                    .vertexProgram = programSource("<vertex program>", vertex.view()),
                    .fragmentProgram = programSource("<fragment program>", fragment.view()),
                    .inputs = std::move(inputs),
                    .fragmentOrigins = {},
                    .modules = {}};
}
