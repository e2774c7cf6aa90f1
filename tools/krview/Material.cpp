#include "Material.h"

#include "InputError.h"

#include <common/Expansion.h>
#include <common/MaterialReader.h>
#include <common/Preamble.h>

#include <krender/shadergen/GlslMaterialCompiler.h>
#include <krender/shading/Statement.h>

#include <cstddef>
#include <string_view>

using krShadingDag::ShadingAttribute;
using krShadingDag::ShadingNodeSpec;
using krShadingDag::StatementCompound;
using krShadingDag::StatementType;

namespace
{

krTools::Source programSource(const char* name, const krString::CString& text)
{
    return {name, std::string(krTools::kGlsl120Preamble).append(text.view())};
}

std::size_t blockCount(const StatementCompound& statements)
{
    std::size_t count = 0;
    for (unsigned i = 0; i < statements.size(); ++i)
        count += (statements.statement(i)->type() == StatementType::Illuminance ? 1 : 0) +
                 blockCount(statements.statement(i)->children());
    return count;
}

/// Lights for a scene that names none. Each illuminance block declares the inputs of its lights, so a material with
/// several blocks gets lights without inputs.
std::vector<SceneLight> suitableLights(const StatementCompound& body)
{
    const SceneLight sky{"sky", "skyLight", "the light that comes with every scene"};
    if (blockCount(body) > 1)
        return {{"eye", "headLight", sky.place}, sky};
    return {{"sun", "directionalLight", sky.place}, sky};
}

} // namespace

std::unique_ptr<Material> Material::read(const Scene& scene)
{
    std::unique_ptr<Material> material(new Material);
    material->fLibraries.read(scene.stdlib);
    for (const std::string& library : scene.libraries)
        material->fLibraries.read(library);
    const krTools::MaterialName name = krTools::materialName(scene.material);
    material->fSource.emplace(name.file);

    const bool librariesOk = material->fLibraries.report();
    material->fSpec = krTools::readMaterial(*material->fSource, name.function);
    if (!librariesOk || !material->fSpec || !material->findLights(scene) ||
        !krTools::checkExpansion("krview", *material->fSpec, material->fLights.size()))
        return nullptr;
    material->compile();
    material->listInputs();
    return material;
}

bool Material::findLights(const Scene& scene)
{
    bool ok = true;
    for (const SceneLight& light : scene.lights ? *scene.lights : suitableLights(fSpec->body()))
    {
        const ShadingNodeSpec* spec = fLibraries.findLight(light.function, light.place);
        ok &= spec != nullptr;
        fLights.push_back({spec, light.key.c_str()});
    }
    return fLibraries.report() && ok;
}

void Material::compile()
{
    krString::CString vertex;
    krString::CString fragment;
    compileMaterialToGlsl(*fSpec, &fLights, vertex, fragment);
    fVertexProgram = programSource("<vertex program>", vertex);
    fFragmentProgram = programSource("<fragment program>", fragment);
}

void Material::listInputs()
{
    const auto isStandard = [](const ShadingAttribute& input)
    {
        const std::string_view name = input.name().view();
        return name == "gWorldPos" || name == "gWorldNormal" || name == "gWorldTangent" || name == "gEyePos";
    };
    for (const ShadingAttribute& input : fSpec->inputs())
        if (!isStandard(input) &&
            (input.range() == krShadingDag::kUniformRange || input.range() == krShadingDag::kVertexRange))
            fInputs.push_back(
                {input.name().asChar(), input.dataType(), input.range() == krShadingDag::kVertexRange, ""});
    for (const LightSpec& light : fLights)
        for (const ShadingAttribute& input : light.spec->inputs())
            if (input.range() == krShadingDag::kUniformRange)
                fInputs.push_back({krString::plus(light.name, input.name()).asChar(), input.dataType(), false,
                                   input.name().asChar()});
}
