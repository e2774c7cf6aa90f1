#include "Material.h"

#include "InputError.h"

#include <common/Expansion.h>
#include <common/MaterialReader.h>

#include <krender/shadergen/GlslMaterialCompiler.h>

using krShadingDag::ShadingAttribute;
using krShadingDag::ShadingNodeSpec;

namespace
{

/// What the programs expect ahead of them. The compiler maps the language's float types and larger matrices itself.
constexpr std::string_view kPreamble = R"(#version 120
#define vec1 float
#define int2 ivec2
#define int3 ivec3
#define int4 ivec4
#define matrix2 mat2
)";

krTools::Source programSource(const char* name, const krString::CString& text)
{
    return {name, std::string(kPreamble).append(text.view())};
}

} // namespace

std::unique_ptr<Material> Material::read(const Scene& scene)
{
    // The spec library is the process's: an earlier reading of the same sources must not show through.
    ShadingNodeSpec::clearLibrary();
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
    for (const SceneLight& light : scene.lights)
    {
        const ShadingNodeSpec* spec = fLibraries.findLight(light.function, light.asker);
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
