#include "MaterialCompiler.h"

#include "Targets.h"

#include <common/DataFiles.h>
#include <common/NearNames.h>
#include <common/PlainReading.h>
#include <common/UsageError.h>
#include <common/Words.h>

#include <algorithm>
#include <optional>
#include <utility>

using krFrontend::Module;
using krFrontend::ShaderInterface;
using krFrontend::ShaderKind;
using krShadingDag::ShadingNodeSpec;
using krTools::inQuotes;
using krTools::PlainReading;

namespace
{

// Full KRSL

class FullCompiler : public MaterialCompiler
{
public:
    FullCompiler(const CompileOptions& options, Report& report) : MaterialCompiler(options, report)
    {
        for (const std::string& path : libraryFiles(options))
        {
            const Module& module = fLibraries.read(path, options.includeFolders);
            addFiles(module, path);
            report.add(module);
        }
        fLibrariesAreGood = report.errorCount() == 0;
    }

    std::vector<CompiledProgram> compile(const krTools::MaterialName& name) override
    {
        const std::size_t errorsBefore = fReport.errorCount();
        fMaterial.emplace(krTools::readModule(name.file, fOptions.includeFolders));
        addFiles(*fMaterial, name.file);
        fReport.add(*fMaterial);

        krFrontend::ProgramRequest request;
        request.module = &*fMaterial;
        request.material = nameOf(name.function);
        request.keepIlluminance = fOptions.keepIlluminance;
        for (const LightOption& light : fLights)
            if (const Module* module = fLibraries.findLight(*fMaterial, light.function))
                request.lights.push_back({module, light.function, light.key});
            else
                fReport.error("--light " + light.option + ": " + fLibraries.whyNoLight(*fMaterial, light.function));
        if (!fLibrariesAreGood || fReport.errorCount() != errorsBefore)
            return {};

        return compileTargets(request);
    }

private:
    using Problems = std::vector<krFrontend::ProgramDiagnostic>;

    std::vector<CompiledProgram> compileTargets(const krFrontend::ProgramRequest& request)
    {
        std::vector<CompiledProgram> programs;
        TargetTranslator translator;
        Problems problems;
        std::vector<std::pair<const Target*, Problems>> leftOut;
        for (const TargetChoice& choice : fOptions.targets)
        {
            Problems own;
            std::optional<krFrontend::Program> program = compileProgram(request, *choice.target, own);
            const bool isLeftOut = !program && !choice.isNamed;
            std::optional<krTargets::Translation> translation;
            if (program && choice.target->isTranslated)
                translation = translator.translate(*choice.target, *program, own);
            if (program && translation.has_value() == choice.target->isTranslated)
                programs.push_back({choice.target, request.material, std::move(*program), std::move(translation)});
            if (isLeftOut)
                leftOut.emplace_back(choice.target, std::move(own));
            else
                problems.insert(problems.end(), own.begin(), own.end());
        }
        if (programs.empty() && problems.empty())
            for (const auto& [target, own] : leftOut)
                problems.insert(problems.end(), own.begin(), own.end());
        else
            noteLeftOut(leftOut);
        report(problems);
        return problems.empty() ? std::move(programs) : std::vector<CompiledProgram>();
    }

    void noteLeftOut(const std::vector<std::pair<const Target*, Problems>>& leftOut)
    {
        for (const auto& [target, problems] : leftOut)
            for (krFrontend::ProgramDiagnostic problem : problems)
            {
                problem.diagnostic.text.insert(0, std::string(target->name) + " is left out: ");
                fReport.note(problem.module->sources(), problem.diagnostic);
            }
    }

    /// What is wrong for several targets is reported once.
    void report(const Problems& problems)
    {
        for (auto problem = problems.begin(); problem != problems.end(); ++problem)
        {
            if (std::any_of(problems.begin(), problem,
                            [problem](const krFrontend::ProgramDiagnostic& before)
                            { return before.diagnostic.text == problem->diagnostic.text; }))
                continue;
            if (problem->module)
                fReport.add(problem->module->sources(), problem->diagnostic);
            else
                fReport.error(problem->diagnostic.text);
        }
    }

    void addFiles(const Module& module, const std::string& path)
    {
        addFile(path);
        for (std::size_t i = 1; i < module.sources().fileCount(); ++i)
            addFile(module.sources().file(i).name());
    }

    /// The name of the material that is meant; empty when there is none.
    [[nodiscard]] std::string nameOf(const std::string& wanted) const
    {
        if (!wanted.empty())
            return wanted;
        for (const ShaderInterface& shader : krFrontend::interfaceOf(*fMaterial))
            if (shader.kind == ShaderKind::Material && shader.hasBody)
                return shader.name;
        return "";
    }

    krTools::LightLibraries fLibraries;
    bool fLibrariesAreGood = false;
    std::optional<Module> fMaterial;
};

// What ShadingParser reads

bool isDefinition(const ShadingNodeSpec& spec) { return spec.nodeType() == krShadingDag::kDefinition; }

/// Puts the libraries' functions aside for its life, so that a material's do not take their places.
class LibraryApart
{
public:
    LibraryApart() { fLibrary.swap(ShadingNodeSpec::fLibrary); }
    LibraryApart(const LibraryApart&) = delete;
    LibraryApart& operator=(const LibraryApart&) = delete;
    ~LibraryApart()
    {
        ShadingNodeSpec::clearLibrary();
        fLibrary.swap(ShadingNodeSpec::fLibrary);
    }

private:
    ShadingNodeSpec::Library fLibrary;
};

class PlainCompiler : public MaterialCompiler
{
public:
    PlainCompiler(const CompileOptions& options, Report& report) : MaterialCompiler(options, report)
    {
        for (const std::string& path : libraryFiles(options))
            (void)read(path);
        fLibrariesAreGood = report.errorCount() == 0;
        findLights();
    }

