#include "CompileCommand.h"

#include "Depfile.h"
#include "Validation.h"
#include "Warnings.h"

#include <common/DataFiles.h>
#include <common/ExitStatus.h>
#include <common/Expansion.h>
#include <common/Libraries.h>
#include <common/MaterialReader.h>
#include <common/OutputFiles.h>
#include <common/Preamble.h>
#include <common/UsageError.h>
#include <common/Words.h>

#include <krender/shadergen/CgMaterialCompiler.h>
#include <krender/shadergen/GlslMaterialCompiler.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <optional>

using krShadingDag::ShadingNodeSpec;
using krTools::inQuotes;
using krTools::Severity;

namespace
{

// The lights

/// The lights that the options ask for; nothing when one is missing, which is then reported.
std::optional<std::vector<LightSpec>> findLights(const std::vector<std::string>& options, krTools::Libraries& libraries)
{
    std::vector<LightSpec> lights;
    bool ok = true;
    for (const std::string& option : options)
    {
        const std::size_t equals = option.find('=');
        const std::string key = option.substr(0, equals);
        const std::string function = option.substr(equals + 1);
        const ShadingNodeSpec* light = libraries.findLight(function, "--light " + option);
        ok &= light != nullptr;
        if (!light)
            continue;
        if (light->body().findStatement(krShadingDag::StatementType::Illuminance))
            libraries.add(*light, Severity::Warning, warningInfo(Warning::IlluminanceInLight).name,
                          "the illuminance block of light " + inQuotes(function) + " stays in the program as it is");
        lights.push_back({light, key.c_str()});
    }
    if (!libraries.report() || !ok)
        return std::nullopt;
    return lights;
}

void checkLightOptions(const std::vector<std::string>& options)
{
    for (const std::string& option : options)
    {
        const std::size_t equals = std::min(option.find('='), option.size());
        const std::string_view key = std::string_view(option).substr(0, equals);
        if (equals + 1 >= option.size() || !krTools::isName(key))
            throw krTools::UsageError("--light " + option + ": this is not KEY=FUNCTION with a name for its key");
    }
}

// The programs

/// The start of the program files' names, "-" for standard output.
std::string baseOf(const CompileOptions& options, const ShadingNodeSpec& material)
{
    return options.base.ends_with('/') ? options.base + material.name().asChar() : options.base;
}

ProgramPair generate(const ShadingNodeSpec& material, const std::vector<LightSpec>* lights, bool isGlsl,
                     const CompileOptions& options)
{
    krString::CString vertex;
    krString::CString fragment;
    (isGlsl ? compileMaterialToGlsl : compileMaterialToCg)(material, lights, vertex, fragment);

    const std::string base = baseOf(options, material);
    const auto program = [&](const krString::CString& text, const char* stage, const std::string& ownFile)
    {
        const std::string path = !ownFile.empty() ? ownFile
                                 : base == "-"    ? "-"
                                                  : base + "." + stage + (isGlsl ? "" : ".cg");
        std::string whole(isGlsl && options.withPreamble ? krTools::kGlsl120Preamble : std::string_view());
        return krTools::Source(path, whole.append(text.view()));
    };
    return {isGlsl, program(vertex, "vert", options.vertexFile), program(fragment, "frag", options.fragmentFile)};
}

// The whole

void checkOutputOptions(const CompileOptions& options)
{
    const bool hasFiles = !options.vertexFile.empty() || !options.fragmentFile.empty();
    if (hasFiles && !options.base.empty())
        throw krTools::UsageError("-o and --vertex with --fragment exclude each other");
    if (hasFiles && (options.vertexFile.empty() || options.fragmentFile.empty()))
        throw krTools::UsageError("--vertex and --fragment go together");
    if (hasFiles && options.target == Target::All)
        throw krTools::UsageError("--vertex and --fragment name the programs of one target: use -o for all");
    if (!hasFiles && options.base.empty())
        throw krTools::UsageError("where should the programs go? Give -o BASE, -o -, or --vertex and --fragment");
    std::error_code failure;
    if (!options.base.ends_with('/') && std::filesystem::is_directory(options.base, failure))
        throw krTools::UsageError("-o " + options.base + " is a folder: give " + options.base +
                                  "/ to write into it, or a file name without its ending");
    if (!options.depfile.empty() && (options.base == "-" || options.vertexFile == "-" || options.fragmentFile == "-"))
        throw krTools::UsageError("--depfile names the files that depend on the sources, and standard output is none");
    if (options.keepIlluminance && !options.lights.empty())
        throw krTools::UsageError("--keep-illuminance and --light exclude each other");
}

/// No output may overwrite a source, or another output.
void checkOverwriting(const krTools::OutputFiles& outputs, const std::vector<std::string>& sources)
{
    const auto isSame = [](const std::string& a, const std::string& b)
    {
        using namespace std::filesystem;
        std::error_code failure;
        return weakly_canonical(absolute(a), failure) == weakly_canonical(absolute(b), failure);
    };
    std::vector<std::string> paths;
    for (const auto& [path, text] : outputs.files())
    {
        std::error_code failure;
        if (path == "-" || std::filesystem::is_character_file(path, failure))
            continue;
        for (const std::string& source : sources)
            if (isSame(path, source))
                throw krTools::UsageError("'" + path + "' is a source of this compilation and would be overwritten");
        for (const std::string& other : paths)
            if (isSame(path, other))
                throw krTools::UsageError("'" + path + "' is named twice for an output");
        paths.push_back(path);
    }
}

} // namespace

int compile(const CompileOptions& options)
{
    checkOutputOptions(options);
    checkLightOptions(options.lights);
    const krTools::MaterialName name = krTools::materialName(options.material);

    std::vector<std::string> sources;
    if (options.stdlib != "none")
        sources.push_back(options.stdlib.empty() ? krTools::dataFile("stdlib.krs") : options.stdlib);
    sources.insert(sources.end(), options.libraries.begin(), options.libraries.end());
    krTools::Libraries libraries("krslc");
    for (const std::string& path : sources)
        libraries.read(path);
    const krTools::Source materialSource(name.file);
    sources.insert(sources.begin(), name.file);

    const bool librariesOk = libraries.report();
    const std::unique_ptr<ShadingNodeSpec> material = krTools::readMaterial(materialSource, name.function);
    if (!librariesOk || !material)
        return krTools::kInputHasErrors;
    const std::optional<std::vector<LightSpec>> lights = findLights(options.lights, libraries);
    if (!lights || !krTools::checkExpansion("krslc", *material, lights->size()))
        return krTools::kInputHasErrors;

    krTools::OutputFiles outputs;
    bool ok = true;
    std::vector<std::string> targets;
    for (const bool isGlsl : {true, false})
    {
        if (options.target == (isGlsl ? Target::Cg : Target::Glsl))
            continue;
        const ProgramPair pair = generate(*material, options.keepIlluminance ? nullptr : &*lights, isGlsl, options);
        ok &= !options.validate || validate(pair);
        for (const krTools::Source* program : {&pair.vertex, &pair.fragment})
        {
            outputs.add(program->name(), std::string(program->text()));
            targets.push_back(program->name());
        }
    }
    if (!ok)
        return krTools::kInputHasErrors;
    if (!options.depfile.empty())
    {
        std::vector<std::string> files;
        std::copy_if(sources.begin(), sources.end(), std::back_inserter(files),
                     [](const std::string& path) { return path != "-"; });
        outputs.add(options.depfile, makeRule(targets, files));
    }
    checkOverwriting(outputs, sources);
    outputs.publish(krTools::MissingFolders::Make);
    return krTools::kDone;
}
