#include "krender/frontend/private/Lowering.h"

#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/TextEdits.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>

#include <algorithm>
#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace krFrontend
{
namespace
{

constexpr std::string_view kRemainder = R"(int kr_remainder(int a, int b)
{
	return a - a / b * b;
}
)";
constexpr std::string_view kSetRemainder = R"(int kr_setRemainder(inout int a, int b)
{
	a = a - a / b * b;
	return a;
}
)";

/// Whether a product of the two is one of linear algebra.
bool isLinear(const Type& a, const Type& b)
{
    return (a.isMatrix() && !b.isScalar()) || (b.isMatrix() && !a.isScalar());
}

std::string digit(unsigned n) { return std::to_string(n); }

/// A text with every T and B that is a word replaced by a type's name.
std::string withTypes(std::string_view text, const std::string& type, const std::string& boolType)
{
    const auto isWord = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    std::string filled;
    for (std::size_t i = 0; i < text.size(); ++i)
    {
        const bool isAlone = (i == 0 || !isWord(text[i - 1])) && (i + 1 == text.size() || !isWord(text[i + 1]));
        if (isAlone && (text[i] == 'T' || text[i] == 'B'))
            filled += text[i] == 'T' ? type : boolType;
        else
            filled += text[i];
    }
    return filled;
}

} // namespace

std::string Lowering::typeText(const Type& type) const
{
    // Names that the programs' own macros make good stay as they are.
    const std::string name = typeName({type.base, type.size, 0});
    if (isCg())
        return name == "matrix2" ? "float2x2" : name;
    if (type.base == BaseType::Int && type.size > 1)
        return "ivec" + digit(type.size);
    if (type.base == BaseType::Bool && type.size > 1)
        return "bvec" + digit(type.size);
    return name == "matrix2" ? "mat2" : name;
}

const std::string& Lowering::nameOf(const Symbol& symbol)
{
    const auto [place, isNew] = fNames.try_emplace(&symbol);
    if (isNew)
        place->second = nameText(symbol.name);
    return place->second;
}

std::string Lowering::constantText(const ConstantValue& value) const
{
    std::string text = valueText(value);
    if (value.type.isScalar())
        return text.starts_with('-') ? concat({"(", text, ")"}) : text;
    const std::size_t open = text.find('(');
    text = typeText(value.type) + text.substr(open);
    return isCg() && value.type.isMatrix() ? concat({"transpose(", text, ")"}) : text;
}

std::string Lowering::render(Expr* expr)
{
    TextEdits edits;
    edit(expr, edits);
    return edits.apply(fModule.sources, expr->range());
}

void Lowering::wrapArgument(const Expr& argument, std::string_view before, std::string_view after)
{
    Wrap& wrap = fArgumentWraps[&argument];
    wrap.before = concat({before, wrap.before});
    wrap.after += after;
}

void Lowering::edit(Expr* root, TextEdits& edits)
{
    struct Open
    {
        Offset innerEnd;
        std::string innerAfter;
        std::string after;
    };
    std::vector<Open> open;
    const auto enter = [&](Expr* expr)
    {
        const auto asked = fArgumentWraps.find(expr);
        Wrap outer;
        if (asked != fArgumentWraps.end())
        {
            outer = std::move(asked->second);
            fArgumentWraps.erase(asked);
        }
        const bool converts = expr->toFloat && expr->kind != ExprKind::Number;
        edits.insertBefore(expr->begin, concat({outer.before, converts ? "float(" : ""}));
        outer.after = concat({converts ? ")" : "", outer.after});
        if (replaceWhole(expr, edits))
        {
            edits.insertAfter(expr->end, outer.after);
            return false;
        }
        Wrap wrap = editNode(*expr, edits);
        const Expr* last = expr->first;
        while (last && last->next)
            last = last->next;
        edits.insertBefore(expr->begin, std::move(wrap.before));
        edits.insertBefore(expr->first ? expr->first->begin : expr->begin, std::move(wrap.innerBefore));
        open.push_back({last ? last->end : expr->end, std::move(wrap.innerAfter), wrap.after + outer.after});
        return true;
    };
    const auto leave = [&](Expr* expr)
    {
        edits.insertAfter(open.back().innerEnd, std::move(open.back().innerAfter));
        edits.insertAfter(expr->end, std::move(open.back().after));
        open.pop_back();
    };
    fWalk(root, enter, leave);
}

