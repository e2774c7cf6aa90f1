#include "krender/frontend/private/ConstantFolder.h"

#include "krender/frontend/private/Lexer.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <limits>
#include <string>

namespace krFrontend
{
namespace
{

float floatOf(const ConstantValue& value, unsigned i) noexcept
{
    return value.type.base == BaseType::Float || value.type.isMatrix() ? value.floats[i]
                                                                       : static_cast<float>(value.ints[i % 4]);
}

/// In 32 bits, as the targets wrap.
std::int32_t wrap(std::int64_t value) noexcept { return static_cast<std::int32_t>(static_cast<std::uint32_t>(value)); }

/// A float as an int: cut towards zero, and held within what an int can be.
std::int32_t cut(float value) noexcept
{
    constexpr float kEnd = 2147483648.0f;
    if (!(value > -kEnd))
        return value == value ? std::numeric_limits<std::int32_t>::min() : 0;
    return value < kEnd ? static_cast<std::int32_t>(value) : std::numeric_limits<std::int32_t>::max();
}

void store(ConstantValue& to, unsigned i, const ConstantValue& from, unsigned j)
{
    if (to.type.base == BaseType::Float || to.type.isMatrix())
        to.floats[i] = floatOf(from, j);
    else if (to.type.base == BaseType::Bool)
        to.ints[i] = floatOf(from, j) != 0.0f;
    else
        to.ints[i] = from.type.base == BaseType::Float ? cut(from.floats[j]) : from.ints[j];
}

ConstantValue boolean(bool value)
{
    ConstantValue result{kBoolType, {}, {}, {}};
    result.ints[0] = value;
    return result;
}

bool isEqual(const ConstantValue& a, const ConstantValue& b)
{
    for (unsigned i = 0; i < a.count(); ++i)
        if (floatOf(a, i) != floatOf(b, i) || (a.type.base == BaseType::Int && a.ints[i] != b.ints[i]))
            return false;
    return true;
}

std::optional<std::int32_t> intResult(TokenKind op, std::int64_t a, std::int64_t b)
{
    switch (op) // NOLINT(clang-diagnostic-switch-enum): the other operators have no int
    {
    case TokenKind::Plus:
        return wrap(a + b);
    case TokenKind::Minus:
        return wrap(a - b);
    case TokenKind::Star:
        return wrap(a * b);
    case TokenKind::Slash:
        return b == 0 ? std::nullopt : std::optional(wrap(a / b));
    case TokenKind::Percent:
        return b == 0 ? std::nullopt : std::optional(wrap(a % b));
    default:
        return std::nullopt;
    }
}

float floatResult(TokenKind op, float a, float b) noexcept
{
    switch (op) // NOLINT(clang-diagnostic-switch-enum): floats have no other operators
    {
    case TokenKind::Plus:
        return a + b;
    case TokenKind::Minus:
        return a - b;
    case TokenKind::Star:
        return a * b;
    default:
        return a / b;
    }
}

/// The product of two matrices, or of a matrix and a vector on either side.
ConstantValue product(const ConstantValue& a, const ConstantValue& b, const Type& type)
{
    ConstantValue result{type, {}, {}, {}};
    const unsigned n = a.type.isMatrix() ? a.type.size : b.type.size;
    const unsigned columns = b.type.isMatrix() ? n : 1;
    const unsigned rows = a.type.isMatrix() ? n : 1;
    for (unsigned column = 0; column < columns; ++column)
        for (unsigned row = 0; row < rows; ++row)
        {
            float sum = 0.0f;
            for (unsigned k = 0; k < n; ++k)
                sum += a.floats[a.type.isMatrix() ? k * n + row : k] * b.floats[b.type.isMatrix() ? column * n + k : k];
            result.floats[a.type.isMatrix() ? column * n + row : column] = sum;
        }
    return result;
}

std::optional<ConstantValue> arithmetic(TokenKind op, const Type& type, const ConstantValue& a, const ConstantValue& b)
{
    const bool isProduct =
        op == TokenKind::Star && (a.type.isMatrix() || b.type.isMatrix()) && !a.type.isScalar() && !b.type.isScalar();
    if (isProduct)
        return product(a, b, type);
    ConstantValue result{type, {}, {}, {}};
    for (unsigned i = 0; i < result.count(); ++i)
    {
        const unsigned ia = a.type.isScalar() ? 0 : i;
        const unsigned ib = b.type.isScalar() ? 0 : i;
        if (type.base == BaseType::Int)
        {
            const std::optional<std::int32_t> value = intResult(op, a.ints[ia], b.ints[ib]);
            if (!value)
                return std::nullopt;
            result.ints[i] = *value;
        }
        else
            result.floats[i] = floatResult(op, floatOf(a, ia), floatOf(b, ib));
    }
    return result;
}

std::optional<ConstantValue> binary(TokenKind op, const Type& type, const ConstantValue& a, const ConstantValue& b)
{
    const bool isInt = a.type.base == BaseType::Int && b.type.base == BaseType::Int;
    const auto isLess = [isInt](const ConstantValue& x, const ConstantValue& y)
    { return isInt ? x.ints[0] < y.ints[0] : floatOf(x, 0) < floatOf(y, 0); };
    switch (op) // NOLINT(clang-diagnostic-switch-enum): the rest is arithmetic
    {
    case TokenKind::And:
        return boolean(a.ints[0] && b.ints[0]);
    case TokenKind::Or:
        return boolean(a.ints[0] || b.ints[0]);
    case TokenKind::Xor:
        return boolean(a.ints[0] != b.ints[0]);
    case TokenKind::Equal:
        return boolean(isEqual(a, b));
    case TokenKind::NotEqual:
        return boolean(!isEqual(a, b));
    case TokenKind::Less:
        return boolean(isLess(a, b));
    case TokenKind::Greater:
        return boolean(isLess(b, a));
    case TokenKind::LessEqual:
        return boolean(isInt ? a.ints[0] <= b.ints[0] : floatOf(a, 0) <= floatOf(b, 0));
    case TokenKind::GreaterEqual:
        return boolean(isInt ? a.ints[0] >= b.ints[0] : floatOf(a, 0) >= floatOf(b, 0));
    default:
        return arithmetic(op, type, a, b);
    }
}

ConstantValue negated(const ConstantValue& value)
{
    ConstantValue result = value;
    for (float& f : result.floats)
        f = -f;
    for (std::int32_t& i : result.ints)
        i = wrap(-std::int64_t{i});
    return result;
}

ConstantValue constructed(const Expr* expr, const Type& type, const ConstantValue* operands)
{
    ConstantValue result{type, {}, {}, {}};
    const unsigned count = result.count();
    const Type first = operands[0].type;
    if (result.type.isMatrix() && !expr->first->next && (first.isScalar() || first.isMatrix()))
    {
        for (unsigned column = 0; column < result.type.size; ++column)
            for (unsigned row = 0; row < result.type.size; ++row)
                if (first.isMatrix() || row == column)
                    store(result, column * result.type.size + row, operands[0],
                          first.isMatrix() ? column * first.size + row : 0);
        return result;
    }
    unsigned at = 0;
    for (const Expr* value = expr->first; value; value = value->next, ++operands)
        for (unsigned i = 0; i < operands->count() && at < count; ++i)
            store(result, at++, *operands, i);
    for (; at > 0 && at < count; ++at) // one scalar fills all
        store(result, at, result, 0);
    return result;
}

std::optional<ConstantValue> picked(const Type& type, const ConstantValue& value, unsigned index)
{
    ConstantValue result{type, {}, {}, {}};
    if (index >= (value.type.isMatrix() ? value.type.size : value.count()))
        return std::nullopt;
    if (value.type.isMatrix())
        for (unsigned row = 0; row < value.type.size; ++row)
            result.floats[row] = value.floats[index * value.type.size + row];
    else
        store(result, 0, value, index);
    return result;
}

/// A constant's value, or null; an input's is its default, which may be another one in the end.
const ConstantValue* valueOf(const Symbol* symbol) noexcept
{
    return symbol && symbol->kind != SymbolKind::Input ? symbol->value : nullptr;
}

} // namespace

std::optional<ConstantValue> ConstantFolder::fold(const Expr* expr, const ConstantValue* operands) const
{
    if (!expr->type.isKnown())
        return std::nullopt;
    // What was an int before its place wanted a float is worked out as one.
    const Type type = expr->toFloat && expr->kind != ExprKind::Number ? kIntType : expr->type;
    ConstantValue result{type, {}, {}, {}};
    switch (expr->kind)
    {
    case ExprKind::Number:
        if (type.base == BaseType::Int)
            result.ints[0] = wrap(static_cast<std::int64_t>(expr->number));
        else
            result.floats[0] = static_cast<float>(expr->number);
        return result;
    case ExprKind::Bool:
        return boolean(expr->number != 0.0);
    case ExprKind::Variable:
        if (const ConstantValue* value = valueOf(expr->symbol))
            return *value;
        return std::nullopt;
    case ExprKind::Unary:
        if (expr->op == TokenKind::Not)
            return boolean(!operands[0].ints[0]);
        if (expr->op == TokenKind::Minus)
            return negated(operands[0]);
        return expr->op == TokenKind::Plus ? std::optional(operands[0]) : std::nullopt;
    case ExprKind::Binary:
        return binary(expr->op, type, operands[0], operands[1]);
    case ExprKind::Conditional:
        return operands[0].ints[0] ? operands[1] : operands[2];
    case ExprKind::Construct:
        return constructed(expr, type, operands);
    case ExprKind::Swizzle:
        for (unsigned i = 0; i < result.type.size; ++i)
            store(result, i, operands[0], expr->swizzle[i]);
        return result;
    case ExprKind::Index:
        return operands[1].ints[0] < 0 ? std::nullopt
                                       : picked(type, operands[0], static_cast<unsigned>(operands[1].ints[0]));
    case ExprKind::Bad:
    case ExprKind::Text:
    case ExprKind::Postfix:
    case ExprKind::Assign:
    case ExprKind::Call:
        break;
    }
    return std::nullopt;
}

const ConstantValue* ConstantFolder::evaluate(Expr* expr)
{
    if (expr->kind == ExprKind::Variable && !expr->toFloat) // the common case: an index that varies
        return valueOf(expr->symbol);
    fValues.clear();
    bool isConstant = true;
    fWalk(expr,
          [&](Expr* e)
          {
              if (!isConstant)
                  return;
              std::size_t operands = 0;
              for (const Expr* operand = e->first; operand; operand = operand->next)
                  ++operands;
              std::optional<ConstantValue> value = fold(e, fValues.data() + (fValues.size() - operands));
              isConstant = value.has_value();
              if (!isConstant)
                  return;
              fValues.resize(fValues.size() - operands);
              if (e->toFloat && value->type == kIntType)
              {
                  value->floats[0] = static_cast<float>(value->ints[0]);
                  value->type = kFloatType;
              }
              fValues.push_back(std::move(*value));
          });
    return isConstant ? &fKept.emplace_back(std::move(fValues.back())) : nullptr;
}

const ConstantValue* ConstantFolder::evaluate(Expr* expr, const Type& type)
{
    const ConstantValue* value = evaluate(expr);
    return value && value->type == type ? value : nullptr;
}

bool isLiteral(Expr* expr)
{
    bool literal = true;
    ExprWalk walk;
    walk(expr, [&](Expr* e) { literal &= e->kind != ExprKind::Variable && e->kind != ExprKind::Call; });
    return literal;
}

std::string floatText(float value)
{
    std::array<char, 32> buffer;
    const std::to_chars_result result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value);
    std::string text(buffer.data(), result.ptr);
    if (text.find_first_of(".en") == std::string::npos) // "inf" and "nan" are no numbers that a point could mend
        text += ".0";
    return text;
}

std::string valueText(const ConstantValue& value)
{
    if (value.type == kStringType)
        return value.text;
    std::string text;
    for (unsigned i = 0; i < value.count(); ++i)
    {
        if (i > 0)
            text += ", ";
        if (value.type.base == BaseType::Bool)
            text += value.ints[i] ? "true" : "false";
        else
            text += value.type.base == BaseType::Int ? std::to_string(value.ints[i]) : floatText(value.floats[i]);
    }
    return value.type.isScalar() ? text : typeName(value.type) + "(" + text + ")";
}

} // namespace krFrontend
