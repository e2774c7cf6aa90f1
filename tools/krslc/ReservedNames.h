#pragma once
#include <string_view>

/// Whether every program has a value of that name anyway, which no input declares.
[[nodiscard]] bool isStandardValue(std::string_view name) noexcept;

/// Whether generated programs declare a name or give it a meaning, the standard values aside.
[[nodiscard]] bool isReserved(std::string_view name) noexcept;
