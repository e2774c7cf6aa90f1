#include "krender/frontend/private/Checker.h"

#include "krender/frontend/private/Arena.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/ConstantFolder.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>
#include <krender/shading/ShadingAttribute.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr bool isCarried(const Type& type) noexcept { return type.base == BaseType::Float && type.size > 0; }

std::string_view kindText(FunctionKind kind) noexcept
{
    switch (kind)
    {
    case FunctionKind::Material:
        return "material";
    case FunctionKind::Light:
        return "light";
    case FunctionKind::Displacement:
        return "displacement";
    case FunctionKind::Regular:
        break;
    }
    return "function";
}

} // namespace

Checker::Checker(const SourceSet& sources, SyntaxStore& store, SyntaxTree& tree, DiagnosticList& diagnostics,
                 Offset mainEnd)
    : fSources(sources),
      fStore(store),
      fTree(tree),
      fDiagnostics(diagnostics),
      fFolder(store.constants),
      fMainEnd(mainEnd)
{
    std::array<Symbol*, kProvidedValues.size()> provided;
    for (unsigned i = 0; i < kProvidedValues.size(); ++i)
    {
        Symbol* symbol = provided[i] = store.arena.make<Symbol>();
        symbol->kind = SymbolKind::Provided;
        symbol->name = store.names.intern(kProvidedValues[i].name);
        symbol->type = kProvidedValues[i].type;
        symbol->provided = static_cast<std::uint8_t>(i);
        symbol->isSet = true;
    }
    store.names.intern("output");
    fVisible.resize(store.names.size());
    fConstants.resize(store.names.size());
    fFunctions.resize(store.names.size());
    fProvidedByName.resize(store.names.size());
    for (Symbol* symbol : provided)
        fProvidedByName[symbol->name] = symbol;
}

void Checker::check()
{
    declareFunctions();
    declareConstants();
    checkMetadata();
    for (Function* function : fTree.functions)
        checkHeader(*function);
    for (Function* function : fTree.functions)
        if (function->body)
            checkBody(*function);
    checkCalls();
    reportUnused();
}

void Checker::declareConstants()
{
    for (Symbol* constant : fTree.constants)
    {
        if (const Symbol* first = fConstants[constant->name])
            fDiagnostics.report(Message::Redeclared, constant->range, {fStore.names.text(constant->name)})
                .note(first->range, "it is declared here");
        else
            fConstants[constant->name] = constant;
    }
    fInConstant = true;
    for (Symbol* constant : fTree.constants)
        evaluateConstant(*constant);
    fInConstant = false;
}

void Checker::evaluateConstant(Symbol& root)
{
    // isWritten: its turn has come; isSet: done. A chain of constants may be long, so they wait in a list.
    std::vector<Symbol*> waiting{&root};
    while (!waiting.empty())
    {
        Symbol& constant = *waiting.back();
        if (constant.isSet)
        {
            waiting.pop_back();
            continue;
        }
        constant.isWritten = true;
        bool isReady = true;
        const auto needOthers = [&](Expr* expr)
        {
            Symbol* other = expr->kind == ExprKind::Variable ? fConstants[expr->name] : nullptr;
            if (!other || other->isSet || !isReady)
                return;
            if (other->isWritten)
            {
                fDiagnostics.report(Message::ConstantCircle, constant.range, {fStore.names.text(constant.name)})
                    .note(other->range, "which needs this one");
                constant.isSet = true;
                constant.type = kNoType;
            }
            else
                waiting.push_back(other);
            isReady = false;
        };
        fWalk(constant.initializer, needOthers);
        if (!isReady)
            continue;
        constant.isSet = true;
        waiting.pop_back();
        checkExpr(constant.initializer);
        if (constant.type.isSampler() || constant.type == kVoidType || constant.type == kStringType)
            fDiagnostics.report(Message::NoSuchVariable, constant.range, {typeName(constant.type)});
        else if (!convert(constant.initializer, constant.type))
            reportMismatch(constant.initializer, constant.type);
        else if (constant.initializer->type.isKnown())
        {
            constant.value = fFolder.evaluate(constant.initializer, constant.type);
            if (!constant.value)
                fDiagnostics.report(Message::NotConstant, constant.initializer->range());
        }
        if (!constant.value)
            constant.type = kNoType;
    }
}

void Checker::declareFunctions()
{
    for (Function* function : fTree.functions)
        declareFunction(*function);
}