bool Lowering::replaceWhole(Expr* expr, TextEdits& edits)
{
    if (!isCg())
        return false;
    const auto isColumnTarget = [](const Expr& e)
    {
        const Expr& whole = withoutSwizzles(e);
        return whole.kind == ExprKind::Index && whole.first->type.isMatrix();
    };
    const bool isLogical = expr->kind == ExprKind::Binary && (expr->op == TokenKind::And || expr->op == TokenKind::Or);
    const bool steps = (expr->kind == ExprKind::Unary || expr->kind == ExprKind::Postfix) &&
                       (expr->op == TokenKind::PlusPlus || expr->op == TokenKind::MinusMinus);
    std::string text;
    if ((isLogical && expr->second()->hasEffect) ||
        (expr->kind == ExprKind::Conditional && (expr->second()->hasEffect || expr->third()->hasEffect)))
        text = outlineChoice(expr);
    else if (expr->kind == ExprKind::Assign && isColumnTarget(*expr->first))
        text = storeColumn(expr->first, fModule.sources.text({expr->mark, expr->mark + 2}), render(expr->second()),
                           expr->second()->type);
    else if (steps && isColumnTarget(*expr->first))
    {
        const bool isPlus = expr->op == TokenKind::PlusPlus;
        text = storeColumn(expr->first, isPlus ? "+=" : "-=", "1.0", kFloatType);
        if (expr->kind == ExprKind::Postfix)
            text = concat({"(", text, isPlus ? " - 1.0)" : " + 1.0)"});
    }
    else if (expr->kind == ExprKind::Index && isColumnTarget(*expr->first))
        text = swappedElement(expr);
    else
        return false;
    edits.replace(expr->range(), std::move(text));
    return true;
}

Lowering::Wrap Lowering::editNode(const Expr& expr, TextEdits& edits)
{
    Wrap wrap;
    switch (expr.kind)
    {
    case ExprKind::Number:
        editNumber(expr, edits);
        break;
    case ExprKind::Variable:
        editVariable(expr, edits);
        break;
    case ExprKind::Binary:
        editBinary(expr, edits, wrap);
        break;
    case ExprKind::Assign:
        editAssign(expr, edits, wrap);
        break;
    case ExprKind::Call:
        if (expr.isBuiltin)
            editBuiltin(expr, edits, wrap);
        else
            editCall(expr, edits);
        break;
    case ExprKind::Construct:
        editConstruct(expr, edits, wrap);
        break;
    case ExprKind::Index:
        if (isCg() && expr.first->type.isMatrix()) // m[i] is a column, and a row there
            wrapArgument(*expr.first, "transpose(", ")");
        break;
    case ExprKind::Bad:
    case ExprKind::Bool:
    case ExprKind::Text:
    case ExprKind::Unary:
    case ExprKind::Postfix:
    case ExprKind::Conditional:
    case ExprKind::Swizzle:
        break;
    }
    return wrap;
}

void Lowering::editNumber(const Expr& expr, TextEdits& edits)
{
    if (!expr.toFloat)
        return;
    const SourceFile& file = fModule.sources.fileAt(expr.word);
    const std::string_view rest = file.text().substr(expr.word - file.begin());
    const std::size_t size = std::min(rest.find_first_not_of("0123456789abcdefxABCDEFX"), rest.size());
    const std::string_view word = rest.substr(0, size);
    const bool isDecimal = word.find_first_of("xX") == std::string_view::npos;
    replaceWord(expr, word, isDecimal ? std::string(word) + ".0" : floatText(static_cast<float>(expr.number)), edits);
}

