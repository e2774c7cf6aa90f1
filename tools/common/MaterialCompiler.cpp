#include <common/MaterialCompiler.h>

#include <common/DataFiles.h>
#include <common/Findings.h>
#include <common/PlainReading.h>
#include <common/PrintedMessage.h>
#include <common/Source.h>

#include <krender/frontend/Interface.h>
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <utility>

using krFrontend::Module;
using krFrontend::ShaderInterface;
using krFrontend::ShaderKind;
using krShadingDag::ShadingNodeSpec;

namespace krTools
{

namespace
{

// Full KRSL

class FullCompiler : public MaterialCompiler
{
public:
    using MaterialCompiler::MaterialCompiler;

private:
    void readLibrary(const std::string& path) override
    {
        if (!fModules.contains(path))
            fModules.emplace(path, read(path));
    }

    void readLightFile(const std::string& path) override { readLibrary(path); }

    void readMaterialFile(const std::string& path) override
    {
        const auto known = fModules.find(path);
        fMaterial = known != fModules.end() ? &known->second : &fOwn.emplace(read(path));
    }

    std::vector<CompiledProgram> makePrograms(const std::string& material) override
    {
        krFrontend::ProgramRequest request;
        request.module = fMaterial;
        request.material = nameOf(material);
        request.keepIlluminance = !fOptions.lights;
        const std::size_t errorsBefore = fMessages.errorCount();
        if (fOptions.lights)
            for (const LightName& light : *fOptions.lights)
                addLight(light, request);
        if (fMessages.errorCount() != errorsBefore)
            return {};

        return compileTargets(request);
    }

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
        fMessages.add(problems);
        return programs;
    }

    void noteLeftOut(const std::vector<std::pair<const Target*, Problems>>& leftOut)
    {
        for (const auto& [target, problems] : leftOut)
            for (krFrontend::ProgramDiagnostic problem : problems)
            {
                problem.diagnostic.text.insert(0, std::string(target->name) + " is left out: ");
                fMessages.note(problem.module->sources(), problem.diagnostic);
            }
    }

    Module read(const std::string& path)
    {
        Module module = readModule(path, {fOptions.includeFolders, fOptions.reader});
        addFile(path);
        for (std::size_t i = 1; i < module.sources().fileCount(); ++i)
            addFile(module.sources().file(i).name());
        fMessages.add(module);
        return module;
    }

    /// The name of the material that is meant; empty when there is none.
    [[nodiscard]] std::string nameOf(const std::string& wanted) const
    {
        if (!wanted.empty())
            return wanted;
        for (const ShaderInterface& shader : interfaceOf(*fMaterial))
            if (shader.kind == ShaderKind::Material && shader.hasBody)
                return shader.name;
        return "";
    }

    void addLight(const LightName& light, krFrontend::ProgramRequest& request)
    {
        std::vector<const Module*> modules;
        if (light.file.empty())
        {
            modules.push_back(fMaterial);
            for (const std::string& path : fOptions.libraries)
                modules.push_back(&fModules.at(path));
        }
        else
            modules.push_back(&fModules.at(light.file));
        krFrontend::NearNames near(light.function);
        for (const Module* module : modules)
            for (const ShaderInterface& shader : interfaceOf(*module))
                if (shader.kind == ShaderKind::Light && shader.hasBody)
                {
                    if (shader.name == light.function)
                        return request.lights.push_back({module, light.function, light.key});
                    near.consider(shader.name);
                }
        reportMissing(light, "light", near);
    }

    std::map<std::string, Module> fModules; ///< of the libraries and the lights' files, by path
    std::optional<Module> fOwn;             ///< of the material's file, where it is none of those
    const Module* fMaterial = nullptr;
};

// What ShadingParser reads

class PlainCompiler : public MaterialCompiler
{
public:
    using MaterialCompiler::MaterialCompiler;

private:
    void readLibrary(const std::string& path) override { (void)read(path, fLibrary); }

    void readLightFile(const std::string& path) override
    {
        if (!fLightFiles.contains(path))
            (void)read(path, fLightFiles[path]);
    }

    void readMaterialFile(const std::string& path) override
    {
        fFile = path;
        fReading = read(path, fOwn.emplace());
    }

    std::vector<CompiledProgram> makePrograms(const std::string& name) override
    {
        const std::size_t errorsBefore = fMessages.errorCount();
        const ShadingNodeSpec* const material = findMaterial(name);
        if (!material)
            return {};
        krFrontend::ProgramInterface interface;
        addInputs(*material, "", interface);
        std::vector<LightSpec> lights;
        if (fOptions.lights)
            for (const LightName& light : *fOptions.lights)
                if (const ShadingNodeSpec* spec = findLight(light))
                {
                    lights.push_back({spec, light.key.c_str()});
                    addInputs(*spec, light.key, interface);
                }

        std::vector<CompiledProgram> programs;
        for (const auto& [target, isNamed] : fOptions.targets)
        {
            if (fMessages.errorCount() != errorsBefore)
                return {};
            FragmentExtras extras;
            krString::CString vertex;
            krString::CString fragment;
            target->compile(*material, fOptions.lights ? &lights : nullptr, extras, vertex, fragment);
            if (extras.isTooLarge)
                fMessages.error("the program of " + inQuotes(material->name().view()) + " would have more than " +
                                std::to_string(kMostProgramBytes >> 20) + " MB");
            programs.push_back({target,
                                material->name().asChar(),
                                {.vertex = std::string(vertex.view()),
                                 .fragment = std::string(fragment.view()),
                                 .fragmentOrigins = {},
                                 .interface = interface}});
        }
        return programs;
    }

