#include "krender/frontend/private/Lowering.h"

#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/ProgramNames.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/StmtWalk.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"
#include "krender/shading/private/StatementPrinter.h"
#include <krender/frontend/SourceSet.h>
#include <krender/platform/String.h>
#include <krender/shadergen/Target.h>
#include <krender/shading/FunctionType.h>
#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/ShadingNodeSpec.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace krFrontend
{
namespace
{

using krShadingDag::StatementPrinter;

/// Prints a function's body and keeps where its lines came from.
class TracedPrinter final : public StatementPrinter
{
public:
    TracedPrinter(std::string& out, const std::unordered_map<const krShadingDag::Statement*, TextOrigin>& origins,
                  std::vector<std::pair<std::size_t, TextOrigin>>& places)
        : StatementPrinter(out, "\t", "\t"), fOut(out), fOrigins(origins), fPlaces(places)
    {
    }

protected:
    void printListed(const krShadingDag::Statement& statement) override
    {
        if (const auto origin = fOrigins.find(&statement); origin != fOrigins.end())
            fPlaces.emplace_back(fOut.size(), origin->second);
        StatementPrinter::printListed(statement);
    }

private:
    const std::string& fOut;
    const std::unordered_map<const krShadingDag::Statement*, TextOrigin>& fOrigins;
    std::vector<std::pair<std::size_t, TextOrigin>>& fPlaces;
};

/// The function that Cg's text of an expression calls where the source calls none; empty: there is none.
std::string_view insertedByCg(const Expr& expr) noexcept
{
    const auto isMatrix = [](const Expr* e) { return e && e->type.isMatrix(); };
    switch (expr.kind)
    {
    case ExprKind::Binary:
        if (expr.op == TokenKind::Equal || expr.op == TokenKind::NotEqual)
            return !expr.first->type.isVector() ? "" : expr.op == TokenKind::Equal ? "all" : "any";
        return expr.op == TokenKind::Star && (isMatrix(expr.first) || isMatrix(expr.second())) ? "mul" : "";
    case ExprKind::Index:
        return isMatrix(expr.first) ? "transpose" : "";
    case ExprKind::Construct:
        return isMatrix(&expr) ? "transpose" : "";
    case ExprKind::Variable:
        return isMatrix(&expr) && expr.symbol->kind == SymbolKind::Constant ? "transpose" : "";
    default:
        return "";
    }
}

} // namespace

void TracedText::append(std::string_view more, TextOrigin origin, bool follows)
{
    text += more;
    unsigned line = 0;
    const SourceFile* file = origin.sources ? &origin.sources->fileAt(origin.offset) : nullptr;
    for (const char c : more)
    {
        if (c != '\n')
            continue;
        lines.push_back(origin);
        if (!follows || !file)
            continue;
        const std::size_t next = file->text().find('\n', origin.offset - file->begin());
        if (next != std::string_view::npos)
            origin.offset = file->begin() + static_cast<Offset>(next) + 1;
        ++line;
    }
}

const std::string& ProgramFunctions::nameOf(const Function& function, const ModuleContents& module)
{
    const auto [place, isNew] = fFunctionNames.try_emplace(&function);
    if (!isNew)
        return place->second;
    // A function that replaces a built-in has another name in the program: whether a target allows that differs.
    const std::string_view name = module.store.names.text(function.name);
    place->second = isBuiltinWord(name, fTarget.language) ? fNames.invent(name) : fNames.claim(name);
    fUsed.insert(place->second);
    return place->second;
}

void ProgramFunctions::needHelper(std::string_view text)
{
    if (fHelpers.emplace(text).second)
        fText.append(std::string(text) + "\n", {}, false);
}

Lowering::Lowering(const ModuleContents& module, ProgramFunctions& program)
    : fModule(module), fProgram(program), fLanguage(program.target().language)
{
}

std::vector<const Function*> Lowering::callees(const Function& shader) const
{
    std::vector<const Function*> found;
    std::unordered_set<const Function*> seen;
    std::vector<const Function*> waiting{&shader};
    while (!waiting.empty())
    {
        const Function& function = *waiting.back();
        waiting.pop_back();
        for (const Function* called : function.calls)
            if (seen.insert(called).second)
            {
                found.push_back(called);
                waiting.push_back(called);
            }
    }
    std::sort(found.begin(), found.end(), [](const Function* a, const Function* b) { return a->order < b->order; });
    return found;
}

void Lowering::writeFunctions(const Function& shader)
{
    for (const Function* function : callees(shader))
        if (fProgram.startFunction(*function))
            writeFunction(*function);
}

std::string_view Lowering::spellingOf(const Expr& call) const
{
    const std::string_view spelled =
        call.isBuiltin ? call.builtin->spellings[static_cast<unsigned>(fLanguage)].name : std::string_view();
    return spelled.empty() ? nameText(call.name) : spelled;
}

void Lowering::collectCalls(const Function& shader, std::unordered_set<std::string>& names)
{
    forEachExpr(shader.body,
                [&](Expr* expr, const Symbol*)
                {
                    fWalk(expr,
                          [&](Expr* e)
                          {
                              if (e->kind == ExprKind::Call)
                                  names.emplace(spellingOf(*e));
                          });
                });
}

void Lowering::collectAllCalls(const Function& shader, std::unordered_set<std::string>& names)
{
    collectCalls(shader, names);
    for (const Function* function : callees(shader))
        collectCalls(*function, names);
}

void Lowering::collectInserted(const Function& function, std::unordered_set<std::string>& names)
{
    forEachExpr(function.body,
                [&](Expr* expr, const Symbol*)
                {
                    fWalk(expr,
                          [&](Expr* e)
                          {
                              if (e->kind == ExprKind::Call && spellingOf(*e) != nameText(e->name))
                                  names.emplace(spellingOf(*e));
                              if (const std::string_view name = insertedByCg(*e); isCg() && !name.empty())
                                  names.emplace(name);
                          });
                });
}

void Lowering::nameVariable(const Symbol& symbol, const std::unordered_set<std::string>& called)
{
    const std::string name(nameText(symbol.name));
    // To GLSL the head of a for and the block behind it are one scope.
    if (symbol.hidesHead || fProgram.names().needsOther(name) || fProgram.isFunction(name) || called.contains(name))
        fNames[&symbol] = fProgram.names().invent(name);
}

void Lowering::nameLocals(const Function& function, const std::unordered_set<std::string>& called)
{
    forEachVariable(function.body, [&](const Symbol& variable) { nameVariable(variable, called); });
    if (!isCg())
        return;
    // A name is known there from its declarator on, its own value included.
    forEachExpr(function.body,
                [&](Expr* expr, const Symbol* variable)
                {
                    if (!variable || fNames.contains(variable))
                        return;
                    bool isHidden = false;
                    fWalk(expr,
                          [&](Expr* e) {
                              isHidden |= (e->kind == ExprKind::Variable || e->kind == ExprKind::Call) &&
                                          e->name == variable->name;
                          });
                    if (isHidden)
                        fNames[variable] = fProgram.names().invent(nameText(variable->name));
                });
}

std::string Lowering::zeroOf(const Type& type) const
{
    const ConstantValue zero{type, {}, {}, {}};
    return constantText(zero);
}

std::string Lowering::providedArguments(std::uint8_t provided, bool declares) const
{
    std::string arguments;
    for (unsigned i = 0; i < kPassedValues; ++i)
    {
        if ((provided >> i & 1u) == 0)
            continue;
        arguments += arguments.empty() ? "" : ", ";
        if (declares)
            arguments += typeName(kProvidedValues[i].type) + " ";
        arguments += kProvidedValues[i].name;
    }
    return arguments;
}

void Lowering::writeFunction(const Function& function)
{
    std::unordered_set<std::string> called;
    collectInserted(function, called);
    std::string head = typeText(function.result) + " " + fProgram.nameOf(function, fModule) + "(" +
                       providedArguments(function.provided, true);
    bool isFirst = function.provided == 0;
    for (const Symbol* argument = function.arguments; argument; argument = argument->next)
    {
        nameVariable(*argument, called);
        head += isFirst ? "" : ", ";
        isFirst = false;
        if (argument->kind != SymbolKind::Input)
            head += argument->kind == SymbolKind::Output ? "out " : "inout ";
        head += typeText(argument->type) + " " + nameOf(*argument);
    }
    head += ")\n{\n";
    nameLocals(function, called);

    std::string begin;
    std::string end;
    fReturnText = "return;";
    if (function.output && (function.output->isRead || function.output->isWritten || !function.endsBody))
    {
        const std::string name = fProgram.names().invent("output");
        fNames[function.output] = name;
        begin = "\t" + typeText(function.result) + " " + name + " = " + zeroOf(function.result) + ";\n";
        fReturnText = "return " + name + ";";
        end = function.endsBody ? "" : "\t" + fReturnText + "\n";
    }
    StatementCompound body;
    std::unordered_map<const Statement*, TextOrigin> origins;
    fOrigins = &origins;
    lowerStatements(function.body->body, body);
    writeText(body, head, begin, end + "}\n\n", function.header.begin);
    fOrigins = nullptr;
}

void Lowering::writeText(const StatementCompound& body, std::string_view head, std::string_view begin,
                         std::string_view end, Offset origin)
{
    const TextOrigin from{&fModule.sources, origin};
    fProgram.text().append(head, from, false);
    fProgram.text().append(begin, from, false);
    std::string text;
    std::vector<std::pair<std::size_t, TextOrigin>> places;
    TracedPrinter(text, *fOrigins, places).print(body);
    for (std::size_t i = 0; i < places.size(); ++i)
    {
        const std::size_t next = i + 1 < places.size() ? places[i + 1].first : text.size();
        fProgram.text().append(std::string_view(text).substr(places[i].first, next - places[i].first), places[i].second,
                               true);
    }
    fProgram.text().append(end, from, false);
}

void Lowering::lowerHeader(const Function& shader, LoweredShader& lowered)
{
    lowered.spec = std::make_unique<krShadingDag::ShadingNodeSpec>(krShadingDag::kDefinition);
    krShadingDag::ShadingNodeSpec& spec = *lowered.spec;
    spec.setName(krString::CString(nameText(shader.name)));
    for (const Symbol* argument = shader.arguments; argument; argument = argument->next)
    {
        // A value that programs have anyway is not declared by them again, whatever its header says.
        const krShadingDag::CompFreqRange range =
            isProvidedName(nameText(argument->name)) ? krShadingDag::kFullRange : argument->frequencies;
        if (isCg() && argument->type == Type{BaseType::Matrix, 2, 0})
            fProgram.needHelper("#define matrix2 float2x2\n"); // which the frame does not have, as it has the others
        const krString::CString name{std::string_view(nameOf(*argument))};
        if (argument->kind == SymbolKind::Input)
            spec.addInput(dataType(argument->type), name, range);
        else
            spec.addOutput(dataType(argument->type), name, range);
    }
    spec.setFunctionType(krShadingDag::FunctionType(shader.kind == FunctionKind::Light ? "light" : "material"));
}

void Lowering::nameInputs(const Function& shader, const ShadingNames& names)
{
    for (const Symbol* input = shader.arguments; input; input = input->next)
    {
        const std::string_view name = nameText(input->name);
        if (input->kind != SymbolKind::Input || isProvidedName(name))
            continue;
        // The alias of a light's sampler is a macro in GLSL, and would take the components of its name away.
        const bool isComponents = name.find_first_not_of("rgbawxyz") == std::string_view::npos;
        if (shader.kind == FunctionKind::Light && input->type.isSampler() && isComponents)
            fNames[input] = fProgram.names().invent(name);
        else
            nameVariable(*input, names.called);
        if (shader.kind == FunctionKind::Material)
            fProgram.names().take(nameOf(*input));
    }
}

LoweredShader Lowering::lowerMaterial(const Function& material, const ShadingNames& names)
{
    LoweredShader lowered;
    lowerHeader(material, lowered);
    nameLocals(material, names.hiding);
    fReturnText = fProgram.target().earlyResult;
    lowerShaderBody(material, lowered);
    return lowered;
}

LoweredShader Lowering::lowerLight(const Function& light, const ShadingNames& names)
{
    LoweredShader lowered;
    lowerHeader(light, lowered);
    if (light.hasReturn)
    {
        writeLightFunction(light, lowered);
        return lowered;
    }
    nameLocals(light, names.called);
    lowerShaderBody(light, lowered);
    return lowered;
}

void Lowering::lowerShaderBody(const Function& shader, LoweredShader& lowered)
{
    fOrigins = &lowered.origins;
    StatementCompound& body =
        addCompound(lowered.spec->body(), krShadingDag::StatementType::Block, "", shader.body->begin);
    lowerStatements(shader.body->body, body);
    lowered.spec->updateIlluminanceLoopFlag();
    fOrigins = nullptr;
}

void Lowering::writeLightFunction(const Function& light, LoweredShader& lowered)
{
    // A return ends the light and not the material that its code stands in: it has to be a function of its own.
    const std::string name = fProgram.names().invent(nameText(light.name));
    std::string declared = providedArguments(light.provided, true);
    std::string passed = providedArguments(light.provided, false);
    for (const Symbol* argument = light.arguments; argument; argument = argument->next)
    {
        if (isProvidedName(nameText(argument->name)))
            continue;
        declared += std::string(declared.empty() ? "" : ", ") + (argument->kind == SymbolKind::Input ? "" : "inout ") +
                    typeText(argument->type) + " " + nameOf(*argument);
        passed += std::string(passed.empty() ? "" : ", ") + nameOf(*argument);
    }
    std::unordered_set<std::string> inserted;
    collectInserted(light, inserted);
    nameLocals(light, inserted);
    fReturnText = "return;";
    StatementCompound body;
    std::unordered_map<const Statement*, TextOrigin> origins;
    fOrigins = &origins;
    lowerStatements(light.body->body, body);
    writeText(body, "void " + name + "(" + declared + ")\n{\n", "", "}\n\n", light.header.begin);

    fOrigins = &lowered.origins;
    StatementCompound& outer =
        addCompound(lowered.spec->body(), krShadingDag::StatementType::Block, "", light.body->begin);
    addText(outer, krShadingDag::StatementType::Opaque, name + "(" + passed + ");", light.body->begin);
    fOrigins = nullptr;
}

} // namespace krFrontend
