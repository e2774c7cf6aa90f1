#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/Checker.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/ConstantFolder.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"
#include <krender/frontend/NearNames.h>

#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

/// The operator that a compound assignment does before it stores.
constexpr TokenKind operatorOf(TokenKind assignment) noexcept
{
    constexpr int kDistance = static_cast<int>(TokenKind::Plus) - static_cast<int>(TokenKind::PlusAssign);
    return static_cast<TokenKind>(static_cast<int>(assignment) + kDistance);
}
static_assert(operatorOf(TokenKind::PercentAssign) == TokenKind::Percent);

std::string_view operatorText(TokenKind op) noexcept
{
    constexpr std::array<std::string_view, 20> kTexts{"=", "+=", "-=", "*=", "/=", "%=", "+",  "-",  "*",  "/",
                                                      "%", "++", "--", "!",  "&&", "||", "^^", "==", "!=", "<"};
    constexpr std::array<std::string_view, 3> kMore{">", "<=", ">="};
    const unsigned i = static_cast<unsigned>(op) - static_cast<unsigned>(TokenKind::Assign);
    return i < kTexts.size() ? kTexts[i] : kMore[std::min<std::size_t>(i - kTexts.size(), kMore.size() - 1)];
}

/// The int division whose result was meant to be a fraction, or null.
const Expr* findIntDivision(const Expr* expr)
{
    while (expr->kind == ExprKind::Binary && expr->op != TokenKind::Slash)
    {
        if (const Expr* right = findIntDivision(expr->first->next))
            return right;
        expr = expr->first;
    }
    return expr->kind == ExprKind::Binary ? expr : nullptr;
}

} // namespace

void Checker::checkExpr(Expr* expr)
{
    fUnsetReads.clear();
    fWalk(
        expr, [this](Expr* e) { return enterExpr(e); }, [this](Expr* e) { leaveExpr(e); });
    for (const Expr* read : fUnsetReads)
    {
        if (read->symbol->isWarned)
            continue;
        read->symbol->isWarned = true;
        fDiagnostics.report(Message::ReadBeforeSet, read->range(), {fStore.names.text(read->name)});
    }
}

bool Checker::enterExpr(Expr* expr)
{
    if (expr->kind != ExprKind::Assign || expr->op != TokenKind::Assign)
        return true;
    Expr* root = expr->first;
    while (root->kind == ExprKind::Index || root->kind == ExprKind::Swizzle)
        root = root->first;
    root->isTarget = root->kind == ExprKind::Variable;
    return true;
}

void Checker::leaveExpr(Expr* expr)
{
    switch (expr->kind)
    {
    case ExprKind::Bad:
        break;
    case ExprKind::Number:
        expr->type = expr->op == TokenKind::IntNumber ? kIntType : kFloatType;
        break;
    case ExprKind::Bool:
        expr->type = kBoolType;
        break;
    case ExprKind::Text:
        fDiagnostics.report(Message::TextNotHere, expr->range());
        break;
    case ExprKind::Variable:
        checkName(expr);
        break;
    case ExprKind::Unary:
    case ExprKind::Postfix:
        checkUnary(expr);
        break;
    case ExprKind::Binary:
        checkBinary(expr);
        break;
    case ExprKind::Assign:
        checkAssign(expr);
        break;
    case ExprKind::Conditional:
        checkConditional(expr);
        break;
    case ExprKind::Call:
        checkCall(expr);
        break;
    case ExprKind::Construct:
        checkConstruct(expr);
        break;
    case ExprKind::Index:
        checkIndex(expr);
        break;
    case ExprKind::Swizzle:
        checkSwizzle(expr);
        break;
    }
    for (const Expr* operand = expr->first; operand; operand = operand->next)
        expr->hasEffect |= operand->hasEffect;
}