void Lowering::replaceWord(const Expr& expr, std::string_view word, std::string_view text, TextEdits& edits)
{
    if (word != text)
        edits.replace({expr.word, expr.word + static_cast<Offset>(word.size())}, std::string(text));
}

void Lowering::editVariable(const Expr& expr, TextEdits& edits)
{
    const Symbol& symbol = *expr.symbol;
    const bool isConstant = symbol.kind == SymbolKind::Constant;
    replaceWord(expr, nameText(expr.name), isConstant ? constantText(*symbol.value) : nameOf(symbol), edits);
}

void Lowering::editBinary(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const Expr& left = *expr.first;
    const Expr& right = *expr.second();
    const auto callOf = [&](std::string_view function)
    {
        edits.replace({expr.mark, expr.mark + 1}, ",");
        wrap.innerBefore = concat({function, "("});
        wrap.innerAfter = std::string(")");
    };
    if (expr.op == TokenKind::Percent && !isCg())
    {
        fProgram.needHelper(kRemainder);
        callOf("kr_remainder");
    }
    else if (expr.op == TokenKind::Star && isCg() && isLinear(left.type, right.type))
        callOf("mul");
    else if (expr.op == TokenKind::Xor && isCg())
    {
        wrapArgument(left, "(", ")");
        wrapArgument(right, "(", ")");
        edits.replace({expr.mark, expr.mark + 2}, "!=");
        wrap.innerBefore = std::string("(");
        wrap.innerAfter = std::string(")");
    }
    else if ((expr.op == TokenKind::Equal || expr.op == TokenKind::NotEqual) && isCg() && !left.type.isScalar())
        editEquality(expr, edits, wrap);
}

void Lowering::editEquality(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const bool isEqual = expr.op == TokenKind::Equal;
    const Type& type = expr.first->type;
    if (type.isMatrix())
    {
        // A matrix has no comparison that every profile takes: it goes row by row.
        const std::string matrix = typeText(type);
        std::string rows;
        for (unsigned row = 0; row < type.size; ++row)
            rows += concat({row > 0 ? " && all(a[" : "all(a[", digit(row), "] == b[", digit(row), "])"});
        fProgram.needHelper("bool kr_equal(" + matrix + " a, " + matrix + " b)\n{\n\treturn " + rows + ";\n}\n");
        edits.replace({expr.mark, expr.mark + 2}, ",");
        wrap.innerBefore = std::string(isEqual ? "kr_equal(" : "!kr_equal(");
        wrap.innerAfter = std::string(")");
        return;
    }
    wrap.innerBefore = std::string(isEqual ? "all(" : "any(");
    wrap.innerAfter = std::string(")");
}

void Lowering::editAssign(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const Type& target = expr.first->type;
    const Type& value = expr.second()->type;
    std::string function;
    if (expr.op == TokenKind::PercentAssign && !isCg())
    {
        fProgram.needHelper(kSetRemainder);
        function = std::string("kr_setRemainder(");
    }
    else if (expr.op == TokenKind::StarAssign && isCg() && isLinear(target, value))
    {
        const std::string t = typeText(target);
        fProgram.needHelper(t + " kr_setProduct(inout " + t + " a, " + typeText(value) +
                            " b)\n{\n\ta = mul(a, b);\n\treturn a;\n}\n");
        function = std::string("kr_setProduct(");
    }
    if (function.empty())
        return;
    edits.replace({expr.mark, expr.mark + 2}, ",");
    wrap.innerBefore = function;
    wrap.innerAfter = std::string(")");
}

void Lowering::editCall(const Expr& expr, TextEdits& edits)
{
    const Function& function = *expr.function;
    replaceWord(expr, nameText(expr.name), fProgram.nameOf(function, fModule), edits);
    std::string passed = providedArguments(function.provided, false);
    if (passed.empty())
        return;
    if (expr.first)
        passed += ", ";
    edits.insertBefore(expr.mark + 1, std::move(passed));
}

