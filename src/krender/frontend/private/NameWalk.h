#pragma once
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/StmtWalk.h"
#include "krender/frontend/private/Syntax.h"
#include <krender/frontend/SourceSet.h>

#include <vector>

namespace krFrontend
{

/// What a name in a source stands for: one of the three.
struct Meaning
{
    const Symbol* symbol = nullptr;
    const Function* function = nullptr;
    const Builtin* builtin = nullptr;
};

/// A name in a source.
struct NamePlace
{
    SourceRange range;
    Meaning meaning;
    bool isDeclaration = false;
    SourceRange scope; ///< of a declaration
};

[[nodiscard]] constexpr bool holds(SourceRange range, Offset offset) noexcept
{
    return range.begin <= offset && offset <= range.end;
}

/// Walks over what a module declares, or over what of it touches one place.
class NameWalk
{
public:
    explicit NameWalk(const ModuleContents& contents) : fContents(contents) {}
    /// Passes over functions that the place does not touch.
    NameWalk(const ModuleContents& contents, Offset place) : fContents(contents), fPlace(place), fHasPlace(true) {}

    /// Calls the visitor with each name: what is declared, and what expressions name.
    template <class Visitor>
    void forEachName(const Visitor& visit)
    {
        const SourceRange everywhere{0, static_cast<Offset>(fContents.sources.size())};
        for (const Symbol* constant : fContents.tree.constants)
            visit(NamePlace{constant->range, {constant}, true, everywhere});
        for (const Function* function : fContents.tree.functions)
        {
            visit(NamePlace{function->range, {nullptr, function}, true, everywhere});
            if (!isWanted(*function))
                continue;
            const SourceRange scope = function->body ? function->body->range() : SourceRange{};
            for (const Symbol* argument = function->arguments; argument; argument = argument->next)
                visit(NamePlace{argument->range, {argument}, true, scope});
            forEachLocal(*function, visit);
        }
        forEachExpression(
            [&](const Expr& expr)
            {
                const Offset end = expr.word + static_cast<Offset>(fContents.store.names.text(expr.name).size());
                if (expr.kind == ExprKind::Variable && expr.symbol)
                    visit(NamePlace{{expr.word, end}, {expr.symbol}, false, {}});
                else if (expr.kind == ExprKind::Call && expr.isBuiltin)
                    visit(NamePlace{{expr.word, end}, {nullptr, nullptr, expr.builtin}, false, {}});
                else if (expr.kind == ExprKind::Call && expr.function)
                    visit(NamePlace{{expr.word, end}, {nullptr, expr.function}, false, {}});
            });
    }

    /// Calls the visitor with each expression, operands ahead of what they belong to.
    template <class Visitor>
    void forEachExpression(const Visitor& visit)
    {
        const auto walk = [&](Expr* root)
        {
            if (root)
                fWalk(root, [&](const Expr* expr) { visit(*expr); });
        };
        for (const Symbol* constant : fContents.tree.constants)
            walk(constant->initializer);
        for (const Function* function : fContents.tree.functions)
        {
            if (!isWanted(*function))
                continue;
            for (const Symbol* argument = function->arguments; argument; argument = argument->next)
                walk(argument->initializer);
            forEachVariable(function->body, [&](const Symbol& variable) { walk(variable.arraySize); });
            forEachExpr(function->body, [&](Expr* expr, const Symbol*) { walk(expr); });
        }
    }

private:
    [[nodiscard]] bool isWanted(const Function& function) const noexcept
    {
        const Offset end = function.body ? function.body->end : function.header.end;
        return !fHasPlace || holds({function.header.begin, end}, fPlace);
    }

    /// A local can be named from behind its declaration to the end of the block that it stands in.
    template <class Visitor>
    void forEachLocal(const Function& function, const Visitor& visit)
    {
        std::vector<Offset> ends;
        walkStatements(
            function.body,
            [&](const Stmt& statement)
            {
                if (statement.body)
                    ends.push_back(statement.end);
                for (const Symbol* variable = statement.variables; variable; variable = variable->next)
                {
                    const Offset begin = variable->initializer ? variable->initializer->end : variable->range.end;
                    visit(NamePlace{variable->range, {variable}, true, {begin, ends.back()}});
                }
            },
            [&](const Stmt& statement)
            {
                if (statement.body)
                    ends.pop_back();
            });
    }

    const ModuleContents& fContents;
    ExprWalk fWalk;
    Offset fPlace = 0;
    bool fHasPlace = false;
};

} // namespace krFrontend
