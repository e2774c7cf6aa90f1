#include "krender/frontend/private/TargetLimits.h"

#include "krender/frontend/private/BlockLayout.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/ShaderWalk.h"
#include "krender/frontend/private/StmtWalk.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"

#include <krender/shadergen/InterpolantBank.h>
#include <krender/shading/ShadingAttribute.h>

#include <string>

namespace krFrontend
{
namespace
{

bool isLoop(const Stmt& statement) noexcept
{
    return statement.kind == StmtKind::For || statement.kind == StmtKind::While || statement.kind == StmtKind::DoWhile;
}

std::string_view nameIn(const Module& module, const Symbol& symbol)
{
    return module.contents().store.names.text(symbol.name);
}

/// What shows whether a loop goes on, such as i < 8.
bool isComparison(const Expr* expr) noexcept
{
    return expr && expr->kind == ExprKind::Binary &&
           (expr->op == TokenKind::Less || expr->op == TokenKind::Greater || expr->op == TokenKind::LessEqual ||
            expr->op == TokenKind::GreaterEqual || expr->op == TokenKind::Equal || expr->op == TokenKind::NotEqual);
}

} // namespace

void TargetLimits::check(const std::vector<ShaderUse>& shaders)
{
    checkVertexInputs(shaders.front());
    checkUniforms(shaders);
    if ((fTarget.lacks & (kLacksOpenLoops | kLacksOpenIndices)) != 0)
        for (const ShaderUse& shader : shaders)
            checkBodies(shader);
}

void TargetLimits::lack(const Module& module, SourceRange range, std::string_view what)
{
    fReport(module, Message::TargetLacks, range, {fTarget.name, what});
}

void TargetLimits::checkVertexInputs(const ShaderUse& material)
{
    if (fTarget.vertexInputs == 0)
        return;
    InterpolantBank bank(fTarget.interpolants, true);
    unsigned count = 0;
    forEachInput(*material.module, *material.function, krShadingDag::kVertexRange,
                 [&](const Symbol& input)
                 {
                     bool ok = fTarget.interpolants == 0;
                     if (!ok)
                         (void)bank.allocateInterpolant(input.type.size, ok, nullptr, nullptr);
                     ++count;
                     const std::string_view name = nameIn(*material.module, input);
                     if (!ok)
                         fReport(*material.module, Message::NoInterpolant, input.range,
                                 {name, fTarget.name, std::to_string(fTarget.interpolants)});
                     else if (count > fTarget.vertexInputs)
                         fReport(*material.module, Message::NoVertexRegister, input.range,
                                 {name, fTarget.name, std::to_string(fTarget.vertexInputs)});
                 });
}

void TargetLimits::checkUniforms(const std::vector<ShaderUse>& shaders)
{
    const auto lacks = [this](TargetLack what) { return (fTarget.lacks & what) != 0; };
    unsigned samplers = 0;
    BlockLayout layout = frameLayout();
    const auto checkUniform = [&](const Module& module, const Symbol& input)
    {
        const BaseType base = input.type.base;
        bool fits = true;
        if (input.type.isSampler())
            fits = fTarget.samplers == 0 || ++samplers <= fTarget.samplers;
        else
        {
            (void)layout.place(input.type);
            fits = fTarget.blockBytes == 0 || static_cast<unsigned>(layout.size()) <= fTarget.blockBytes;
        }
        if (!fits)
            fReport(module, Message::NoUniformRoom, input.range,
                    {nameIn(module, input), fTarget.name,
                     input.type.isSampler() ? std::to_string(fTarget.samplers) + " samplers"
                                            : std::to_string(fTarget.blockBytes) + " bytes of uniforms"});
        if (base == BaseType::Sampler3D && lacks(kLacksVolumes))
            lack(module, input.range, "it has no sampler3D");
        if (base == BaseType::Sampler2DShadow && lacks(kLacksShadows))
            lack(module, input.range, "it has no sampler2DShadow");
        if (base == BaseType::Sampler1DShadow && lacks(kLacksLineShadows))
            lack(module, input.range, "it has no sampler1DShadow");
    };
    for (const ShaderUse& shader : shaders)
        forEachInput(*shader.module, *shader.function, krShadingDag::kUniformRange,
                     [&](const Symbol& input) { checkUniform(*shader.module, input); });
}

void TargetLimits::checkBodies(const ShaderUse& shader)
{
    std::vector<const Function*> waiting{shader.function};
    while (!waiting.empty())
    {
        const Function& function = *waiting.back();
        waiting.pop_back();
        if (!fSeen.insert(&function).second)
            continue;
        if (function.body)
            checkStatements(*shader.module, function.body);
        waiting.insert(waiting.end(), function.calls.begin(), function.calls.end());
    }
}

void TargetLimits::checkStatements(const Module& module, const Stmt* first)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
        for (const Stmt* part = statement; part; part = part->otherwise)
        {
            if (isLoop(*part))
                checkLoop(module, *part);
            for (const Symbol* variable = part->variables; variable; variable = variable->next)
                if (variable->initializer)
                    checkIndices(module, variable->initializer);
            for (Expr* expr : {part->expr, part->step})
                if (expr)
                    checkIndices(module, expr);
            for (const Stmt* inner : {part->init, part->body})
                if (inner)
                    checkStatements(module, inner);
        }
}

