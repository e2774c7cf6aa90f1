#include "Material.h"

#include <common/Findings.h>
#include <common/Modules.h>
#include <common/NearNames.h>

#include <krender/frontend/Interface.h>
#include <krender/shadergen/Target.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <filesystem>
#include <tuple>
#include <utility>

using krFrontend::Diagnostic;
using krFrontend::Module;
using krFrontend::ShaderInterface;
using krFrontend::ShaderKind;
using krTools::inQuotes;
using krTools::Severity;

namespace
{

/// Drivers take programs of many times the length of any that people write, but the time for it has no bound.
constexpr std::size_t kMostDrawnBytes = std::size_t{1} << 20;

/// Prints the errors of a module.
void printErrors(const Module& module, const std::vector<Diagnostic>& diagnostics)
{
    const krFrontend::SourceSet& sources = module.sources();
    std::map<const krFrontend::SourceFile*, krTools::Findings> findings;
    for (const Diagnostic& diagnostic : diagnostics)
        if (diagnostic.severity == krFrontend::Severity::Error)
        {
            const krFrontend::SourceFile& file = sources.fileAt(diagnostic.range.begin);
            findings[&file].error(diagnostic.range.begin - file.begin(), diagnostic.text);
        }
    for (const auto& [file, inFile] : findings)
        krTools::print(stderr, krTools::Source(file->name(), std::string(file->text())), inFile);
}

/// Reads included files, and notes where they were looked for.
class NotingReader : public krFrontend::SourceReader
{
public:
    explicit NotingReader(std::vector<std::string>& files) : fFiles(files) {}

    bool exists(const std::string& path) override
    {
        fFiles.push_back(path);
        return SourceReader::exists(path);
    }

private:
    std::vector<std::string>& fFiles;
};

/// A value as scenes give it.
std::vector<double> numbersOf(const krFrontend::Value& value)
{
    std::vector<double> numbers(value.floats.begin(), value.floats.end());
    numbers.insert(numbers.end(), value.ints.begin(), value.ints.end());
    if (!dataTypeInfo[value.type].isMatrix)
        return numbers;
    // The front end gives columns, scenes give rows.
    const std::size_t side = maxDim(value.type);
    std::vector<double> rows;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        rows.push_back(numbers[i % side * side + i / side]);
    return rows;
}

/// Compiles a scene's material with its lights.
class SceneCompiler
{
public:
    SceneCompiler(const Scene& scene, std::vector<std::string>& files) : fScene(scene), fReader(files) {}

    std::optional<Material> compile()
    {
        const krTools::MaterialName name = krTools::materialName(fScene.material);
        const Module& module = read(name.file);
        fLibraries.push_back(&read(fScene.stdlib));
        for (const std::string& library : fScene.libraries)
            fLibraries.push_back(&read(library));
        if (!fOk)
            return std::nullopt;
        fRequest.module = &module;
        fRequest.material = name.function;
        for (const SceneLight& light : fScene.lights.value_or(defaultLights()))
            addLight(light);
        if (!fOk)
            return std::nullopt;

        std::vector<krFrontend::ProgramDiagnostic> problems;
        const std::optional<krFrontend::Program> program = compileProgram(fRequest, glslTarget(), problems);
        for (const krFrontend::ProgramDiagnostic& problem : problems)
            printErrors(*problem.module, {problem.diagnostic});
        if (!program)
            return std::nullopt;
        return materialOf(*program);
    }

private:
    const Module& read(const std::string& path)
    {
        if (const auto known = fModules.find(path); known != fModules.end())
            return known->second;
        const krTools::Source source(path);
        const Module& module =
            fModules
                .emplace(path, Module::readText(source.name(), std::string(source.text()),
                                                {.includeFolders = fScene.includeFolders, .reader = &fReader}))
                .first->second;
        fOk &= !module.hasErrors();
        printErrors(module, module.diagnostics());
        return module;
    }

    void addLight(const SceneLight& light)
    {
        std::vector<const Module*> modules{fRequest.module};
        modules.insert(modules.end(), fLibraries.begin(), fLibraries.end());
        if (!light.source.empty())
            modules = {&read(light.source)};
        std::vector<std::string> names;
        for (const Module* module : modules)
            for (const ShaderInterface& shader : interfaceOf(*module))
                if (shader.kind == ShaderKind::Light && shader.hasBody)
                {
                    names.push_back(shader.name);
                    if (shader.name == light.function)
                    {
                        fRequest.lights.push_back({module, light.function, light.key});
                        return;
                    }
                }
        if (modules[0]->hasErrors())
            return;
        fOk = false;
        krTools::print(stderr, "krview", Severity::Error,
                       light.place + ": " +
                           (light.source.empty() ? "there is no light " : light.source + " has no light ") +
                           inQuotes(light.function) + " with a body" + krTools::didYouMean(light.function, names));
    }

