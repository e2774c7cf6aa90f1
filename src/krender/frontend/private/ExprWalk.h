#pragma once
#include "krender/frontend/private/Syntax.h"

#include <utility>

namespace krFrontend
{

/// Visits the nodes of expressions without recursion, as they nest deeper than a stack allows: a chain of 4,096 operators
/// is a tree of that depth.
class ExprWalk
{
public:
    /// Calls enter(node) before its operands and leave(node) behind them, operands from left to right. Where enter
    /// answers false, the node's operands are passed over, and leave is not called for it.
    template <class Enter, class Leave>
    void operator()(Expr* root, Enter enter, Leave leave)
    {
        const std::size_t bottom = fStack.size();
        if (enter(root))
            fStack.push_back({root, root->first});
        while (fStack.size() > bottom)
        {
            Frame& frame = fStack.back();
            if (!frame.operand)
            {
                Expr* expr = frame.expr;
                fStack.pop_back();
                leave(expr);
                continue;
            }
            Expr* operand = std::exchange(frame.operand, frame.operand->next);
            if (enter(operand))
                fStack.push_back({operand, operand->first});
        }
    }

    template <class Leave>
    void operator()(Expr* root, Leave leave)
    {
        (*this)(
            root, [](Expr*) { return true; }, leave);
    }

private:
    struct Frame
    {
        Expr* expr;
        Expr* operand; // the next to be visited
    };

    std::vector<Frame> fStack;
};

/// The variable that an element or component of it is set in.
[[nodiscard]] inline const Symbol& rootOf(const Expr* target) noexcept
{
    while (target->kind == ExprKind::Index || target->kind == ExprKind::Swizzle)
        target = target->first;
    return *target->symbol;
}

/// Calls the visitor with each variable that an operation itself changes, its operands aside.
template <class Visitor>
void forEachChanged(const Expr& expr, Visitor visit)
{
    const bool steps = expr.op == TokenKind::PlusPlus || expr.op == TokenKind::MinusMinus;
    if (expr.kind == ExprKind::Assign || ((expr.kind == ExprKind::Unary || expr.kind == ExprKind::Postfix) && steps))
        visit(rootOf(expr.first));
    if (expr.kind != ExprKind::Call || expr.isBuiltin)
        return;
    const Expr* value = expr.first;
    for (const Symbol* argument = expr.function->arguments; argument; argument = argument->next, value = value->next)
        if (argument->kind != SymbolKind::Input)
            visit(rootOf(value));
}

} // namespace krFrontend
