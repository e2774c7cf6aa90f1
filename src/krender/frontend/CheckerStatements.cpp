#include "krender/frontend/private/Checker.h"

#include "krender/frontend/private/Arena.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/ConstantFolder.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr unsigned kLongestArray = 4096;

} // namespace

void Checker::declare(Symbol& symbol)
{
    Symbol* outer = fVisible[symbol.name];
    if (outer)
    {
        if (outer->scope == fScopeBegin)
            fDiagnostics.report(Message::Redeclared, symbol.range, {fStore.names.text(symbol.name)})
                .note(outer->range, "it is declared here");
        else if (symbol.kind == SymbolKind::Local)
            fDiagnostics.report(Message::HiddenName, symbol.range, {fStore.names.text(symbol.name)})
                .note(outer->range, "it is declared here");
        symbol.hidesHead = outer->isInHead && !symbol.isInHead && fDeclared[fScopeBegin - 1]->isInHead;
    }
    else if (const Symbol* constant = fConstants[symbol.name]; constant && symbol.kind == SymbolKind::Local)
        fDiagnostics.report(Message::HiddenName, symbol.range, {fStore.names.text(symbol.name)})
            .note(constant->range, "it is declared here");
    symbol.scope = fScopeBegin;
    symbol.hidden = outer;
    fVisible[symbol.name] = &symbol;
    fDeclared.push_back(&symbol);
}

void Checker::closeScope(std::size_t begin)
{
    for (; fDeclared.size() > begin; fDeclared.pop_back())
    {
        Symbol& symbol = *fDeclared.back();
        fVisible[symbol.name] = symbol.hidden;
        if (symbol.kind == SymbolKind::Local && !symbol.isRead)
            fDiagnostics.report(Message::UnusedVariable, symbol.range, {fStore.names.text(symbol.name)});
    }
}

void Checker::markSet(Symbol& symbol)
{
    if (symbol.isSet)
        return;
    symbol.isSet = true;
    fSet.push_back(&symbol);
}

std::vector<Symbol*> Checker::takeSetSince(std::size_t mark)
{
    std::vector<Symbol*> taken(fSet.begin() + static_cast<std::ptrdiff_t>(mark), fSet.end());
    for (Symbol* symbol : taken)
        symbol->isSet = false;
    fSet.resize(mark);
    return taken;
}

void Checker::keepCommon(std::vector<Symbol*>& common, const std::vector<Symbol*>& other)
{
    for (Symbol* symbol : other)
        symbol->isSet = true;
    std::erase_if(common, [](const Symbol* symbol) { return !symbol->isSet; });
    for (Symbol* symbol : other)
        symbol->isSet = false;
}

void Checker::checkBody(Function& function)
{
    fFunction = &function;
    fReachable = true;
    fInIlluminance = false;
    fLoops = 0;
    fSet.clear();
    const Scope scope(*this);
    std::array<const Symbol*, kProvidedValues.size()> listed{};
    for (Symbol* argument = function.arguments; argument; argument = argument->next)
    {
        argument->isSet = argument->kind != SymbolKind::Output;
        const Symbol* provided = fProvidedByName[argument->name];
        const bool isListed = provided && function.kind != FunctionKind::Regular && argument->kind == SymbolKind::Input;
        if (!isListed) // a value that programs provide, listed to say that it is used
        {
            declare(*argument);
            continue;
        }
        const Symbol*& first = listed[provided->provided];
        if (first)
            fDiagnostics.report(Message::Redeclared, argument->range, {fStore.names.text(argument->name)})
                .note(first->range, "it is declared here");
        first = argument;
    }
    if (function.kind == FunctionKind::Regular && function.result != kVoidType)
    {
        function.output = fStore.arena.make<Symbol>();
        function.output->kind = SymbolKind::Result;
        function.output->type = function.result;
        function.output->range = function.range;
        function.output->name = fStore.names.intern("output");
        function.output->function = &function;
    }
    checkStatements(function.body->body);
    function.endsBody = !fReachable;
    if (fReachable)
        checkOutputsSet({function.body->end - 1, function.body->end});
    fFunction = nullptr;
}

