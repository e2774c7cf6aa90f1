#pragma once
#include "krender/frontend/private/ExprWalk.h"

#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/Type.h"

#include <deque>
#include <optional>
#include <vector>

namespace krFrontend
{

/// Works out constant expressions, as the targets would: floats in single precision, ints in 32 bits that wrap.
class ConstantFolder
{
public:
    /// @param kept  holds the values for as long as the tree refers to them
    explicit ConstantFolder(std::deque<ConstantValue>& kept) : fKept(kept) {}

    /// The value of an expression that was checked; nothing where it is not constant.
    [[nodiscard]] const ConstantValue* evaluate(Expr* expr);
    /// The same, converted to the type of the place that it is for: an int to a float.
    [[nodiscard]] const ConstantValue* evaluate(Expr* expr, const Type& type);

private:
    [[nodiscard]] std::optional<ConstantValue> fold(const Expr* expr, const ConstantValue* operands) const;

    ExprWalk fWalk;
    std::vector<ConstantValue> fValues;
    std::deque<ConstantValue>& fKept;
};

/// Whether only literals stand in the expression.
[[nodiscard]] bool isLiteral(Expr* expr);

} // namespace krFrontend
