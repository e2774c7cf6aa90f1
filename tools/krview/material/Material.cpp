#include "Material.h"

#include <krview/gl/GlFeatures.h>

#include <common/Diagnostics.h>
#include <common/ProgramBounds.h>

#include <krender/frontend/Interface.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <string_view>
#include <utility>
#include <variant>

using krFrontend::Diagnostic;
using krFrontend::Module;
using krFrontend::Severity;
using krTools::inQuotes;

namespace
{

/// Drivers take programs of many times the length of any that people write, but the time for it has no bound.
constexpr std::size_t kMostDrawnBytes = std::size_t{1} << 20;

/// Prints errors; the warnings are for whoever checks the source.
class ErrorPrinter : public krTools::Messages
{
public:
    explicit ErrorPrinter(krTools::MessageOutput& output) : fOutput(output) {}

    void add(const Module& module) override
    {
        for (const Diagnostic& diagnostic : module.diagnostics())
            add(module.sources(), diagnostic);
        fErrorCount += krTools::hiddenErrors(module);
        krTools::printHidden(module, fOutput);
    }

    void add(const krFrontend::SourceSet& sources, Diagnostic diagnostic) override
    {
        if (diagnostic.severity != Severity::Error)
            return;
        ++fErrorCount;
        krTools::print(sources, diagnostic, fOutput);
    }

    void add(const krTools::Source& source, krTools::Findings findings) override
    {
        fErrorCount += findings.hasErrors() ? 1 : 0;
        krTools::print(source, findings, fOutput);
    }

    void error(const std::string& text) override
    {
        ++fErrorCount;
        krTools::printError("krview", text, fOutput);
    }

    void note(const krFrontend::SourceSet&, const Diagnostic&) override {}
    void note(const std::string&) override {}

private:
    krTools::MessageOutput& fOutput;
};

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
    if (!isMatrix(value.type))
        return numbers;
    // The front end gives columns, scenes give rows.
    const std::size_t side = maxDim(value.type);
    std::vector<double> rows;
    for (std::size_t i = 0; i < numbers.size(); ++i)
        rows.push_back(numbers[i % side * side + i / side]);
    return rows;
}

/// The metadata of a name; empty if there is no text of it.
std::string metadataText(const krFrontend::UniformInterface& uniform, std::string_view name)
{
    for (const krFrontend::MetadataItem& item : uniform.metadata)
        if (item.name == name && item.value.type == kString)
            return item.value.text;
    return "";
}

/// The value that the source gives to an input.
std::optional<InputValue> defaultOf(const krFrontend::UniformInterface& uniform)
{
    if (!uniform.module)
        return std::nullopt;
    const krFrontend::SourceLocation place = uniform.module->sources().location(uniform.range.begin);
    const std::string file(place.file);
    InputValue value{
        {}, {file + ":" + std::to_string(place.line) + ":" + std::to_string(place.column), nullptr, 0}, uniform.name};
    if (uniform.defaultValue.isSet())
    {
        value.value = numbersOf(uniform.defaultValue);
        return value;
    }
    // There is one picture for all samplers of another type.
    const std::string picture = metadataText(uniform, "file");
    if (picture.empty() || (uniform.type != kSampler2D && uniform.type != kSamplerCube))
        return std::nullopt;
    value.value = NamedValue{picture, std::filesystem::path(file).parent_path().string(), 0};
    return value;
}

PictureHints hintsOf(const krFrontend::UniformInterface& uniform)
{
    PictureHints hints{metadataText(uniform, "environment"), metadataText(uniform, "blur"), {}};
    const std::string space = metadataText(uniform, "colorspace");
    if (space == "srgb" || space == "linear")
        hints.isCoded = space == "srgb";
    return hints;
}

std::vector<ProgramInput> inputsOf(const krFrontend::ProgramInterface& interface)
{
    std::vector<ProgramInput> inputs;
    for (const krFrontend::UniformInterface& uniform : interface.uniforms)
        inputs.push_back({uniform.light + uniform.name, uniform.programName, uniform.type, false, uniform.light,
                          uniform.name, defaultOf(uniform), hintsOf(uniform)});
    for (const krFrontend::VertexInputInterface& input : interface.vertexInputs)
        inputs.push_back({input.name, input.programName, input.type, true, "", "", {}, {}});
    return inputs;
}

} // namespace

bool isMatrix(DataType type) noexcept { return type == kMatrix2 || type == kMatrix3 || type == kMatrix4; }

const Target& drawnTarget() { return *findTarget(hasFixedFunctions() ? "glsl" : "glsl330"); }

krFrontend::LineOrigin Material::origin(std::size_t line) const
{
    return line > preambleLines && line - preambleLines <= fragmentOrigins.size()
               ? fragmentOrigins[line - preambleLines - 1]
               : krFrontend::LineOrigin();
}

std::optional<Material> compileMaterial(const Scene& scene, const std::string& name, const Target& target,
                                        std::vector<std::string>& files, krTools::MessageOutput& output)
{
    ErrorPrinter printer(output);
    NotingReader reader(files);
    std::unique_ptr<krTools::MaterialCompiler> compiler =
        krTools::MaterialCompiler::make({.asPlain = scene.plain,
                                         .libraries = krTools::libraryFiles(scene.stdlib, scene.libraries),
                                         .includeFolders = scene.includeFolders,
                                         .lights = scene.lights.value_or(defaultLights()),
                                         .targets = {{&target}},
                                         .reader = &reader},
                                        printer);
    std::vector<krTools::CompiledProgram> compiled = compiler->compile(krTools::materialName(name));
    if (compiled.empty())
        return std::nullopt;
    krTools::CompiledProgram& program = compiled.front();
    if (std::max(program.vertex().size(), program.fragment().size()) > kMostDrawnBytes)
    {
        printer.error("a program of " + inQuotes(program.material) + " has more than 1 MB and is not drawn");
        return std::nullopt;
    }
    const std::string_view preamble = program.target->preamble;
    const auto withPreamble = [preamble](const char* title, const std::string& text)
    { return krTools::Source(title, std::string(preamble).append(text)); };
    krTools::Source vertex = withPreamble("<vertex program>", program.vertex());
    krTools::Source fragment = withPreamble("<fragment program>", program.fragment());
    if (scene.plain)
        for (const krTools::Source* source : {&vertex, &fragment})
            printer.add(*source, findUnbounded(*source));
    if (printer.errorCount() > 0)
        return std::nullopt;
    Material material{.name = program.material,
                      .vertexProgram = std::move(vertex),
                      .fragmentProgram = std::move(fragment),
                      .inputs = inputsOf(program.program.interface),
                      .interface = std::move(program.program.interface),
                      .translation = std::move(program.translation),
                      .isChecked = !scene.plain,
                      .preambleLines = static_cast<std::size_t>(std::count(preamble.begin(), preamble.end(), '\n')),
                      .fragmentOrigins = {},
                      .compiler = std::move(compiler)};
    if (!material.translation) // whose lines are others
        material.fragmentOrigins = std::move(program.program.fragmentOrigins);
    return material;
}