void Checker::checkOutputsSet(SourceRange range)
{
    const auto check = [&](Symbol& output)
    {
        if (output.isSet || output.isWarned)
            return;
        output.isWarned = true;
        fDiagnostics.report(Message::OutputNotSet, range, {fStore.names.text(output.name)})
            .note(output.range, "it is declared here");
    };
    for (Symbol* argument = fFunction->arguments; argument; argument = argument->next)
        if (argument->kind == SymbolKind::Output)
            check(*argument);
    if (fFunction->output)
        check(*fFunction->output);
}

void Checker::checkStatements(Stmt* first)
{
    for (Stmt* statement = first; statement; statement = statement->next)
        checkStatement(*statement);
}

void Checker::checkStatement(Stmt& statement)
{
    switch (statement.kind)
    {
    case StmtKind::Block:
        checkBlock(statement);
        break;
    case StmtKind::Expression:
        if (statement.expr)
            checkExpr(statement.expr);
        break;
    case StmtKind::Declaration:
        checkDeclaration(statement);
        break;
    case StmtKind::If:
        checkIf(statement);
        break;
    case StmtKind::For:
    case StmtKind::While:
    case StmtKind::DoWhile:
        checkLoop(statement);
        break;
    case StmtKind::Break:
    case StmtKind::Continue:
    case StmtKind::Discard:
        checkJump(statement);
        break;
    case StmtKind::Return:
        checkReturn(statement);
        break;
    case StmtKind::Illuminance:
        checkIlluminance(statement);
        break;
    case StmtKind::Empty:
        break;
    }
}

void Checker::checkBlock(Stmt& block)
{
    const Scope scope(*this);
    checkStatements(block.body);
}

void Checker::checkDeclaration(Stmt& statement)
{
    for (Symbol* variable = statement.variables; variable; variable = variable->next)
        checkVariable(*variable);
}

void Checker::checkVariable(Symbol& variable)
{
    variable.function = fFunction;
    if (variable.type.isSampler() || variable.type == kVoidType || variable.type == kStringType)
    {
        fDiagnostics.report(Message::NoSuchVariable, variable.range, {typeName(variable.type)});
        variable.type = kNoType;
    }
    if (variable.arraySize)
        checkArraySize(variable);
    if (variable.initializer)
    {
        checkExpr(variable.initializer); // before its name is known: its value may be of an outer variable of that name
        if (variable.arraySize)
            fDiagnostics.report(Message::WholeArray, variable.initializer->range(), {"initialised"});
        else if (!convert(variable.initializer, variable.type))
            reportMismatch(variable.initializer, variable.type);
        else if (variable.isConst)
            variable.value = fFolder.evaluate(variable.initializer, variable.type);
        markSet(variable);
    }
    else if (variable.isConst)
        fDiagnostics.report(Message::ConstWithoutValue, variable.range, {fStore.names.text(variable.name)});
    declare(variable);
}

void Checker::checkArraySize(Symbol& variable)
{
    checkExpr(variable.arraySize);
    if (!variable.arraySize->type.isKnown())
    {
        variable.type = kNoType;
        return;
    }
    const ConstantValue* size = fFolder.evaluate(variable.arraySize);
    if (!size || size->type != kIntType || size->ints[0] < 1 || size->ints[0] > static_cast<int>(kLongestArray))
    {
        fDiagnostics.report(Message::ArraySize, variable.arraySize->range(), {std::to_string(kLongestArray)});
        variable.type = kNoType;
        return;
    }
    variable.type.arrayLength = static_cast<std::uint32_t>(size->ints[0]);
}

void Checker::checkCondition(Expr* condition, bool isLoop)
{
    checkExpr(condition);
    if (!condition->type.isKnown())
        return;
    if (condition->type != kBoolType)
    {
        fDiagnostics.report(Message::ConditionType, condition->range(), {typeName(condition->type)});
        return;
    }
    const bool isForever = isLoop && condition->kind == ExprKind::Bool && condition->number != 0.0;
    if (!isForever && isLiteral(condition))
        if (const ConstantValue* value = fFolder.evaluate(condition))
            fDiagnostics.report(Message::ConstantCondition, condition->range(), {value->ints[0] ? "true" : "false"});
}

