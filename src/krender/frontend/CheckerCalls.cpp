#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/Checker.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"
#include <krender/frontend/NearNames.h>

#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

namespace krFrontend
{
namespace
{

/// The candidates that a message names.
constexpr std::size_t kShownCandidates = 4;
/// The overloads of one name that are tried with conversions; past them a call has to fit exactly.
constexpr unsigned kMostTried = 1024;

void appendType(std::string& key, const Type& type)
{
    key += static_cast<char>('A' + static_cast<int>(type.base));
    key += static_cast<char>('0' + type.size);
}

/// Whether it is a column of a matrix, or some of its components; one that is indexed is no problem.
bool isPartOfColumn(const Expr* value) noexcept
{
    while (value->kind == ExprKind::Swizzle)
        value = value->first;
    return value->kind == ExprKind::Index && value->first->type.isMatrix();
}

std::string list(const Expr* call)
{
    std::string text;
    for (const Expr* argument = call->first; argument; argument = argument->next)
        text += (text.empty() ? "" : ", ") + typeName(argument->type);
    return text;
}

} // namespace

Function* Checker::findExact(Name name, const Expr* call) const
{
    std::string key = std::to_string(name) + ':';
    for (const Expr* argument = call->first; argument; argument = argument->next)
        appendType(key, argument->type);
    const auto found = fSignatures.find(key);
    return found == fSignatures.end() ? nullptr : found->second;
}

void Checker::declareFunction(Function& function)
{
    std::string key = std::to_string(function.name) + ':';
    for (const Symbol* argument = function.arguments; argument; argument = argument->next)
        appendType(key, argument->type);
    const auto [place, isNew] = fSignatures.try_emplace(std::move(key), &function);
    if (isNew)
    {
        function.nextOverload = fFunctions[function.name];
        fFunctions[function.name] = &function;
        return;
    }
    Function& first = *place->second;
    const bool isShader = first.kind != FunctionKind::Regular || function.kind != FunctionKind::Regular;
    if (first.result != function.result || first.kind != function.kind)
        fDiagnostics.report(Message::DifferentResult, function.range, {fStore.names.text(function.name)})
            .note(first.range, "it is declared here");
    else if ((first.body || first.definition) && function.body)
        fDiagnostics
            .report(isShader ? Message::ShaderTwice : Message::FunctionTwice, function.range,
                    {fStore.names.text(function.name)})
            .note((first.definition ? first.definition : &first)->range, "it is defined here");
    else if (function.body)
        first.definition = &function;
}

void Checker::considerFunctions(Expr* call, std::vector<Candidate>& best)
{
    unsigned count = 0;
    for (const Expr* argument = call->first; argument; argument = argument->next)
        ++count;
    unsigned tried = 0;
    for (Function* function = fFunctions[call->name]; function && tried < kMostTried; function = function->nextOverload)
    {
        ++tried;
        if (function->kind != FunctionKind::Regular || function->argumentCount != count)
            continue;
        Candidate candidate{function};
        const Expr* value = call->first;
        const Symbol* argument = function->arguments;
        bool fits = true;
        for (; value && fits; value = value->next, argument = argument->next)
        {
            if (value->type == argument->type)
                continue;
            const bool converts =
                argument->kind == SymbolKind::Input && value->type == kIntType && argument->type == kFloatType;
            fits = converts;
            ++candidate.conversions;
        }
        if (fits)
            best.push_back(candidate);
    }
}

bool Checker::matchBuiltin(const Builtin& builtin, const Expr* call, Candidate& candidate) const
{
    // The largest argument says of which size the call is.
    unsigned size = 1;
    unsigned position = 2;
    for (const Expr* value = call->first; value; value = value->next, ++position)
    {
        if (position == builtin.signature.size())
            return false;
        if (isGenericLetter(builtin.signature[position]))
            size = std::max<unsigned>(size, value->type.size);
    }
    if (position != builtin.signature.size())
        return false;
    const bool wantsVector = builtin.signature.find_first_of("VJBM", 2) != std::string_view::npos;
    if (wantsVector && size < 2)
        return false;
    candidate = {nullptr, &builtin, size, 0};
    position = 2;
    for (const Expr* value = call->first; value; value = value->next, ++position)
    {
        const Type wanted = signatureType(builtin.signature[position], size);
        if (value->type == wanted)
            continue;
        const bool isScalar = value->type == kIntType || value->type == kFloatType;
        const bool spreads = builtin.spreads && wanted.isVector() && isScalar;
        if (!spreads && !(wanted == kFloatType && value->type == kIntType))
            return false;
        candidate.conversions += (value->type == kIntType) + (spreads ? 1 : 0);
    }
    return true;
}

void Checker::considerBuiltins(Expr* call, std::vector<Candidate>& best)
{
    for (const Builtin& builtin : findBuiltins(fStore.names.text(call->name)))
    {
        Candidate candidate;
        if (matchBuiltin(builtin, call, candidate))
            best.push_back(candidate);
    }
}

void Checker::checkCall(Expr* expr)
{
    const SourceRange name{expr->word, expr->word + static_cast<Offset>(fStore.names.text(expr->name).size())};
    for (const Expr* argument = expr->first; argument; argument = argument->next)
        if (!argument->type.isKnown())
            return;
    if (fInConstant)
    {
        fDiagnostics.report(Message::CallInConstant, expr->range());
        return;
    }
    if (const Symbol* variable = fVisible[expr->name])
    {
        fDiagnostics.report(Message::CallOfVariable, name, {fStore.names.text(expr->name)})
            .note(variable->range, "it is declared here");
        return;
    }
    if (Function* exact = findExact(expr->name, expr); exact && exact->kind == FunctionKind::Regular)
    {
        applyFunction(expr, *exact);
        return;
    }
    std::vector<Candidate> found;
    considerFunctions(expr, found);
    considerBuiltins(expr, found);
    if (found.empty())
    {
        reportNoMatch(expr);
        return;
    }
    std::stable_sort(found.begin(), found.end(),
                     [](const Candidate& a, const Candidate& b) { return a.conversions < b.conversions; });
    if (found.size() > 1 && found[0].function && found[1].function && found[0].conversions == found[1].conversions)
    {
        fDiagnostics.report(Message::AmbiguousCall, expr->range(), {fStore.names.text(expr->name), list(expr)})
            .note(found[0].function->range, "this one fits")
            .note(found[1].function->range, "and so does this one");
        return;
    }
    if (found[0].function)
        applyFunction(expr, *found[0].function);
    else
        applyBuiltin(expr, found[0]);
}

void Checker::applyFunction(Expr* call, Function& declared)
{
    Function& function = declared.definition ? *declared.definition : declared;
    if (!function.body)
    {
        // The declaration of a built-in says nothing new.
        Candidate candidate;
        for (const Builtin& builtin : findBuiltins(fStore.names.text(call->name)))
            if (matchBuiltin(builtin, call, candidate))
            {
                applyBuiltin(call, candidate);
                return;
            }
        if (fTree.isComplete)
            fDiagnostics.report(Message::OnlyDeclared, call->range(), {fStore.names.text(call->name)})
                .note(function.range, "it is declared here");
        return;
    }
    call->function = &function;
    call->type = function.result;
    function.isCalled = true;
    call->hasEffect |= function.discards;
    if (fFunction && std::exchange(function.lastCaller, fFunction) != fFunction)
        fFunction->calls.push_back(&function);
    Expr* value = call->first;
    for (const Symbol* argument = function.arguments; argument && value; argument = argument->next, value = value->next)
    {
        if (argument->kind == SymbolKind::Input)
        {
            convert(value, argument->type);
            continue;
        }
        call->hasEffect = true;
        if (!checkStorable(value))
            call->type = kNoType;
        else if (isPartOfColumn(value))
            fDiagnostics.report(Message::ColumnAsOutput, value->range());
        else
            noteStored(value, argument->kind == SymbolKind::Inout);
    }
}

void Checker::applyBuiltin(Expr* call, const Candidate& candidate)
{
    const Builtin& builtin = *candidate.builtin;
    call->builtin = &builtin;
    call->isBuiltin = true;
    call->type = signatureType(builtin.signature[0], candidate.size);
    unsigned position = 2;
    for (Expr* value = call->first; value; value = value->next, ++position)
    {
        const Type wanted = signatureType(builtin.signature[position], candidate.size);
        if (wanted.isNumeric() && wanted.base == BaseType::Float && value->type == kIntType)
            makeFloat(value);
        if (value->type != wanted && wanted.isVector())
            value->spread = wanted.size;
    }
}

void Checker::reportNoMatch(Expr* call)
{
    const std::string_view name = fStore.names.text(call->name);
    const SourceRange range{call->word, call->word + static_cast<Offset>(name.size())};
    const auto rows = findBuiltins(name);
    if (fFunctions[call->name] && fFunctions[call->name]->kind != FunctionKind::Regular)
    {
        fDiagnostics.report(Message::CallOfShader, range, {name});
        return;
    }
    if (!fFunctions[call->name] && rows.empty())
    {
        if (!fTree.isComplete)
            return; // the file that could not be read may have it
        auto entry = fDiagnostics.report(Message::UnknownFunction, range, {name});
        if (fDiagnostics.errorCount() > kMostDiagnostics)
            return;
        NearNames near(name);
        for (const Function* function : fTree.functions)
            if (function->kind == FunctionKind::Regular && !function->isOperator)
                near.consider(fStore.names.text(function->name));
        for (const Builtin& builtin : builtins())
            near.consider(builtin.name);
        if (!near.best().empty())
            entry.fix(range, near.best());
        return;
    }
    auto entry = fDiagnostics.report(Message::NoOverload, call->range(), {name, list(call)});
    std::size_t shown = 0;
    for (const Function* function = fFunctions[call->name]; function && shown < kShownCandidates;
         function = function->nextOverload, ++shown)
        entry.note(function->range, "this one does not fit");
    if (!fFunctions[call->name])
        for (const Builtin& row : rows)
            if (shown++ < kShownCandidates)
                entry.note(call->range(), "there is " + signatureText(row, false));
}

} // namespace krFrontend