    PlainReading read(const std::string& path, PlainLibrary& library)
    {
        addFile(path);
        const Source source(path);
        Findings findings;
        PlainReading reading = library.read(source, findings);
        fMessages.add(source, std::move(findings));
        return reading;
    }

    /// The light's function; null when it is missing, which is reported.
    const ShadingNodeSpec* findLight(const LightName& light)
    {
        std::vector<const PlainLibrary*> libraries{&*fOwn, &fLibrary};
        if (!light.file.empty())
            libraries = {&fLightFiles.at(light.file)};
        krFrontend::NearNames near(light.function);
        for (const PlainLibrary* library : libraries)
        {
            if (const ShadingNodeSpec* found = library->findDefinition(light.function))
                return found;
            for (const auto& [name, spec] : library->specs())
                if (isDefinition(*spec))
                    near.consider(name.view());
        }
        reportMissing(light, "function", near);
        return nullptr;
    }

    /// The first definition of the name; without a name the first that says "material", else the first of all.
    const ShadingNodeSpec* findMaterial(const std::string& wanted)
    {
        const ShadingNodeSpec* found = nullptr;
        krFrontend::NearNames near(wanted);
        for (const PlainFunction& function : fReading.functions)
        {
            if (!isDefinition(*function.spec))
                continue;
            const std::string_view name = function.spec->name().view();
            if (wanted.empty() ? function.resultWord == "material" : name == wanted)
                return function.spec;
            found = wanted.empty() && !found ? function.spec : found;
            near.consider(name);
        }
        if (!found)
            fMessages.error(inQuotes(fFile) + " has no function " + (wanted.empty() ? "" : inQuotes(wanted) + ' ') +
                            "with a body" + near.didYouMean());
        return found;
    }

    /// Lists what a host sets for a material or, with its key, for a light.
    static void addInputs(const ShadingNodeSpec& spec, const std::string& light,
                          krFrontend::ProgramInterface& interface)
    {
        for (const krShadingDag::ShadingAttribute& input : spec.inputs())
        {
            const std::string name(input.name().view());
            const auto describe = [&](auto& described)
            {
                described.programName = light + name;
                described.name = name;
                described.type = input.dataType();
            };
            if (input.range() == krShadingDag::kUniformRange)
            {
                describe(interface.uniforms.emplace_back());
                interface.uniforms.back().light = light;
            }
            else if (light.empty() && input.range() == krShadingDag::kVertexRange)
                describe(interface.vertexInputs.emplace_back());
        }
    }

    PlainLibrary fLibrary;
    std::map<std::string, PlainLibrary> fLightFiles; ///< by path
    std::string fFile;                               ///< of the material
    std::optional<PlainLibrary> fOwn;                ///< of the material's file
    PlainReading fReading;                           ///< likewise
};

} // namespace

std::vector<std::string> libraryFiles(const std::string& stdlib, const std::vector<std::string>& more)
{
    std::vector<std::string> files;
    if (stdlib != kNoLibrary)
        files.push_back(stdlib.empty() ? dataFile("stdlib.krs") : stdlib);
    files.insert(files.end(), more.begin(), more.end());
    return files;
}

Module readModule(const std::string& path, const krFrontend::ReadOptions& options)
{
    return Module::readText(path == "-" ? kStandardInputName : path, readText(path, krFrontend::kMostSourceBytes),
                            options);
}

std::unique_ptr<MaterialCompiler> MaterialCompiler::make(CompilerOptions options, Messages& messages)
{
    std::unique_ptr<MaterialCompiler> compiler;
    if (options.asPlain)
        compiler = std::make_unique<PlainCompiler>(std::move(options), messages);
    else
        compiler = std::make_unique<FullCompiler>(std::move(options), messages);
    compiler->fLightFilesAreGood = compiler->isGood(
        [&compiler]
        {
            for (const std::string& path : compiler->fOptions.libraries)
                compiler->readLibrary(path);
            if (compiler->fOptions.lights)
                for (const LightName& light : *compiler->fOptions.lights)
                    if (!light.file.empty())
                        compiler->readLightFile(light.file);
        });
    return compiler;
}

MaterialCompiler::MaterialCompiler(CompilerOptions options, Messages& messages)
    : fOptions(std::move(options)), fMessages(messages)
{
}

template <class Read>
bool MaterialCompiler::isGood(Read read)
{
    const std::size_t errorsBefore = fMessages.errorCount();
    read();
    return fMessages.errorCount() == errorsBefore;
}

std::vector<CompiledProgram> MaterialCompiler::compile(const MaterialName& name)
{
    // What is wrong with a file is reported once, however many of its materials are wanted.
    if (fMaterialFile != name.file)
    {
        fMaterialFile.reset();
        fMaterialFileIsGood = isGood([&] { readMaterialFile(name.file); });
        fMaterialFile = name.file;
    }
    std::vector<CompiledProgram> programs;
    if (!fLightFilesAreGood || !fMaterialFileIsGood || !isGood([&] { programs = makePrograms(name.function); }))
        return {};
    return programs;
}

void MaterialCompiler::addFile(const std::string& path)
{
    if (path != "-" && std::find(fFiles.begin(), fFiles.end(), path) == fFiles.end())
        fFiles.push_back(path);
}

void MaterialCompiler::reportMissing(const LightName& light, const char* kind, const krFrontend::NearNames& near)
{
    const std::string text = light.place + ": " + (light.file.empty() ? "there is" : light.file + " has") + " no " +
                             kind + ' ' + inQuotes(light.function) + " with a body" + near.didYouMean();
    if (!light.source)
        return fMessages.error(text);
    Findings findings;
    findings.error(light.position, text);
    fMessages.add(*light.source, std::move(findings));
}

} // namespace krTools
