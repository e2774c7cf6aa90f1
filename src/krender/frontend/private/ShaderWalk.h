#pragma once
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/Syntax.h"
#include <krender/frontend/Module.h>
#include <krender/shading/ShadingAttribute.h>

namespace krFrontend
{

/// Calls the visitor with every expression of the statements, its operands not among them, and the variable that it is
/// the first value of, or null.
template <class Visitor>
void forEachExpr(const Stmt* first, Visitor visit)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
        for (const Stmt* part = statement; part; part = part->otherwise)
        {
            for (const Symbol* variable = part->variables; variable; variable = variable->next)
                if (variable->initializer)
                    visit(variable->initializer, variable);
            if (part->init)
                forEachExpr(part->init, visit);
            if (part->expr)
                visit(part->expr, nullptr);
            if (part->step)
                visit(part->step, nullptr);
            if (part->body)
                forEachExpr(part->body, visit);
        }
}

/// Calls the visitor with each input of that frequency which programs do not provide.
template <class Visitor>
void forEachInput(const Module& module, const Function& shader, krShadingDag::CompFreqRange frequency, Visitor visit)
{
    for (const Symbol* input = shader.arguments; input; input = input->next)
        if (input->kind == SymbolKind::Input && input->frequencies == frequency &&
            !isProvidedName(module.contents().store.names.text(input->name)))
            visit(*input);
}

} // namespace krFrontend