Symbol* Checker::findVariable(Name name)
{
    if (!fInConstant && fVisible[name])
        return fVisible[name];
    if (fConstants[name])
        return fConstants[name];
    Symbol* provided = fProvidedByName[name];
    if (!provided || fInConstant || !fFunction)
        return nullptr;
    return !kProvidedValues[provided->provided].inIlluminance || fInIlluminance ? provided : nullptr;
}

void Checker::checkName(Expr* expr)
{
    Symbol* symbol = findVariable(expr->name);
    if (!symbol && fStore.names.text(expr->name) == "output" && fFunction && fFunction->output)
        symbol = fFunction->output;
    expr->symbol = symbol;
    if (!symbol)
    {
        reportUnknown(expr);
        return;
    }
    expr->type = symbol->type;
    if (symbol->kind == SymbolKind::Provided && symbol->provided < kPassedValues)
        fFunction->provided |= static_cast<std::uint8_t>(1u << symbol->provided);
    if (expr->isTarget)
        return;
    symbol->isRead = true;
    if (!symbol->isSet &&
        (symbol->kind == SymbolKind::Local || symbol->kind == SymbolKind::Output ||
         symbol->kind == SymbolKind::Result) &&
        fReachable)
        fUnsetReads.push_back(expr);
}

void Checker::reportUnknown(Expr* expr)
{
    expr->kind = ExprKind::Bad;
    const std::string_view name = fStore.names.text(expr->name);
    const bool isNamed = fFunctions[expr->name] || fProvidedByName[expr->name] || !findBuiltins(name).empty();
    if (!fTree.isComplete && !isNamed && name != "output")
        return; // the file that could not be read may have it
    if (fInConstant)
    {
        fDiagnostics.report(Message::NotConstantName, expr->range(), {name});
        return;
    }
    if (name == "output")
    {
        fDiagnostics.report(Message::NoOutputHere, expr->range());
        return;
    }
    if (fFunctions[expr->name] || !findBuiltins(name).empty())
    {
        fDiagnostics.report(Message::FunctionAsValue, expr->range(), {name});
        return;
    }
    if (fProvidedByName[expr->name])
    {
        fDiagnostics.report(Message::LightValueOutside, expr->range(), {name});
        return;
    }
    auto entry = fDiagnostics.report(Message::UnknownName, expr->range(), {name});
    if (fDiagnostics.errorCount() > kMostDiagnostics)
        return;
    if (const Function* user = fFunction; user && user->kind == FunctionKind::Regular)
        for (const Function* other : fTree.functions)
            for (const Symbol* input = other->kind == FunctionKind::Material ? other->arguments : nullptr; input;
                 input = input->next)
                if (input->name == expr->name)
                {
                    entry.note(input->range, "this input is known in its material alone: give it to the function as an "
                                             "argument");
                    return;
                }
    NearNames near(name);
    for (const Symbol* symbol : fDeclared)
        near.consider(fStore.names.text(symbol->name));
    for (const Symbol* constant : fTree.constants)
        near.consider(fStore.names.text(constant->name));
    for (const ProvidedValue& value : kProvidedValues)
        if (!value.inIlluminance || fInIlluminance)
            near.consider(value.name);
    if (!near.best().empty())
        entry.fix({expr->word, expr->word + static_cast<Offset>(name.size())}, near.best());
}

void Checker::makeFloat(Expr* value)
{
    // "-1" becomes "-1.0": the number itself is what changes.
    Expr* number = value;
    while (number->kind == ExprKind::Unary)
    {
        number->type = kFloatType;
        number = number->first;
    }
    if (number->kind != ExprKind::Number)
    {
        for (Expr* e = value; e != number; e = e->first)
            e->type = kIntType;
        number = value;
        if (const Expr* division = value->kind == ExprKind::Binary ? findIntDivision(value) : nullptr)
            fDiagnostics.report(Message::IntegerDivision, division->range());
    }
    number->toFloat = true;
    number->type = kFloatType;
    value->type = kFloatType;
}

