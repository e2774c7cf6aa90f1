// The first function of any source as a material, all the others as its lights, to both targets.
#include "FuzzInput.h"

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace krShadingDag;

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text(textOf(data, size).view());
    // Nested illuminance blocks multiply the lights by each other; a few levels show all that can happen.
    std::size_t loops = 0;
    for (std::size_t at = 0; (at = text.find("illuminance", at)) != std::string::npos; ++at)
        ++loops;
    if (loops > 4)
        return 0;

    std::vector<std::unique_ptr<ShadingNodeSpec>> functions;
    ShadingParser parser;
    parser.setLimits(krShadingDag::kLimitsForAnySource);
    // The parser goes on in its source: each further function takes an empty piece.
    ShadingNodeSpec* spec = nullptr;
    for (krString::CString piece(text); parser.parseString(piece, &spec); piece = {})
        functions.emplace_back(spec);
    if (functions.empty())
        return 0;
    std::vector<LightSpec> lights;
    for (std::size_t i = 1; i < functions.size() && i <= 3; ++i)
        lights.push_back({functions[i].get(), krString::CString(static_cast<char>('a' + i))});
    for (const std::vector<LightSpec>* given :
         {static_cast<const std::vector<LightSpec>*>(nullptr), &std::as_const(lights)})
    {
        krString::CString vertex, fragment;
        compileMaterialToCg(*functions[0], given, vertex, fragment);
        require(vertex.view().ends_with("return OUT;\n}\n"), "the Cg vertex program is whole");
        compileMaterialToGlsl(*functions[0], given, vertex, fragment);
        require(vertex.view().ends_with("\n}\n"), "the GLSL vertex program is whole");
    }
    return 0;
}