bool Lowering::takesScalars(const Expr& call) const
{
    const Builtin& builtin = *call.builtin;
    if (isCg())
        return builtin.spellings[static_cast<unsigned>(fLanguage)].helper.empty();
    unsigned position = 0;
    bool all = builtin.scalarInGlsl != 0;
    for (const Expr* argument = call.first; argument; argument = argument->next, ++position)
        all &= (argument->spread != 0) == ((builtin.scalarInGlsl >> position & 1u) != 0);
    return all;
}

void Lowering::editBuiltin(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const Builtin& builtin = *expr.builtin;
    const BuiltinSpelling& spelling = builtin.spellings[static_cast<unsigned>(fLanguage)];
    if (!spelling.name.empty())
        replaceWord(expr, nameText(expr.name), spelling.name, edits);
    if (!spelling.helper.empty())
    {
        Type type = expr.first->type;
        for (const Expr* argument = expr.first; argument; argument = argument->next)
            if (argument->type.size > type.size)
                type = argument->type;
        fProgram.needHelper(withTypes(spelling.helper, typeText(type), typeText({BaseType::Bool, type.size, 0})));
    }
    if (spelling.suffix.starts_with('.'))
        wrap.after = spelling.suffix;
    else if (!spelling.suffix.empty())
    {
        const Expr* last = expr.first;
        while (last->next)
            last = last->next;
        wrapArgument(*last, "", spelling.suffix);
    }
    if (takesScalars(expr))
        return;
    for (const Expr* argument = expr.first; argument; argument = argument->next)
        if (argument->spread != 0)
        {
            const std::string vector = typeText({BaseType::Float, argument->spread, 0});
            wrapArgument(*argument, isCg() ? concat({"(", vector, ")("}) : concat({vector, "("}), ")");
        }
}

void Lowering::editConstruct(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const Type type = expr.toFloat ? kIntType : expr.type;
    const std::string word = typeName(type);
    const bool isFilled = type.isVector() && !expr.first->next && expr.first->type.isScalar();
    if (isCg() && type.isMatrix())
        editCgMatrix(expr, edits, wrap);
    else if (isCg() && isFilled)
    {
        replaceWord(expr, word, concat({"((", typeText(type), ")"}), edits);
        wrap.after = std::string(")");
    }
    else
    {
        replaceWord(expr, word, typeText(type), edits);
        if (isCg())
            cutLastArgument(expr);
    }
}

void Lowering::cutLastArgument(const Expr& expr)
{
    unsigned given = 0;
    const Expr* last = nullptr;
    for (const Expr* argument = expr.first; argument; argument = argument->next)
    {
        given += argument->type.size;
        last = argument;
    }
    const unsigned wanted = expr.toFloat ? 1u : expr.type.size;
    if (given > wanted)
        wrapArgument(*last, "(",
                     concat({").", std::string_view("xyzw").substr(0, last->type.size - (given - wanted))}));
}

void Lowering::editCgMatrix(const Expr& expr, TextEdits& edits, Wrap& wrap)
{
    const std::string word = typeName(expr.type);
    const std::string type = typeText(expr.type);
    const unsigned size = expr.type.size;
    const Type& first = expr.first->type;
    if (!expr.first->next && first.isMatrix())
    {
        replaceWord(expr, word, concat({"((", type, ")"}), edits);
        wrap.after = std::string(")");
        return;
    }
    if (!expr.first->next && first.isScalar())
    {
        std::string elements;
        for (unsigned i = 0; i < size * size; ++i)
            elements += std::string(i > 0 ? ", " : "") + (i % (size + 1) == 0 ? "x" : "0.0");
        const std::string name = "kr_diagonal" + digit(size);
        fProgram.needHelper(type + " " + name + "(float x)\n{\n\treturn " + type + "(" + elements + ");\n}\n");
        replaceWord(expr, word, name, edits);
        return;
    }
    replaceWord(expr, word, type, edits);
    wrap.before = std::string("transpose("); // a constructor takes rows there
    wrap.after = std::string(")");
}

} // namespace krFrontend