bool Checker::convert(Expr* value, const Type& type)
{
    if (value->type == type || !value->type.isKnown() || !type.isKnown())
        return true;
    if (value->type != kIntType || type != kFloatType)
        return false;
    makeFloat(value);
    return true;
}

void Checker::reportMismatch(Expr* value, const Type& wanted)
{
    auto entry = fDiagnostics.report(Message::TypeMismatch, value->range(), {typeName(wanted), typeName(value->type)});
    if (value->type == kFloatType && wanted.isVector() && wanted.base == BaseType::Float)
        entry.fix({value->begin, value->begin}, typeName(wanted) + "(").fix({value->end, value->end}, ")");
    else if (value->type == kFloatType && wanted == kIntType)
        entry.fix({value->begin, value->begin}, "int(").fix({value->end, value->end}, ")");
}

void Checker::checkUnary(Expr* expr)
{
    Expr* operand = expr->first;
    const Type type = operand->type;
    if (!type.isKnown())
        return;
    const bool steps = expr->op == TokenKind::PlusPlus || expr->op == TokenKind::MinusMinus;
    const bool fits = expr->op == TokenKind::Not ? type == kBoolType : type.isNumeric() || (type.isMatrix() && !steps);
    if (!fits)
    {
        fDiagnostics.report(Message::BadOperand, expr->range(), {operatorText(expr->op), typeName(type)});
        return;
    }
    expr->type = type;
    if (!steps)
        return;
    expr->hasEffect = true;
    if (checkStorable(operand))
        noteStored(operand, true);
    else
        expr->type = kNoType;
}

Type Checker::arithmeticType(TokenKind op, Expr* left, Expr* right)
{
    const auto isFloats = [](const Type& t) { return t.isMatrix() || (t.isNumeric() && t.base == BaseType::Float); };
    if (left->type == kIntType && isFloats(right->type))
        makeFloat(left);
    else if (right->type == kIntType && isFloats(left->type))
        makeFloat(right);
    const Type a = left->type;
    const Type b = right->type;
    if (op == TokenKind::Percent)
        return a == kIntType && b == kIntType ? kIntType : kNoType;
    if (!(a.isNumeric() || a.isMatrix()) || !(b.isNumeric() || b.isMatrix()))
        return kNoType;
    const bool multiplies = op == TokenKind::Star;
    if (a == b)
        return a.isMatrix() && op == TokenKind::Slash ? kNoType : a;
    if (a.isMatrix() && b == kFloatType)
        return multiplies || op == TokenKind::Slash ? a : kNoType;
    if (b.isMatrix() && a == kFloatType)
        return multiplies ? b : kNoType;
    if (multiplies && a.isMatrix() && b.isVector() && b.base == BaseType::Float && a.size == b.size)
        return b;
    if (multiplies && b.isMatrix() && a.isVector() && a.base == BaseType::Float && a.size == b.size)
        return a;
    if (a.base == b.base && a.isNumeric() && b.isNumeric() && (a.size == 1 || b.size == 1))
        return a.size == 1 ? b : a;
    return kNoType;
}

Type Checker::comparisonType(TokenKind op, Expr* left, Expr* right)
{
    if (left->type != right->type && !convert(left, right->type))
        convert(right, left->type);
    const Type type = left->type;
    if (type != right->type)
        return kNoType;
    if (op == TokenKind::Equal || op == TokenKind::NotEqual)
        return type.isScalar() || type.isVector() || type.isMatrix() ? kBoolType : kNoType;
    return type == kIntType || type == kFloatType ? kBoolType : kNoType;
}