void Checker::checkMetadata()
{
    fInConstant = true;
    for (std::vector<Metadata>& items : fTree.metadata)
        for (Metadata& metadata : items)
        {
            Symbol& item = *metadata.item;
            metadata.value.type = item.type;
            Expr* value = item.initializer;
            if (item.type == kStringType)
            {
                const std::string_view text = fSources.text(value->range());
                if (value->kind == ExprKind::Text && text.size() > 1)
                    metadata.value.text = text.substr(1, text.size() - 2);
                else
                    fDiagnostics.report(Message::NotText, value->range());
                continue;
            }
            checkExpr(value);
            if (!convert(value, item.type))
                reportMismatch(value, item.type);
            else if (const ConstantValue* worked = fFolder.evaluate(value, item.type))
                metadata.value = *worked;
            else if (value->type.isKnown())
                fDiagnostics.report(Message::NotConstant, value->range());
        }
    fInConstant = false;
}

void Checker::checkHeader(Function& function)
{
    if (function.kind != FunctionKind::Regular)
    {
        checkShaderHeader(function);
        return;
    }
    if (function.isOperator && function.body)
        fDiagnostics.report(Message::OperatorBody, function.range);
    if (function.result.isSampler() || function.result == kStringType)
        fDiagnostics.report(Message::BadResult, function.range, {typeName(function.result)});
    bool hasOutput = function.result != kVoidType;
    for (Symbol* argument = function.arguments; argument; argument = argument->next)
    {
        hasOutput |= argument->kind != SymbolKind::Input;
        checkArgumentType(*argument);
        if (argument->initializer)
            fDiagnostics.report(Message::DefaultNotHere, argument->range);
    }
    if (!hasOutput)
        fDiagnostics.report(Message::NoOutput, function.range, {fStore.names.text(function.name)});
}

void Checker::checkArgumentType(const Symbol& argument)
{
    const bool isBoolVector = argument.type.isVector() && argument.type.base == BaseType::Bool;
    if (argument.type == kVoidType || argument.type == kStringType || isBoolVector ||
        (argument.type.isSampler() && argument.kind != SymbolKind::Input))
        fDiagnostics.report(Message::BadArgumentType, argument.range, {typeName(argument.type)});
}

void Checker::checkShaderHeader(Function& function)
{
    for (Symbol* argument = function.arguments; argument; argument = argument->next)
    {
        checkArgumentType(*argument);
        if (argument->kind == SymbolKind::Inout)
            fDiagnostics.report(Message::InoutNotHere, argument->range, {kindText(function.kind)});
        else if (argument->kind == SymbolKind::Output)
            checkOutput(function, *argument);
        else
            checkInput(function, *argument);
        checkDefault(*argument);
    }
    if (function.kind == FunctionKind::Light && function.body)
        checkLightOutputs(function);
    if (function.kind == FunctionKind::Material)
    {
        const Symbol* output = function.arguments;
        while (output && output->kind != SymbolKind::Output)
            output = output->next;
        if (!output)
            fDiagnostics.report(Message::NoColor, function.range);
    }
}

void Checker::checkLightOutputs(const Function& light)
{
    std::string missing;
    for (const std::string_view name : kLightOutputs)
    {
        const Symbol* output = light.arguments;
        while (output && fStore.names.text(output->name) != name)
            output = output->next;
        if (!output)
            missing.append(missing.empty() ? "" : "', '").append(name);
    }
    if (!missing.empty())
        fDiagnostics.report(Message::OutputNotSet, light.range, {missing});
}

void Checker::checkOutput(const Function& function, const Symbol& argument)
{
    const std::string_view name = fStore.names.text(argument.name);
    const bool isMaterial = function.kind == FunctionKind::Material;
    const Type wanted = isMaterial ? kFloat4Type : kFloat3Type;
    const bool isKnown = isMaterial
                             ? name == kMaterialOutput
                             : std::find(kLightOutputs.begin(), kLightOutputs.end(), name) != kLightOutputs.end();
    if (function.kind == FunctionKind::Displacement)
        return;
    if (!isKnown)
        fDiagnostics.report(isMaterial ? Message::MaterialOutput : Message::LightOutput, argument.range, {name});
    else if (argument.type != wanted)
        fDiagnostics.report(Message::OutputType, argument.range, {name, typeName(wanted)});
}

