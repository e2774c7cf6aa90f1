#include <krender/frontend/Program.h>

#include "krender/frontend/private/BlockLayout.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/InterfaceParts.h"
#include "krender/frontend/private/LineDirectives.h"
#include "krender/frontend/private/Lowering.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/ProgramNames.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/ShaderWalk.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/TargetLimits.h"
#include "krender/frontend/private/Type.h"
#include <krender/frontend/Interface.h>
#include <krender/frontend/Module.h>
#include <krender/frontend/NearNames.h>
#include <krender/frontend/SourceSet.h>
#include <krender/platform/String.h>
#include <krender/shadergen/FragmentExtras.h>
#include <krender/shadergen/LightSpec.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/Statement.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace krFrontend
{
namespace
{

/// Puts a program together.
class ProgramMaker
{
public:
    ProgramMaker(const ProgramRequest& request, const Target& target, std::vector<ProgramDiagnostic>& problems)
        : fRequest(request), fTarget(target), fProblems(problems), fNames(target), fFunctions(target, fNames)
    {
    }

    std::optional<Program> make()
    {
        if (!findShaders())
            return std::nullopt;
        checkLimits();
        if (fFailed)
            return std::nullopt;
        nameAll();
        lowerAll();
        Program program;
        if (!compile(program))
            return std::nullopt;
        describe(program.interface);
        return program;
    }

private:
    struct Light
    {
        const LightUse* use;
        const Function* function = nullptr;
        std::string key; // in the program
        LoweredShader lowered;
    };

    void report(const Module& module, Message message, SourceRange range, std::initializer_list<std::string_view> words)
    {
        DiagnosticList list;
        list.report(message, range, words);
        fProblems.push_back({&module, std::move(list.take().front())});
        fFailed = true;
    }

    [[nodiscard]] static const Function* find(const Module& module, std::string_view name, FunctionKind kind)
    {
        for (const Function* function : module.contents().tree.functions)
            if (function->kind == kind && function->body &&
                (name.empty() || module.contents().store.names.text(function->name) == name))
                return function;
        return nullptr;
    }

    void reportMissing(const Module& module, const std::string& name, FunctionKind kind)
    {
        NearNames near(name);
        for (const Function* function : module.contents().tree.functions)
            if (function->kind == kind)
                near.consider(module.contents().store.names.text(function->name));
        const std::string hint = near.best().empty() ? "" : ": is it '" + near.best() + "'?";
        const std::string what = std::string(kind == FunctionKind::Material ? "material" : "light") +
                                 (name.empty() ? "" : " '" + name + "'");
        report(module, Message::NoSuchShader, {}, {what, hint});
    }

    bool findShaders()
    {
        if (fRequest.module->hasErrors())
            return false;
        fMaterial = find(*fRequest.module, fRequest.material, FunctionKind::Material);
        if (!fMaterial)
            reportMissing(*fRequest.module, fRequest.material, FunctionKind::Material);
        for (const LightUse& use : fRequest.lights)
        {
            if (use.module->hasErrors())
                return false;
            Light& light = fLights.emplace_back();
            light.use = &use;
            light.key = use.key.substr(0, kLongestProgramName);
            light.function = find(*use.module, use.function, FunctionKind::Light);
            if (!light.function)
                reportMissing(*use.module, use.function, FunctionKind::Light);
        }
        return !fFailed;
    }

    void checkLimits()
    {
        std::vector<ShaderUse> shaders{{fRequest.module, fMaterial}};
        for (const Light& light : fLights)
            shaders.push_back({light.use->module, light.function});
        TargetLimits(fTarget,
                     [this](const Module& module, Message message, SourceRange range,
                            std::initializer_list<std::string_view> words) { report(module, message, range, words); })
            .check(shaders);
    }

    [[nodiscard]] static std::string_view text(const Module& module, Name name)
    {
        return module.contents().store.names.text(name);
    }

    [[nodiscard]] Lowering& loweringOf(const Module& module)
    {
        std::unique_ptr<Lowering>& lowering = fLowerings[&module];
        if (!lowering)
        {
            lowering = std::make_unique<Lowering>(module.contents(), fFunctions);
            fNames.avoid(module.contents().store.names);
        }
        return *lowering;
    }

    void nameAll()
    {
        Lowering& material = loweringOf(*fRequest.module);
        material.collectAllCalls(*fMaterial, fShading.called);
        material.collectInserted(*fMaterial, fShading.called);
        material.collectInserted(*fMaterial, fShading.hiding);
        for (const Light& light : fLights)
        {
            Lowering& lowering = loweringOf(*light.use->module);
            lowering.collectAllCalls(*light.function, fShading.called);
            lowering.collectCalls(*light.function, fShading.hiding);
            lowering.collectInserted(*light.function, fShading.called);
            lowering.collectInserted(*light.function, fShading.hiding);
        }
        // The frame calls these itself, where a vertex input would hide them.
        fShading.called.insert({"ftransform", "mul", "normalize"});
    }

    /// The key may make a name that something else has; then it is another one in the program.
    void chooseKey(Light& light, Lowering& lowering)
    {
        const auto names = [&](const std::string& key)
        {
            std::vector<std::string> made;
            for (const Symbol* input = light.function->arguments; input; input = input->next)
                if (input->frequencies == krShadingDag::kUniformRange && input->kind == SymbolKind::Input)
                    made.push_back(key + lowering.nameOf(*input));
            return made;
        };
        const auto isFree = [&](const std::string& key)
        {
            for (const std::string& name : names(key))
            {
                bool isOwn = false;
                for (const Symbol* input = light.function->arguments; input; input = input->next)
                    isOwn |= lowering.nameOf(*input) == name;
                if (isOwn || fNames.isReserved(name) || fNames.isTaken(name) || fShading.called.contains(name))
                    return false;
            }
            return true;
        };
        for (unsigned number = 1; !isFree(light.key); ++number)
            light.key = light.use->key.substr(0, kLongestProgramName) + "_" + std::to_string(number) + "_";
        for (const std::string& name : names(light.key))
        {
            fNames.take(name);
            fShading.hiding.insert(name);
        }
    }

    void lowerAll()
    {
        Lowering& material = loweringOf(*fRequest.module);
        material.nameInputs(*fMaterial, fShading);
        for (Light& light : fLights)
        {
            Lowering& lowering = loweringOf(*light.use->module);
            lowering.nameInputs(*light.function, fShading);
            chooseKey(light, lowering);
        }
        material.writeFunctions(*fMaterial);
        for (Light& light : fLights)
        {
            Lowering& lowering = loweringOf(*light.use->module);
            lowering.writeFunctions(*light.function);
            light.lowered = lowering.lowerLight(*light.function, fShading);
        }
        fLowered = material.lowerMaterial(*fMaterial, fShading);
    }

    bool compile(Program& program)
    {
        std::vector<LightSpec> lights;
        for (const Light& light : fLights)
            lights.push_back({light.lowered.spec.get(), krString::CString(std::string_view(light.key))});
        FragmentExtras extras;
        extras.functions = fFunctions.text().text;
        krString::CString vertex;
        krString::CString fragment;
        fTarget.compile(*fLowered.spec, fRequest.keepIlluminance ? nullptr : &lights, extras, vertex, fragment);
        program.vertex = vertex.view();
        program.fragment = fragment.view();
        trace(extras, program);
        if (fTarget.language == TargetLanguage::VulkanGlsl)
            addLineDirectives(program);
        if (!extras.isTooLarge && program.fragment.size() <= kMostProgramBytes)
            return true;
        report(*fRequest.module, Message::ProgramTooLarge, fMaterial->range,
               {text(*fRequest.module, fMaterial->name), std::to_string(kMostProgramBytes >> 20)});
        return false;
    }

    [[nodiscard]] const Module* moduleOf(const TextOrigin& origin) const
    {
        for (const auto& [module, lowering] : fLowerings)
            if (&module->sources() == origin.sources)
                return module;
        return nullptr;
    }

    void trace(const FragmentExtras& extras, Program& program) const
    {
        std::vector<LineOrigin>& lines = program.fragmentOrigins;
        const auto put = [&lines](std::size_t line, LineOrigin origin)
        {
            if (lines.size() < line)
                lines.resize(line);
            lines[line - 1] = origin;
        };
        std::size_t line = extras.functionsLine;
        for (const TextOrigin& origin : fFunctions.text().lines)
            put(line++, {origin.sources ? moduleOf(origin) : nullptr, origin.offset});
        const auto originOf = [this](const krShadingDag::Statement* statement) -> const TextOrigin*
        {
            if (const auto own = fLowered.origins.find(statement); own != fLowered.origins.end())
                return &own->second;
            for (const Light& light : fLights)
                if (const auto own = light.lowered.origins.find(statement); own != light.lowered.origins.end())
                    return &own->second;
            return nullptr;
        };
        for (const StatementPlace& place : extras.statements)
        {
            const TextOrigin* origin = originOf(place.statement);
            if (!origin)
                continue;
            const Module* module = moduleOf(*origin);
            const SourceFile& file = module->sources().fileAt(origin->offset);
            Offset offset = origin->offset;
            const std::string_view statement = place.statement->text().view();
            const auto breaks = static_cast<std::size_t>(std::count(statement.begin(), statement.end(), '\n'));
            for (std::size_t i = 0; i <= breaks; ++i)
            {
                put(place.line + i, {module, offset});
                const std::size_t next = file.text().find('\n', offset - file.begin());
                if (next == std::string_view::npos)
                    break;
                offset = file.begin() + static_cast<Offset>(next) + 1;
            }
        }
    }

    void describe(ProgramInterface& interface) const
    {
        describeUniforms(interface, *fRequest.module, *fMaterial, "", "");
        for (const Light& light : fLights)
            describeUniforms(interface, *light.use->module, *light.function, light.use->key, light.key);
        Lowering& lowering = *fLowerings.at(fRequest.module);
        forEachInput(*fRequest.module, *fMaterial, krShadingDag::kVertexRange,
                     [&](const Symbol& input)
                     {
                         VertexInputInterface& described = interface.vertexInputs.emplace_back();
                         described.name = text(*fRequest.module, input.name);
                         described.programName = lowering.nameOf(input);
                         described.type = dataType(input.type);
                         described.metadata = metadataOf(fRequest.module->contents(), input);
                         if (fTarget.interpolants != 0)
                             described.texCoord = static_cast<int>(interface.vertexInputs.size());
                     });
        std::uint8_t provided = fMaterial->provided;
        for (const Light& light : fLights)
            provided |= light.function->provided;
        for (unsigned i = 0; i < kPassedValues; ++i)
            if ((provided >> i & 1u) != 0)
                interface.providedValues.emplace_back(kProvidedValues[i].name);
        if (fTarget.language == TargetLanguage::VulkanGlsl)
            layOut(interface);
    }

    void describeUniforms(ProgramInterface& interface, const Module& module, const Function& shader,
                          const std::string& key, const std::string& prefix) const
    {
        Lowering& lowering = *fLowerings.at(&module);
        forEachInput(module, shader, krShadingDag::kUniformRange,
                     [&](const Symbol& input)
                     {
                         UniformInterface& uniform = interface.uniforms.emplace_back();
                         uniform.programName = prefix + lowering.nameOf(input);
                         uniform.name = text(module, input.name);
                         uniform.light = key;
                         uniform.type = dataType(input.type);
                         uniform.defaultValue = input.value ? valueOf(*input.value) : Value();
                         uniform.metadata = metadataOf(module.contents(), input);
                         uniform.module = &module;
                         uniform.range = input.range;
                     });
    }

    const ProgramRequest& fRequest;
    const Target& fTarget;
    std::vector<ProgramDiagnostic>& fProblems;
    ProgramNames fNames;
    ProgramFunctions fFunctions;
    ShadingNames fShading;
    std::unordered_map<const Module*, std::unique_ptr<Lowering>> fLowerings;
    const Function* fMaterial = nullptr;
    LoweredShader fLowered;
    std::vector<Light> fLights;
    bool fFailed = false;
};

} // namespace

SourceRange lineRange(const LineOrigin& origin)
{
    const SourceFile& file = origin.module->sources().fileAt(origin.offset);
    const std::string_view rest = file.text().substr(origin.offset - file.begin());
    const std::size_t end = std::min(rest.find_first_of("\r\n"), rest.size());
    const std::size_t indent = std::min(rest.find_first_not_of(" \t"), end);
    return {origin.offset + static_cast<Offset>(indent), origin.offset + static_cast<Offset>(end)};
}

std::optional<Program> compileProgram(const ProgramRequest& request, const Target& target,
                                      std::vector<ProgramDiagnostic>& problems)
{
    return ProgramMaker(request, target, problems).make();
}

} // namespace krFrontend