void Checker::checkBinary(Expr* expr)
{
    Expr* left = expr->first;
    Expr* right = expr->second();
    if (!left->type.isKnown() || !right->type.isKnown())
        return;
    switch (expr->op) // NOLINT(clang-diagnostic-switch-enum): no other operator is binary
    {
    case TokenKind::And:
    case TokenKind::Or:
    case TokenKind::Xor:
        expr->type = left->type == kBoolType && right->type == kBoolType ? kBoolType : kNoType;
        break;
    case TokenKind::Equal:
    case TokenKind::NotEqual:
    case TokenKind::Less:
    case TokenKind::Greater:
    case TokenKind::LessEqual:
    case TokenKind::GreaterEqual:
        expr->type = comparisonType(expr->op, left, right);
        break;
    default:
        expr->type = arithmeticType(expr->op, left, right);
        break;
    }
    if (!expr->type.isKnown())
        fDiagnostics.report(Message::BadOperands, expr->range(),
                            {operatorText(expr->op), typeName(left->type), typeName(right->type)});
}

bool Checker::checkStorable(Expr* target)
{
    Expr* part = target;
    for (; part->kind == ExprKind::Index || part->kind == ExprKind::Swizzle; part = part->first)
    {
        for (unsigned i = 1; part->kind == ExprKind::Swizzle && i < 4 && part->swizzle[i] < 4; ++i)
            if (std::find(part->swizzle, part->swizzle + i, part->swizzle[i]) != part->swizzle + i)
            {
                fDiagnostics.report(Message::RepeatedComponent, part->range());
                return false;
            }
    }
    if (part->kind == ExprKind::Bad || (part->kind == ExprKind::Variable && !part->symbol))
        return false;
    if (part->kind != ExprKind::Variable)
    {
        fDiagnostics.report(Message::NotStorable, target->range());
        return false;
    }
    const Symbol& symbol = *part->symbol;
    const bool isShaderInput = symbol.kind == SymbolKind::Input && symbol.function->kind != FunctionKind::Regular;
    const bool readOnly = symbol.isConst || symbol.kind == SymbolKind::Provided || isShaderInput ||
                          symbol.type.isSampler() || symbol.kind == SymbolKind::Constant;
    if (!readOnly)
        return true;
    const std::string_view what = symbol.kind == SymbolKind::Provided ? "is given by the program"
                                  : isShaderInput                     ? "is an input"
                                  : symbol.type.isSampler()           ? "is a sampler"
                                                                      : "is a constant";
    auto entry = fDiagnostics.report(Message::ReadOnly, target->range(), {fStore.names.text(part->name), what});
    if (symbol.range.end != 0)
        entry.note(symbol.range, "it is declared here");
    return false;
}

void Checker::noteStored(Expr* target, bool reads)
{
    while (target->kind == ExprKind::Index || target->kind == ExprKind::Swizzle)
        target = target->first;
    Symbol& symbol = *target->symbol;
    symbol.isWritten = true;
    if (!reads) // it was met as an operand, but what is there is not looked at
        std::erase(fUnsetReads, target);
    markSet(symbol);
}

void Checker::checkAssign(Expr* expr)
{
    Expr* target = expr->first;
    Expr* value = expr->second();
    expr->hasEffect = true;
    const bool isPlain = expr->op == TokenKind::Assign;
    if (target->kind == ExprKind::Bad || !checkStorable(target))
        return;
    noteStored(target, !isPlain);
    const Type type = target->type;
    if (!type.isKnown() || !value->type.isKnown())
        return;
    if (type.isArray())
    {
        fDiagnostics.report(Message::WholeArray, target->range(), {"assigned"});
        return;
    }
    if (isPlain ? !convert(value, type) : arithmeticType(operatorOf(expr->op), target, value) != type)
    {
        if (isPlain)
            reportMismatch(value, type);
        else
            fDiagnostics.report(Message::BadOperands, expr->range(),
                                {operatorText(expr->op), typeName(type), typeName(value->type)});
        return;
    }
    expr->type = type;
}

