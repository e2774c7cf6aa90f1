#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/Lowering.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/ProgramNames.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/TextEdits.h"
#include "krender/frontend/private/Type.h"

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{
namespace
{

/// The components of a vector that are left of it behind its swizzles.
std::string lettersOf(const Expr& expr)
{
    if (expr.kind != ExprKind::Swizzle)
        return std::string("xyzw").substr(0, expr.type.size);
    const std::string inner = lettersOf(*expr.first);
    std::string letters;
    for (unsigned i = 0; i < 4 && expr.swizzle[i] < 4; ++i)
        letters += inner[expr.swizzle[i]];
    return letters;
}

/// An assignment's word in a helper's name.
std::string_view wordOf(std::string_view op) noexcept
{
    if (op == "+=")
        return "Add";
    if (op == "-=")
        return "Subtract";
    if (op == "*=")
        return "Multiply";
    return op == "/=" ? "Divide" : "Set";
}

/// A variable that a piece of code uses, and whether it changes it.
struct Captured
{
    const Symbol* symbol;
    bool isChanged;
};

void capture(std::vector<Captured>& captured, const Symbol& symbol, bool isChanged)
{
    if (symbol.kind == SymbolKind::Constant)
        return;
    const auto known =
        std::find_if(captured.begin(), captured.end(), [&](const Captured& c) { return c.symbol == &symbol; });
    if (known == captured.end())
        captured.push_back({&symbol, isChanged});
    else
        known->isChanged |= isChanged;
}

} // namespace

const Expr& withoutSwizzles(const Expr& expr) noexcept
{
    const Expr* whole = &expr;
    while (whole->kind == ExprKind::Swizzle)
        whole = whole->first;
    return *whole;
}

std::string Lowering::outlineChoice(Expr* expr)
{
    // Cg works out both sides of && and || and both values of ?:, so a choice with effects becomes a function, in which
    // an if decides. What it uses is handed to it.
    std::vector<Captured> captured;
    std::uint8_t provided = 0;
    ExprWalk walk;
    walk(expr,
         [&](Expr* e)
         {
             if (e->kind == ExprKind::Variable)
                 capture(captured, *e->symbol, false);
             forEachChanged(*e, [&](const Symbol& symbol) { capture(captured, symbol, true); });
             if (e->kind == ExprKind::Call && !e->isBuiltin)
                 provided |= e->function->provided;
         });
    for (const Captured& c : captured)
        if (c.symbol->kind == SymbolKind::Provided && c.symbol->provided < kPassedValues)
            provided &= static_cast<std::uint8_t>(~(1u << c.symbol->provided));

    std::string declared = providedArguments(provided, true);
    std::string passed = providedArguments(provided, false);
    for (const Captured& c : captured)
    {
        const Type& type = c.symbol->type;
        const std::string length = type.isArray() ? concat({"[", std::to_string(type.arrayLength), "]"}) : "";
        declared += concat({declared.empty() ? "" : ", ", c.isChanged ? "inout " : "", typeText(type), " ",
                            nameOf(*c.symbol), length});
        passed += concat({passed.empty() ? "" : ", ", nameOf(*c.symbol)});
    }

    const std::string first = render(expr->first);
    const std::string second = render(expr->second());
    std::string body;
    if (expr->kind == ExprKind::Conditional)
        body = "\tif (" + first + ")\n\t\treturn " + second + ";\n\treturn " + render(expr->third()) + ";\n";
    else if (expr->op == TokenKind::And)
        body = "\tif (!(" + first + "))\n\t\treturn false;\n\treturn " + second + ";\n";
    else
        body = "\tif (" + first + ")\n\t\treturn true;\n\treturn " + second + ";\n";
    const std::string name = fProgram.names().invent("choice");
    const Type type = expr->toFloat ? kIntType : expr->type;
    fProgram.text().append(typeText(type) + " " + name + "(" + declared + ")\n{\n" + body + "}\n\n",
                           {&fModule.sources, expr->begin}, false);
    return name + "(" + passed + ")";
}

std::string Lowering::storeColumn(Expr* target, std::string_view op, const std::string& value, const Type& valueType)
{
    const bool isPart = target->kind == ExprKind::Swizzle;
    const Expr* column = &withoutSwizzles(*target);
    const std::string_view assignment = op.ends_with('=') && op[0] != '=' ? op : "=";
    const Type matrix = column->first->type;
    const std::string letters = lettersOf(*target);
    const std::string name = "kr_column" + std::string(wordOf(assignment)) + (isPart ? "_" + letters : "");
    const std::string part = typeText({BaseType::Float, static_cast<std::uint8_t>(letters.size()), 0});
    std::string body = "\t" + part + " c = transpose(m)[i]." + letters + ";\n";
    if (assignment == "*=" && valueType.isMatrix())
        body += "\tc = mul(c, v);\n";
    else
        body += "\tc " + std::string(assignment) + " v;\n";
    for (std::size_t k = 0; k < letters.size(); ++k)
        body += concat({"\tm[", std::to_string(std::string_view("xyzw").find(letters[k])), "][i] = c",
                        letters.size() == 1 ? "" : ".", std::string_view("xyzw").substr(k, letters.size() == 1 ? 0 : 1),
                        ";\n"});
    fProgram.needHelper(part + " " + name + "(inout " + typeText(matrix) + " m, int i, " + typeText(valueType) +
                        " v)\n{\n" + body + "\treturn c;\n}\n");
    return name + "(" + render(column->first) + ", " + render(column->second()) + ", " + value + ")";
}

std::string Lowering::swappedElement(Expr* element)
{
    // m[column][row] is m[row][column] where the first index picks a row.
    const Expr& column = withoutSwizzles(*element->first);
    std::string row = render(element->second());
    if (&column != element->first)
    {
        const std::string letters = lettersOf(*element->first);
        std::string rows;
        for (const char letter : letters)
            rows += concat({rows.empty() ? "" : ", ", std::to_string(std::string_view("xyzw").find(letter))});
        row = concat({"int", std::to_string(letters.size()), "(", rows, ")[", row, "]"});
    }
    return render(column.first) + "[" + row + "][" + render(column.second()) + "]";
}

} // namespace krFrontend