    /// The material or light of that name, as its module declares it; the first material if the name is empty.
    [[nodiscard]] static ShaderInterface shaderOf(const Module& module, const std::string& name, ShaderKind kind)
    {
        for (ShaderInterface& shader : interfaceOf(module))
            if (shader.kind == kind && shader.hasBody && (name.empty() || shader.name == name))
                return std::move(shader);
        return {};
    }

    [[nodiscard]] static std::optional<InputValue> defaultOf(const Module& module, const ShaderInterface& shader,
                                                             const krFrontend::UniformInterface& uniform)
    {
        const auto found = std::find_if(shader.arguments.begin(), shader.arguments.end(),
                                        [&](const auto& argument) { return argument.name == uniform.name; });
        const krFrontend::SourceLocation place = module.sources().location(found->range.begin);
        const std::string file(place.file);
        InputValue value{
            {}, file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column), uniform.name};
        if (uniform.defaultValue.isSet())
        {
            value.value = numbersOf(uniform.defaultValue);
            return value;
        }
        // There is one picture for all samplers of another type.
        if (uniform.type != kSampler2D)
            return std::nullopt;
        for (const krFrontend::MetadataItem& item : uniform.metadata)
            if (item.name == "file" && item.value.type == kString)
            {
                value.value = NamedValue{item.value.text, std::filesystem::path(file).parent_path().string(), 0};
                return value;
            }
        return std::nullopt;
    }

    std::optional<Material> materialOf(const krFrontend::Program& program)
    {
        const ShaderInterface material = shaderOf(*fRequest.module, fRequest.material, ShaderKind::Material);
        if (!checkSize(material.name, std::max(program.vertex.size(), program.fragment.size())))
            return std::nullopt;
        Material result{.name = material.name,
                        .vertexProgram = programSource("<vertex program>", program.vertex),
                        .fragmentProgram = programSource("<fragment program>", program.fragment),
                        .inputs = {},
                        .isChecked = true,
                        .fragmentOrigins = program.fragmentOrigins,
                        .modules = {}};
        for (const krFrontend::UniformInterface& uniform : program.interface.uniforms)
        {
            std::optional<InputValue> value;
            if (uniform.light.empty())
                value = defaultOf(*fRequest.module, material, uniform);
            for (const krFrontend::LightUse& light : fRequest.lights)
                if (!uniform.light.empty() && light.key == uniform.light)
                    value =
                        defaultOf(*light.module, shaderOf(*light.module, light.function, ShaderKind::Light), uniform);
            result.inputs.push_back({uniform.light + uniform.name, uniform.programName, uniform.type, false,
                                     uniform.light.empty() ? "" : uniform.name, std::move(value)});
        }
        for (const krFrontend::VertexInputInterface& input : program.interface.vertexInputs)
            result.inputs.push_back({input.name, input.programName, input.type, true, "", {}});
        result.modules = std::move(fModules);
        return result;
    }

    const Scene& fScene;
    NotingReader fReader;
    std::map<std::string, Module> fModules; ///< by their paths
    std::vector<const Module*> fLibraries;  ///< where lights are looked for after the material's own file, in order
    krFrontend::ProgramRequest fRequest;
    bool fOk = true;
};

} // namespace

Material::Origin Material::origin(std::size_t line) const
{
    const std::string_view preamble = glslTarget().preamble;
    const auto ahead = static_cast<std::size_t>(std::count(preamble.begin(), preamble.end(), '\n'));
    if (line <= ahead || line - ahead > fragmentOrigins.size())
        return {};
    const krFrontend::LineOrigin& origin = fragmentOrigins[line - ahead - 1];
    if (!origin.module)
        return {};
    const krFrontend::SourceFile& file = origin.module->sources().fileAt(origin.offset);
    return {&file, origin.offset - file.begin()};
}

const Target& glslTarget() { return *findTarget("glsl"); }

krTools::Source programSource(const char* name, std::string_view program)
{
    return {name, std::string(glslTarget().preamble).append(program)};
}

bool checkSize(const std::string& material, std::size_t bytes)
{
    if (bytes <= kMostDrawnBytes)
        return true;
    krTools::print(stderr, "krview", Severity::Error,
                   "a program of " + inQuotes(material) + " has more than 1 MB and is not drawn");
    return false;
}

std::optional<Material> compileMaterial(const Scene& scene, std::vector<std::string>& files)
{
    return SceneCompiler(scene, files).compile();
}