void Checker::checkConditional(Expr* expr)
{
    Expr* condition = expr->first;
    Expr* left = expr->second();
    Expr* right = expr->third();
    if (condition->type.isKnown() && condition->type != kBoolType)
        fDiagnostics.report(Message::ConditionType, condition->range(), {typeName(condition->type)});
    if (!left->type.isKnown() || !right->type.isKnown())
        return;
    if (!convert(left, right->type) && !convert(right, left->type))
    {
        fDiagnostics.report(Message::BranchTypes, expr->range(), {typeName(left->type), typeName(right->type)});
        return;
    }
    if (left->type.isArray() || left->type.isSampler() || left->type == kVoidType)
    {
        fDiagnostics.report(Message::BranchTypes, expr->range(), {typeName(left->type), typeName(right->type)});
        return;
    }
    expr->type = left->type;
}

void Checker::checkConstruct(Expr* expr)
{
    const Type type = std::exchange(expr->type, kNoType);
    const auto refuse = [&](Message message, std::string_view more) {
        fDiagnostics.report(message, expr->range(), {typeName(type), more});
    };
    if (!type.isScalar() && !type.isVector() && !type.isMatrix())
    {
        refuse(Message::NoConstructor, "");
        return;
    }
    unsigned components = 0;
    const unsigned needed = type.isMatrix() ? unsigned{type.size} * type.size : type.size;
    for (const Expr* value = expr->first; value; value = value->next)
    {
        if (!value->type.isKnown())
            return;
        const bool matrixFits = value->type.isMatrix() && !value->next && components == 0 && type.isMatrix() &&
                                value->type.size >= type.size;
        if (!value->type.isScalar() && !value->type.isVector() && !matrixFits)
        {
            fDiagnostics.report(Message::BadConstructorValue, value->range(), {typeName(type), typeName(value->type)});
            return;
        }
        if (components >= needed)
        {
            refuse(Message::TooManyComponents, std::to_string(needed));
            return;
        }
        components += matrixFits ? needed : value->type.size;
    }
    const bool isSingleScalar = expr->first && !expr->first->next && expr->first->type.isScalar();
    if (components < needed && !isSingleScalar)
    {
        refuse(Message::TooFewComponents, std::to_string(needed));
        return;
    }
    if (type.isMatrix() && components > needed)
    {
        refuse(Message::TooManyComponents, std::to_string(needed));
        return;
    }
    expr->type = type;
}

void Checker::checkIndex(Expr* expr)
{
    const Type type = expr->first->type;
    Expr* index = expr->second();
    if (!type.isKnown() || !index->type.isKnown())
        return;
    if (!type.element().isKnown())
    {
        fDiagnostics.report(Message::NotIndexable, expr->first->range(), {typeName(type)});
        return;
    }
    if (index->type != kIntType)
    {
        reportMismatch(index, kIntType);
        return;
    }
    expr->type = type.element();
    const unsigned count = type.isArray() ? type.arrayLength : type.size;
    const ConstantValue* value = fFolder.evaluate(index);
    if (value && (value->ints[0] < 0 || static_cast<unsigned>(value->ints[0]) >= count))
        fDiagnostics.report(Message::IndexOutside, index->range(),
                            {std::to_string(value->ints[0]), typeName(type), std::to_string(count - 1)});
}

void Checker::checkSwizzle(Expr* expr)
{
    const Type type = expr->first->type;
    if (!type.isKnown())
        return;
    if (!type.isVector())
    {
        fDiagnostics.report(Message::NoComponents, expr->range(), {typeName(type)});
        return;
    }
    std::uint8_t count = 0;
    for (; count < 4 && expr->swizzle[count] < 4; ++count)
        if (expr->swizzle[count] >= type.size)
        {
            fDiagnostics.report(Message::MissingComponent, expr->range(),
                                {typeName(type), std::string_view("xyzw").substr(expr->swizzle[count], 1)});
            return;
        }
    expr->type = {type.base, count, 0};
}

} // namespace krFrontend
