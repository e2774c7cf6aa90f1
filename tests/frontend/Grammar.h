#pragma once
#include <string>
#include <string_view>
#include <vector>

namespace generator
{

/// A type: 'f' float, 'i' int, 'b' bool, each with its components; 'm' a square matrix; 'v' void; the others are samplers.
struct Type
{
    char base = 'f';
    unsigned size = 1;

    friend bool operator==(const Type&, const Type&) = default;
    [[nodiscard]] bool isSampler() const { return std::string_view("fibmv").find(base) == std::string_view::npos; }
};

inline constexpr Type kFloat{'f', 1};
inline constexpr Type kInt{'i', 1};
inline constexpr Type kBool{'b', 1};

[[nodiscard]] std::string nameOf(Type type);

/// A line of programs.grammar, which says what its parts mean.
struct Production
{
    char letter;
    unsigned number;
    std::string bodies;
    std::string text;
};

/// The productions of a category.
[[nodiscard]] const std::vector<Production>& productions(const std::string& category);
/// The words of a category's texts.
[[nodiscard]] const std::vector<std::string>& words(const std::string& category);

/// The types that a letter stands for.
struct Kind
{
    char base = 0;
    unsigned least = 0;
    unsigned most = 0;
    bool isOwn = false;

    [[nodiscard]] bool has(Type type) const { return base == type.base && least <= type.size && type.size <= most; }
};

/// Null where the letter stands for no type.
[[nodiscard]] const Kind* kindOf(char letter);

} // namespace generator