void TargetLimits::checkLoop(const Module& module, const Stmt& loop)
{
    if (const Symbol* counter = counterOf(loop))
        fCounters.insert(counter);
    else if ((fTarget.lacks & kLacksOpenLoops) != 0)
        lack(module, {loop.begin, loop.kind == StmtKind::DoWhile ? loop.begin + 2 : loop.mark},
             "its loops count a variable from a constant to a constant, as for (int i = 0; i < 8; i++)");
}

const Symbol* TargetLimits::counterOf(const Stmt& loop)
{
    const Stmt* init = loop.init;
    if (loop.kind != StmtKind::For || !init || !init->variables || init->variables->next || !loop.step)
        return nullptr;
    const Symbol& counter = *init->variables;
    const auto isCounter = [&](const Expr* expr)
    { return expr->kind == ExprKind::Variable && expr->symbol == &counter && !expr->toFloat; };
    if (!counter.type.isScalar() || counter.type == kBoolType || !counter.initializer ||
        !fFolder.evaluate(counter.initializer))
        return nullptr;
    if (!isComparison(loop.expr) || !isCounter(loop.expr->first) || !fFolder.evaluate(loop.expr->second()))
        return nullptr;
    const Expr& step = *loop.step;
    const bool steps = step.op == TokenKind::PlusPlus || step.op == TokenKind::MinusMinus;
    const bool adds = step.kind == ExprKind::Assign &&
                      (step.op == TokenKind::PlusAssign || step.op == TokenKind::MinusAssign) &&
                      fFolder.evaluate(step.first->next);
    if (!(steps || adds) || !isCounter(step.first) || isChangedIn(loop.body, counter))
        return nullptr;
    return &counter;
}

bool TargetLimits::isChangedIn(const Stmt* first, const Symbol& counter)
{
    bool isChanged = false;
    forEachExpr(first,
                [&](Expr* root, const Symbol*)
                {
                    fWalk(root, [&](Expr* expr)
                          { forEachChanged(*expr, [&](const Symbol& symbol) { isChanged |= &symbol == &counter; }); });
                });
    return isChanged;
}

void TargetLimits::checkIndices(const Module& module, Expr* root)
{
    std::vector<Expr*> indices;
    fWalk(root,
          [&](Expr* expr)
          {
              if (expr->kind == ExprKind::Index)
                  indices.push_back(expr->second());
          });
    for (Expr* index : indices)
        if (!isFixedIndex(index))
            lack(module, index->range(), "its indices are made of constants and of the variables of counting loops");
}

bool TargetLimits::isFixedIndex(Expr* index)
{
    bool isFixed = true;
    fWalk(index,
          [&](Expr* expr)
          {
              const bool isConstant = expr->kind == ExprKind::Variable &&
                                      (expr->symbol->kind == SymbolKind::Constant || expr->symbol->value);
              isFixed &= expr->kind == ExprKind::Number || expr->kind == ExprKind::Binary || isConstant ||
                         (expr->kind == ExprKind::Variable && fCounters.contains(expr->symbol));
          });
    return isFixed;
}

} // namespace krFrontend
