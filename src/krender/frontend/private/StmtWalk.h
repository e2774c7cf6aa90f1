#pragma once
#include "krender/frontend/private/Syntax.h"

namespace krFrontend
{

/// Visits statements in the order of the source: enter(statement) ahead of what stands within it, leave(statement)
/// behind. It recurses as deep as blocks nest; a chain of `else if` takes no depth.
template <class Enter, class Leave>
void walkStatements(const Stmt* first, const Enter& enter, const Leave& leave)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
        for (const Stmt* part = statement; part; part = part->otherwise)
        {
            enter(*part);
            walkStatements(part->init, enter, leave);
            walkStatements(part->body, enter, leave);
            leave(*part);
        }
}

/// Calls the visitor with every variable that the statements declare.
template <class Visitor>
void forEachVariable(const Stmt* first, const Visitor& visit)
{
    walkStatements(
        first,
        [&](const Stmt& statement)
        {
            for (const Symbol* variable = statement.variables; variable; variable = variable->next)
                visit(*variable);
        },
        [](const Stmt&) {});
}

/// Calls the visitor with every expression of the statements, its operands not among them, and with the variable whose
/// initial value it is, or null. The sizes of arrays are not among them.
template <class Visitor>
void forEachExpr(const Stmt* first, const Visitor& visit)
{
    constexpr const Symbol* kNoVariable = nullptr;
    walkStatements(
        first,
        [&](const Stmt& statement)
        {
            for (const Symbol* variable = statement.variables; variable; variable = variable->next)
                if (variable->initializer)
                    visit(variable->initializer, variable);
            if (statement.expr)
                visit(statement.expr, kNoVariable);
            if (statement.step)
                visit(statement.step, kNoVariable);
        },
        [](const Stmt&) {});
}

} // namespace krFrontend