void Checker::checkInput(const Function& function, Symbol& argument)
{
    const std::string_view name = fStore.names.text(argument.name);
    const bool isUniform = argument.frequencies == krShadingDag::kUniformRange;
    const bool isVertex = argument.frequencies == krShadingDag::kVertexRange;
    if (const Symbol* provided = fProvidedByName[argument.name])
    {
        if (argument.type != provided->type)
            fDiagnostics.report(Message::ProvidedType, argument.range, {name, typeName(provided->type)});
        return;
    }
    if (!isUniform && !isVertex)
    {
        fDiagnostics.report(Message::InputFrequency, argument.range, {name})
            .fix({argument.typeBegin, argument.typeBegin}, "uniform ");
        return;
    }
    if (isVertex && function.kind == FunctionKind::Light)
        fDiagnostics.report(Message::VertexInLight, argument.range, {name});
    else if (isVertex && !isCarried(argument.type))
        fDiagnostics.report(Message::VertexType, argument.range, {typeName(argument.type)});
}

void Checker::checkDefault(Symbol& argument)
{
    if (!argument.initializer)
        return;
    fInConstant = true;
    checkExpr(argument.initializer);
    fInConstant = false;
    if (argument.kind != SymbolKind::Input || argument.frequencies != krShadingDag::kUniformRange ||
        argument.type.isSampler())
        fDiagnostics.report(Message::DefaultNotHere, argument.range);
    else if (!convert(argument.initializer, argument.type))
        reportMismatch(argument.initializer, argument.type);
    else if (argument.initializer->type.isKnown())
    {
        argument.value = fFolder.evaluate(argument.initializer, argument.type);
        if (!argument.value)
            fDiagnostics.report(Message::NotConstant, argument.initializer->range());
    }
}

void Checker::checkCalls()
{
    // Depth first, with the way kept in a list: who calls stands in front of whom it calls.
    struct Visit
    {
        Function* function;
        std::size_t next;
    };
    constexpr std::uint8_t kOnTheWay = 1;
    constexpr std::uint8_t kDone = 2;
    unsigned order = 0;
    std::vector<Visit> way;
    for (Function* root : fTree.functions)
    {
        if (root->visit == 0)
        {
            root->visit = kOnTheWay;
            way.push_back({root, 0});
        }
        while (!way.empty())
        {
            Function& function = *way.back().function;
            if (way.back().next == function.calls.size())
            {
                for (const Function* called : function.calls)
                {
                    function.provided |= called->provided;
                    function.discards |= called->discards;
                }
                function.visit = kDone;
                function.order = order++;
                way.pop_back();
                continue;
            }
            Function* called = function.calls[way.back().next++];
            if (called->visit == kOnTheWay)
            {
                std::vector<const Function*> circle;
                for (std::size_t i = way.size(); i-- > 0;)
                {
                    circle.push_back(way[i].function);
                    if (way[i].function == called)
                        break;
                }
                reportCircle(circle);
            }
            else if (called->visit == 0)
            {
                called->visit = kOnTheWay;
                way.push_back({called, 0});
            }
        }
    }
}

void Checker::reportCircle(const std::vector<const Function*>& circle)
{
    constexpr std::size_t kShown = 8;
    const Function& called = *circle.back();
    auto entry = fDiagnostics.report(Message::Recursion, called.range, {fStore.names.text(called.name)});
    for (std::size_t i = circle.size() - 1; i-- > 0 && circle.size() - i < kShown;)
        entry.note(circle[i]->range, "it calls " + nameText(circle[i]->name));
    if (circle.size() > 1)
        entry.note(called.range, "which calls " + nameText(called.name) + " again");
}

void Checker::reportUnused()
{
    bool hasShader = false;
    for (const Function* function : fTree.functions)
        hasShader |= function->kind != FunctionKind::Regular && function->range.begin < fMainEnd;
    for (const Function* function : fTree.functions)
    {
        if (!function->body || function->range.begin >= fMainEnd)
            continue;
        if (function->kind == FunctionKind::Regular)
        {
            if (hasShader && !function->isCalled)
                fDiagnostics.report(Message::UnusedFunction, function->range, {fStore.names.text(function->name)});
            continue;
        }
        for (const Symbol* input = function->arguments; input; input = input->next)
            if (input->kind == SymbolKind::Input && !input->isRead && !fProvidedByName[input->name])
                fDiagnostics.report(Message::UnusedInput, input->range, {fStore.names.text(input->name)});
    }
}

} // namespace krFrontend
