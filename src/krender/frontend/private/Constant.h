#pragma once
#include "krender/frontend/private/Type.h"

#include <array>
#include <string>

namespace krFrontend
{

/// A value that the front end worked out. Components stand in order; a matrix column by column.
struct ConstantValue
{
    Type type;
    std::array<float, 16> floats{};     ///< of a float or matrix
    std::array<std::int32_t, 4> ints{}; ///< of an int or bool
    std::string text;

    [[nodiscard]] unsigned count() const noexcept
    {
        return type.isMatrix() ? unsigned{type.size} * type.size : type.size;
    }
};

/// The value as KRSL writes it: "0.5", "float3(1.0, 0.5, 0.0)", "true".
[[nodiscard]] std::string valueText(const ConstantValue& value);
/// A float as KRSL writes it: the shortest text that reads back as the same float, with a point or an exponent.
[[nodiscard]] std::string floatText(float value);

} // namespace krFrontend