void Checker::checkIf(Stmt& first)
{
    // What every way sets is set behind the statement; a way that does not come out of it does not count.
    std::vector<Symbol*> common;
    bool isReached = false;
    const auto join = [&](std::size_t mark)
    {
        std::vector<Symbol*> set = takeSetSince(mark);
        if (!fReachable)
            return;
        if (isReached)
            keepCommon(common, set);
        else
            common = std::move(set);
        isReached = true;
    };
    const bool wasReachable = fReachable;
    std::size_t mark = 0;
    Stmt* part = &first;
    for (; part && part->kind == StmtKind::If && (part == &first || part->isChained); part = part->otherwise)
    {
        if (!part->expr)
            return; // its head could not be read
        fReachable = wasReachable;
        checkCondition(part->expr, false);
        mark = fSet.size();
        if (part->body)
        {
            const Scope scope(*this);
            checkStatement(*part->body);
        }
        join(mark);
    }
    fReachable = wasReachable;
    if (part)
    {
        const Scope scope(*this);
        checkStatement(*part);
    }
    join(mark);
    fReachable = isReached;
    for (Symbol* symbol : common)
        markSet(*symbol);
}

void Checker::checkLoop(Stmt& statement)
{
    const Scope scope(*this);
    const bool outerBreaks = std::exchange(fBreaks, false);
    const bool wasReachable = fReachable;
    if (statement.init)
    {
        for (Symbol* variable = statement.init->variables; variable; variable = variable->next)
            variable->isInHead = true;
        checkStatement(*statement.init);
    }
    if (statement.kind == StmtKind::DoWhile)
    {
        ++fLoops;
        if (statement.body)
            checkBody(*statement.body);
        --fLoops;
    }
    if (statement.expr)
        checkCondition(statement.expr, true);
    // A body that is run no time is the rare case: what it sets counts as set.
    if (statement.kind != StmtKind::DoWhile && statement.body)
    {
        ++fLoops;
        checkBody(*statement.body);
        --fLoops;
    }
    if (statement.step)
        checkExpr(statement.step);
    const bool isEndless = statement.expr ? statement.expr->kind == ExprKind::Bool && statement.expr->number != 0.0
                                          : statement.kind == StmtKind::For;
    fReachable = wasReachable && (!isEndless || fBreaks);
    fBreaks = outerBreaks;
}

void Checker::checkBody(Stmt& body)
{
    const Scope scope(*this);
    checkStatement(body);
}

void Checker::checkJump(Stmt& statement)
{
    const std::string_view word = statement.kind == StmtKind::Break      ? "break"
                                  : statement.kind == StmtKind::Continue ? "continue"
                                                                         : "discard";
    const SourceRange range{statement.begin, statement.begin + static_cast<Offset>(word.size())};
    if (statement.kind == StmtKind::Discard)
        fFunction->discards = true;
    else if (fLoops == 0)
        fDiagnostics.report(Message::JumpOutsideLoop, range, {word});
    fBreaks |= statement.kind == StmtKind::Break;
    fReachable = false;
}

void Checker::checkReturn(Stmt& statement)
{
    const SourceRange range{statement.begin, statement.begin + 6};
    fFunction->hasReturn = true;
    if (statement.expr)
    {
        checkExpr(statement.expr);
        if (fFunction->kind != FunctionKind::Regular || fFunction->result == kVoidType)
            fDiagnostics.report(Message::ReturnWithValue, statement.expr->range(),
                                {fStore.names.text(fFunction->name)});
        else if (!convert(statement.expr, fFunction->result))
            reportMismatch(statement.expr, fFunction->result);
        Symbol* output = std::exchange(fFunction->output, nullptr);
        if (fReachable)
            checkOutputsSet(range);
        fFunction->output = output;
    }
    else if (fReachable)
        checkOutputsSet(range);
    fReachable = false;
}

void Checker::checkIlluminance(Stmt& statement)
{
    const SourceRange range{statement.begin, statement.begin + 11};
    if (fFunction->kind != FunctionKind::Material)
        fDiagnostics.report(Message::IlluminanceNotHere, range);
    else if (fInIlluminance)
        fDiagnostics.report(Message::IlluminanceWithin, range);
    fFunction->hasIlluminance = true;
    if (!statement.body)
        return;
    const bool outer = std::exchange(fInIlluminance, true);
    const unsigned loops = std::exchange(fLoops, 0u);
    const bool wasReachable = fReachable;
    const std::size_t mark = fSet.size();
    checkBlock(*statement.body);
    (void)takeSetSince(mark); // without a light it is not run
    fReachable = wasReachable;
    fLoops = loops;
    fInIlluminance = outer;
}

} // namespace krFrontend