    std::vector<CompiledProgram> compile(const krTools::MaterialName& name) override
    {
        const LibraryApart libraries;
        const std::size_t errorsBefore = fReport.errorCount();
        const PlainReading reading = read(name.file);
        const ShadingNodeSpec* const material =
            fReport.errorCount() == errorsBefore ? findMaterial(reading, name) : nullptr;
        if (!material || !fLibrariesAreGood)
            return {};
        std::vector<CompiledProgram> programs;
        for (const auto& [target, isNamed] : fOptions.targets)
        {
            FragmentExtras extras;
            krString::CString vertex;
            krString::CString fragment;
            target->compile(*material, fOptions.keepIlluminance ? nullptr : &fLightSpecs, extras, vertex, fragment);
            if (extras.isTooLarge)
            {
                fReport.error("the program of " + inQuotes(material->name().view()) + " would have more than " +
                              std::to_string(kMostProgramBytes >> 20) + " MB");
                return {};
            }
            programs.push_back({target, material->name().asChar(), {}});
            programs.back().program.vertex = vertex.view();
            programs.back().program.fragment = fragment.view();
        }
        return programs;
    }

private:
    PlainReading read(const std::string& path)
    {
        addFile(path);
        const krTools::Source source(path);
        krTools::Findings findings;
        PlainReading reading = readPlain(source, findings);
        fReport.add(source, std::move(findings));
        return reading;
    }

    void findLights()
    {
        for (const LightOption& light : fLights)
        {
            ShadingNodeSpec::Library::iterator first;
            ShadingNodeSpec::Library::iterator last;
            ShadingNodeSpec::findSpecsInLibrary(light.function.c_str(), first, last);
            first = std::find_if(first, last, [](const auto& entry) { return isDefinition(*entry.second); });
            if (first != last)
                fLightSpecs.push_back({first->second, light.key.c_str()});
            else
            {
                std::vector<std::string> names;
                for (const auto& [name, spec] : ShadingNodeSpec::fLibrary)
                    if (isDefinition(*spec))
                        names.emplace_back(name.asChar());
                fReport.error("--light " + light.option + ": there is no function " + inQuotes(light.function) +
                              " with a body" + krTools::didYouMean(light.function, names));
                fLibrariesAreGood = false;
            }
        }
    }

    /// The first definition of the name; without a name the first that says "material", else the first of all.
    const ShadingNodeSpec* findMaterial(const PlainReading& reading, const krTools::MaterialName& wanted)
    {
        const ShadingNodeSpec* found = nullptr;
        std::vector<std::string> names;
        for (const krTools::PlainFunction& function : reading.functions)
        {
            if (!isDefinition(*function.spec))
                continue;
            names.emplace_back(function.spec->name().asChar());
            if (wanted.function.empty() ? function.resultWord == "material" : names.back() == wanted.function)
                return function.spec;
            found = wanted.function.empty() && !found ? function.spec : found;
        }
        if (!found)
            fReport.error(inQuotes(wanted.file) + " has no function " +
                          (wanted.function.empty() ? "" : inQuotes(wanted.function) + ' ') + "with a body" +
                          krTools::didYouMean(wanted.function, names));
        return found;
    }

    krTools::SpecLibraryCleaner fCleaner;
    std::vector<LightSpec> fLightSpecs;
    bool fLibrariesAreGood = false;
};

} // namespace

MaterialCompiler::MaterialCompiler(const CompileOptions& options, Report& report) : fOptions(options), fReport(report)
{
    for (const std::string& option : options.lights)
    {
        const std::size_t equals = std::min(option.find('='), option.size());
        const std::string key = option.substr(0, equals);
        if (equals + 1 >= option.size() || !krTools::isName(key))
            throw krTools::UsageError("--light " + option + ": this is not KEY=FUNCTION with a name for its key");
        fLights.push_back({option, key, option.substr(equals + 1)});
    }
}

std::unique_ptr<MaterialCompiler> MaterialCompiler::makeFull(const CompileOptions& options, Report& report)
{
    return std::make_unique<FullCompiler>(options, report);
}

std::unique_ptr<MaterialCompiler> MaterialCompiler::makePlain(const CompileOptions& options, Report& report)
{
    return std::make_unique<PlainCompiler>(options, report);
}

std::vector<std::string> MaterialCompiler::libraryFiles(const CompileOptions& options)
{
    std::vector<std::string> files;
    if (options.stdlib != "none")
        files.push_back(options.stdlib.empty() ? krTools::dataFile("stdlib.krs") : options.stdlib);
    files.insert(files.end(), options.libraries.begin(), options.libraries.end());
    return files;
}

void MaterialCompiler::addFile(const std::string& path)
{
    if (path != "-" && std::find(fFiles.begin(), fFiles.end(), path) == fFiles.end())
        fFiles.push_back(path);
}
