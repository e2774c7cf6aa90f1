#include "ProgramGenerator.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

namespace
{

/// A type: 'f' float, 'i' int, 'b' bool, each with its components; 'm' a square matrix; 's' a sampler2D; 'v' void.
struct Type
{
    char base = 'f';
    unsigned size = 1;

    friend bool operator==(const Type&, const Type&) = default;
};

constexpr Type kFloat{'f', 1};
constexpr Type kInt{'i', 1};
constexpr Type kBool{'b', 1};

std::string nameOf(Type type)
{
    if (type.base == 's')
        return "sampler2D";
    if (type.base == 'v')
        return "void";
    const std::string stem = type.base == 'f'   ? "float"
                             : type.base == 'i' ? "int"
                             : type.base == 'b' ? "bool"
                                                : "matrix";
    return type.size == 1 ? stem : stem + std::to_string(type.size);
}

struct Variable
{
    std::string name;
    Type type;
    unsigned length = 0; ///< of an array
    bool isWritable = false;
    std::size_t scope = 0;
};

struct Parameter
{
    Type type;
    char mode = 'i'; ///< 'i' in, 'o' out, 'b' both
};

struct Function
{
    std::string name;
    Type result;
    std::vector<Parameter> parameters;
    bool isOverloaded = false;

    [[nodiscard]] bool hasOutput() const
    {
        return std::any_of(parameters.begin(), parameters.end(), [](const Parameter& p) { return p.mode != 'i'; });
    }
};

/// A form of an expression. Results: T float to float4, V float2 to float4, f 3 J (int to int4) i B (bool2 to bool4) b,
/// M a matrix. In the text $ and a letter is an operand, which a digit behind it puts into parentheses where it binds
/// less: T J B M of the result's size; S float or T; U V N C K of a size of the form's own: float2 to float4 twice,
/// matrix, bool2..., int2...; F I b scalars; L P number literals above 0; n x an index within the result's size, n
/// constant; k y the same for the form's own size; D a digit of that. A table's row has several, each with "; " behind it.
struct Form
{
    char result;
    int precedence;
    std::string_view text;
};

constexpr std::array kFormLists{
    Form{'T', 6, "$T6 + $T7; $T6 - $T7; $T6 + $I7; $I6 - $T7; "},
    Form{'T', 7, "$T7 * $T8; $T7 / $L; $T7 / (1.5 + abs($T7)); $T7 * $F8; $F7 * $T8; $T7 * $P; $P * $T8; "},
    Form{'T', 8, "-$T9; +$T9; "},
    Form{'T', 0, "$b1 ? $T1 : $T; "},
    Form{'T', 9,
         "abs($T); sign($T); floor($T); ceil($T); fract($T); frac($T); sin($T); cos($T); "
         "tan(clamp($T, -1.0, 1)); asin(clamp($T, -1, 1)); acos(clamp($T, -0.9, 0.9)); atan($T); "
         "atan($T, abs($T) + 0.5); atan2($S, 1.25 + abs($T)); exp(-abs($T)); exp2(clamp($T, -3.0, 2.0)); "
         "log(1.5 + abs($T)); log2(abs($T) + 0.25); sqrt(abs($T)); inversesqrt(abs($T) + $P); "
         "rsqrt(0.5 + abs($T)); pow(abs($T) + 0.1, $L); pow(1 + abs($T), $P); pow(0.5, clamp($T, -2, 2)); "
         "mod($T, $L); mod($T, 0.5 + abs($T)); min($T, $S); max($S, $T); max($T, 0); clamp($T, -$L, $L); "
         "clamp($T, -0.5, abs($T)); mix($T, $T, $S); mix($S, $T, 0.25); lerp($T, $S, $S); step($S, $T); "
         "step($T, $S); smoothstep(0, $P, $T); smoothstep(-$L, 1.5, $T); saturate($T); radians($T); "
         "degrees($T * 0.01); "},
    Form{'V', 9,
         "normalize(abs($T) + 0.5); reflect($T, normalize(abs($T) + 1)); "
         "refract(normalize(abs($T) + 0.25), normalize(1.5 - saturate($T)), 0.75); faceforward($T, $T, $T); "
         "mul($M, $T); mul($T, $M); $M9[$n]; $M9[$x]; "},
    Form{'V', 7, "$M7 * $T8; $T7 * $M8; "},
    Form{'f', 9,
         "dot($U, $U); length($U); distance($U, $U); float($I); float($b); $V9[$y]; $V9[$k]; $N9[$k][$k]; "
         "$N9[$y][$y]; $N9[$k].y; "},
    Form{'3', 9, "cross($T, $T); "},
    Form{'J', 6, "$J6 + $J7; $J6 - $J7; "},
    Form{'J', 7, "$J7 * $J8; $J7 / $P; $J7 * $P; "},
    Form{'J', 8, "-$J9; "},
    Form{'J', 0, "$b1 ? $J1 : $J; "},
    Form{'i', 7, "$I7 % $P; $I7 % $P * $P % $P; "},
    Form{'i', 9, "int(clamp($F, -9.0, 9.0)); $K9[$y]; "},
    Form{'b', 5, "$F6 < $F6; $F6 >= $I6; $I6 > $I6; $I6 <= $P; "},
    Form{'b', 4,
         "$F5 != $I5; $I5 == $I5; $V5 == $V5; $V5 != $V5; $K5 == $K5; $K5 != $K5; $C5 == $C5; $C5 != $C5; "
         "$N5 == $N5; $N5 != $N5; $b5 == $b5; "},
    Form{'b', 1, "$b1 || $b2; "},
    Form{'b', 2, "$b2 ^^ $b3; "},
    Form{'b', 3, "$b3 && $b4; "},
    Form{'b', 8, "!$b9; "},
    Form{'b', 0, "$b1 ? $b1 : $b; "},
    Form{'b', 9, "any($C); all($C); bool($I); $C9[$k]; "},
    Form{'B', 9,
         "lessThan($T, $T); lessThanEqual($T, $T); greaterThan($J, $J); greaterThanEqual($J, $J); "
         "lessThan($J, $J); equal($T, $T); equal($J, $J); notEqual($B, $B); not($B); "},
    Form{'B', 0, "$b1 ? $B1 : $B; "},
    Form{'M', 6, "$M6 + $M7; $M6 - $M7; "},
    Form{'M', 7, "$M7 * $M8; $M7 * $F8; $F7 * $M8; $M7 * $P; $M7 / $L; "},
    Form{'M', 8, "-$M9; "},
    Form{'M', 9, "mul($M, $M); transpose($M); "},
    Form{'M', 0, "$b1 ? $M1 : $M; "},
};

/// The same, each form by itself.
std::vector<Form> splitForms()
{
    std::vector<Form> forms;
    for (const Form& list : kFormLists)
        for (std::size_t at = 0, end = 0; (end = list.text.find("; ", at)) != std::string_view::npos; at = end + 2)
            forms.push_back({list.result, list.precedence, list.text.substr(at, end - at)});
    return forms;
}

const std::vector<Form> kForms = splitForms();

/// The type that a letter of a form stands for.
struct Operand
{
    char letter;
    char base;
    unsigned size; ///< 0: the result's, or the form's own
    bool isOwn;
};

constexpr std::array kOperands{Operand{'T', 'f', 0, false}, Operand{'J', 'i', 0, false}, Operand{'B', 'b', 0, false},
                               Operand{'M', 'm', 0, false}, Operand{'U', 'f', 0, true},  Operand{'V', 'f', 0, true},
                               Operand{'K', 'i', 0, true},  Operand{'C', 'b', 0, true},  Operand{'N', 'm', 0, true},
                               Operand{'F', 'f', 1, false}, Operand{'I', 'i', 1, false}, Operand{'b', 'b', 1, false}};

bool gives(char result, Type type)
{
    switch (result)
    {
    case 'T':
        return type.base == 'f';
    case 'V':
        return type.base == 'f' && type.size > 1;
    case 'f':
        return type == kFloat;
    case '3':
        return type == Type{'f', 3};
    case 'J':
        return type.base == 'i';
    case 'i':
        return type == kInt;
    case 'b':
        return type == kBool;
    case 'B':
        return type.base == 'b' && type.size > 1;
    default:
        return type.base == 'm';
    }
}

// Names that targets reserve, declare or give a function, and plain ones that programs of ours use.
constexpr std::array<std::string_view, 40> kOddNames{
    "sample", "half",     "input",  "texture", "buffer",    "fixed",  "vec3",   "mat2",    "fract",         "frac",
    "lerp",   "mix",      "rsqrt",  "step",    "dot",       "any",    "mul",    "fmod",    "tex2D",         "f4tex2D",
    "ddx",    "float4x4", "double", "main",    "IN",        "OUT",    "packed", "varying", "attribute",     "kr_mod",
    "gl_pos", "value_1",  "in",     "matrix",  "technique", "choice", "all",    "not",     "modelViewProj", "xyz"};

class Generator
{
public:
    Generator(std::uint64_t seed, bool isDrawable)
        : fState(seed * 0x9E3779B97F4A7C15u + 0x1234567), fIsDrawable(isDrawable)
    {
    }

    GeneratedProgram make()
    {
        std::vector<std::string> parts;
        for (unsigned i = below(4); i-- > 0;)
            parts.push_back(constant());
        parts.emplace_back("const int kCount = 3;\n");
        if (chance(15)) // in place of a built-in
            parts.push_back(pick(std::array<std::string, 3>{"float3 fract(float3 x) { return cos(x) * 0.5; }\n",
                                                            "float exp2(float x)\n{\n    output = sin(x);\n}\n",
                                                            "float2 ceil(float2 v) { return v.yx; }\n"}));
        for (unsigned i = below(6); i-- > 0;)
            parts.push_back(function());
        GeneratedProgram program;
        program.material = "m";
        for (unsigned i = below(3); i-- > 0;)
        {
            program.lights.emplace_back(i == 0 ? "sun" : "lamp");
            parts.push_back(light(program.lights.back()));
        }
        parts.push_back(material());
        for (std::size_t i = parts.size(); i > 1; --i)
            std::swap(parts[i - 1], parts[below(static_cast<unsigned>(i))]);
        for (const std::string& part : parts)
            program.source += part + (chance(5) ? ";\n" : "\n");
        return program;
    }

private:
    /// An expression and how strongly its outermost operator binds, from 0.
    struct Text
    {
        std::string text;
        int precedence = 9;
    };

    unsigned below(unsigned end)
    {
        fState += 0x9E3779B97F4A7C15u;
        std::uint64_t z = fState;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return static_cast<unsigned>((z ^ (z >> 31)) % end);
    }
    bool chance(unsigned percent) { return below(100) < percent; }
    unsigned from(unsigned first, unsigned last) { return first + below(last - first + 1); }
    template <class List>
    typename List::value_type pick(const List& list)
    {
        return list[below(static_cast<unsigned>(list.size()))];
    }

    // Types and names.

    Type anyType()
    {
        const unsigned kind = below(10);
        if (kind < 6)
            return {'f', from(1, 4)};
        if (kind < 8)
            return {'i', chance(60) ? 1 : from(2, 4)};
        return {kind == 8 ? 'b' : 'm', kind == 8 ? (chance(60) ? 1 : from(2, 4)) : from(2, 4)};
    }

    [[nodiscard]] const Variable* visible(std::string_view name) const
    {
        for (std::size_t i = fVariables.size(); i-- > 0;)
            if (fVariables[i].name == name)
                return &fVariables[i];
        return nullptr;
    }

    /// A name for a new local, which may hide one of an outer scope.
    std::string newName()
    {
        for (unsigned tries = 0; chance(25) && tries < 4; ++tries)
        {
            const bool hides = chance(50) && !fVariables.empty() && fScope > 1;
            std::string name(hides ? pick(fVariables).name : std::string(pick(kOddNames)));
            const Variable* outer = visible(name);
            if (!fLocked.contains(name) && !name.starts_with("out") && (!outer || outer->scope < fScope) &&
                !std::exchange(fHiding, true))
                return name;
        }
        return "v" + std::to_string(fNumber++);
    }

    std::string declare(const std::string& name, Type type, bool isWritable, unsigned length = 0)
    {
        fVariables.push_back({name, type, length, isWritable, fScope});
        return name;
    }

    /// Those in sight that may be read and that a test accepts.
    template <class Test>
    std::vector<const Variable*> variables(Test test)
    {
        std::vector<const Variable*> found;
        for (const Variable& variable : fVariables)
            if (visible(variable.name) == &variable && !fLocked.contains(variable.name) && test(variable))
                found.push_back(&variable);
        return found;
    }

    /// Whether all functions that a text calls are in sight, and calls are allowed.
    [[nodiscard]] bool callsAreGood(std::string_view text) const
    {
        for (std::size_t open = text.find('('); open != std::string_view::npos; open = text.find('(', open + 1))
        {
            std::size_t begin = open;
            while (begin > 0 && std::isalnum(static_cast<unsigned char>(text[begin - 1])) != 0)
                --begin;
            const std::string_view name = text.substr(begin, open - begin);
            const bool isType = name == "float" || name == "int" || name == "bool";
            if (!name.empty() && !isType && (fConstantOnly || visible(name)))
                return false;
        }
        return true;
    }

    // Expressions.

    static std::string wrap(const Text& text, int least)
    {
        return text.precedence < least ? "(" + text.text + ")" : text.text;
    }

    Text literal(Type type)
    {
        constexpr std::array<std::string_view, 12> kFloats{"0.5", ".25", "1.",   "0.75f", "2.5e-1", "1.25",
                                                           "0.0", "1.5", "5E-1", "0.1",   "0.9",    "12.5e-01"};
        constexpr std::array<std::string_view, 6> kInts{"0", "1", "2", "3", "7", "0x5"};
        if (type == kFloat)
            return {chance(20) ? "-" + std::string(pick(kFloats)) : std::string(pick(kFloats)), 8};
        if (type == kInt)
            return {std::string(pick(kInts))};
        if (type == kBool)
            return {chance(50) ? "true" : "false"};
        const unsigned needed = chance(25) ? 1 : type.base == 'm' ? type.size * type.size : type.size;
        std::string text = nameOf(type) + "(";
        for (unsigned i = 0; i < needed; ++i)
            text += (i > 0 ? ", " : "") + literal({type.base == 'm' ? 'f' : type.base, 1}).text;
        return {text + ")"};
    }

    Text construct(Type type, unsigned depth)
    {
        std::string text = nameOf(type) + "(";
        const unsigned needed = type.base == 'm' ? type.size * type.size : type.size;
        if (needed > 1 && chance(20))
            return {text + operand({pick(std::string_view("fi")), 1}, depth) + ")"};
        if (type.base == 'm' && type.size < 4 && chance(15))
            return {text + operand({'m', from(type.size, 4)}, depth) + ")"};
        for (unsigned given = 0; given < needed;)
        {
            const unsigned left = needed - given;
            unsigned size = std::min(from(1, 4), type.base == 'm' ? left : left + 1);
            if (type.base == 'm' && left >= type.size && chance(70))
                size = type.size;
            const char base = chance(80) ? (type.base == 'm' ? 'f' : type.base) : pick(std::string_view("fi"));
            text += (given > 0 ? ", " : "") + operand({base, std::min(size, 4u)}, depth);
            given += size;
        }
        return {text + ")"};
    }

    std::string operand(Type type, unsigned depth, int least = 0)
    {
        return wrap(expression(type, depth > 0 ? depth - 1 : 0), least);
    }

    std::string letters(unsigned size, unsigned count, bool isTarget)
    {
        std::string set = chance(70) ? "xyzw" : "rgba";
        set.resize(size);
        std::string found;
        while (found.size() < count)
        {
            const std::size_t at = below(static_cast<unsigned>(set.size()));
            found += set[at];
            if (isTarget)
                set.erase(at, 1);
        }
        return found;
    }

    /// A variable, or a part of one.
    std::optional<Text> leaf(Type type)
    {
        const auto list = variables(
            [&](const Variable& v)
            {
                const bool isPart = v.type.base == type.base && type.base != 'm' && v.type.size > 1;
                return (!fConstantOnly || v.scope == 0) && (v.type == type || (isPart && v.length == 0));
            });
        if (list.empty())
            return std::nullopt;
        const Variable& variable = *pick(list);
        if (variable.length > 0)
            return Text{variable.name + "[" + index(variable.length, chance(50)) + "]"};
        if (variable.type == type && (type.size == 1 || type.base == 'm' || chance(70)))
            return Text{variable.name};
        return Text{variable.name + "." + letters(variable.type.size, type.size, false)};
    }

    std::string index(unsigned size, bool isConstant)
    {
        if (isConstant || fConstantOnly || visible("clamp"))
            return std::to_string(below(size));
        return "int(clamp(" + operand(kFloat, 1) + " * 2.0, 0.0, " + std::to_string(size - 1) + ".25))";
    }

    [[nodiscard]] bool isCallable(const Function& function) const
    {
        const bool samples = std::any_of(function.parameters.begin(), function.parameters.end(),
                                         [](const Parameter& p) { return p.type.base == 's'; });
        return !visible(function.name) && (!samples || hasSampler());
    }

    std::optional<Text> call(Type type, unsigned depth)
    {
        std::vector<const Function*> fitting;
        for (const Function& f : fFunctions)
            if (f.result == type && !f.hasOutput() && isCallable(f))
                fitting.push_back(&f);
        if (fitting.empty() || fConstantOnly)
            return std::nullopt;
        return Text{callOf(*pick(fitting), depth, {})};
    }

    std::string callOf(const Function& function, unsigned depth, const std::vector<std::string>& outputs)
    {
        std::string text = function.name + "(";
        std::size_t output = 0;
        for (std::size_t i = 0; i < function.parameters.size(); ++i)
        {
            const Parameter& parameter = function.parameters[i];
            text += i > 0 ? ", " : "";
            if (parameter.mode != 'i')
                text += outputs[output++];
            else if (parameter.type.base == 's')
                text += "grain";
            else
                text += function.isOverloaded ? operand(parameter.type, depth) : wanted(parameter.type, depth);
        }
        return text + ")";
    }

    /// A value for a place that would turn an int into a float.
    std::string wanted(Type type, unsigned depth) { return operand(type == kFloat && chance(15) ? kInt : type, depth); }

    Text expression(Type type, unsigned depth)
    {
        if (depth == 0 || chance(25))
        {
            if (chance(75))
                if (auto found = leaf(type))
                    return *found;
            if (type == kBool && chance(85))
                return {fill("$F6 < $F6", 1, 0), 5};
            return literal(type);
        }
        if (chance(12))
            if (auto found = call(type, depth))
                return *found;
        if (type.size > 1 && chance(15))
            return construct(type, depth);
        if (type.base != 'm' && chance(10))
        {
            const unsigned size = std::max(type.size, from(2, 4));
            return {operand({type.base, size}, depth, 9) + "." + letters(size, type.size, false)};
        }
        if (type.size == 4 && type.base == 'f' && !fConstantOnly && chance(10) && hasSampler())
            return texture(depth);
        for (;;)
        {
            const Form& form = pick(kForms);
            if (gives(form.result, type) && callsAreGood(form.text))
                return {fill(form.text, type.size, depth), form.precedence};
        }
    }

    [[nodiscard]] bool hasSampler() const
    {
        const Variable* grain = visible("grain");
        return grain && grain->type.base == 's';
    }

    Text texture(unsigned depth)
    {
        const Variable* sky = visible("sky");
        if (chance(60) || !sky || sky->type.base != 'c')
            return {chance(70) ? "texture2D(grain, " + operand({'f', 2}, depth) + ")"
                               : "texture2DProj(grain, float3(" + operand({'f', 2}, depth) + ", 1.5))"};
        return {"textureCube(sky, " + operand({'f', 3}, depth) + ")"};
    }

    std::string fill(std::string_view text, unsigned size, unsigned depth)
    {
        const unsigned own = from(2, 4);
        std::string filled;
        for (std::size_t i = 0; i < text.size(); ++i)
        {
            if (text[i] != '$')
            {
                filled += text[i];
                continue;
            }
            const char letter = text[++i];
            const bool isDigit = i + 1 < text.size() && std::isdigit(static_cast<unsigned char>(text[i + 1])) != 0;
            const int least = isDigit ? text[++i] - '0' : 0;
            const auto known = std::find_if(kOperands.begin(), kOperands.end(),
                                            [letter](const Operand& row) { return row.letter == letter; });
            if (known != kOperands.end())
                filled += operand({known->base, known->size > 0 ? known->size
                                                : known->isOwn  ? own
                                                                : size},
                                  depth, least);
            else if (letter == 'S')
                filled += operand({'f', chance(50) ? 1 : size}, depth, least);
            else if (letter == 'L')
                filled += pick(std::array<std::string_view, 4>{"0.5", "1.25", "2.0", "0.75"});
            else if (letter == 'P')
                filled += std::to_string(from(1, 4));
            else
                filled += index(letter == 'n' || letter == 'x' ? size : own, letter == 'n' || letter == 'k');
        }
        return filled;
    }

    /// A value that does not grow, however often it comes round.
    std::string tame(Type type)
    {
        const unsigned depth = from(1, 3);
        if (type.base == 'i')
            return type.size > 1 ? construct(type, 0).text : wrap(expression(type, depth), 7) + " % 17";
        if (type.base == 'm')
            return nameOf(type) + "(" + columns(type.size) + ")";
        if (type.base != 'f')
            return operand(type, depth);
        if (type == kFloat && chance(10))
            return std::string(literal(kInt).text);
        const std::string_view form =
            pick(std::array<std::string_view, 4>{"sin($T)", "clamp($T, -1, 1.0)", "saturate($T)", "cos($T)"});
        return callsAreGood(form) ? fill(form, type.size, depth) : literal(type).text;
    }

    std::string columns(unsigned size)
    {
        std::string text;
        for (unsigned i = 0; i < size; ++i)
            text += (i > 0 ? ", " : "") + tame({'f', size});
        return text;
    }

    // Statements.

    void line(const std::string& text)
    {
        fText += std::string(std::size_t{fIndent} * 4, ' ') + text + "\n";
        fHiding = false;
    }

    struct Target
    {
        std::string text;
        Type type;
        std::string root;
        bool isColumn = false;
    };

    std::optional<Target> target()
    {
        const auto list = variables([](const Variable& v) { return v.isWritable; });
        if (list.empty())
            return std::nullopt;
        const Variable& v = *pick(list);
        Target found{v.name, v.type, v.name, false};
        if (v.length > 0)
            found.text += "[" + index(v.length, chance(60)) + "]";
        if (v.type.base == 'm' && chance(70))
        {
            found.text += "[" + index(v.type.size, chance(60)) + "]";
            found.type = {'f', v.type.size};
            found.isColumn = true;
        }
        if (found.type.base == 'm' || found.type.size == 1 || chance(40))
            return found;
        if (chance(40))
        {
            found.text += "[" + index(found.type.size, chance(60)) + "]";
            found.type.size = 1;
            found.isColumn = false;
            return found;
        }
        const unsigned count = from(1, found.type.size);
        found.text += "." + letters(found.type.size, count, true);
        found.type.size = count;
        return found;
    }

    void assign()
    {
        const auto to = target();
        if (!to)
            return;
        const bool isNumber = to->type.base == 'f' || to->type == kInt;
        if (to->type.base == 'f' && chance(35))
        {
            const unsigned op = below(4);
            const std::string value = op == 3 ? "(1.5 + abs(" + operand(to->type, 2) + "))" : tame(to->type);
            if (callsAreGood(value))
                line(to->text + " " + "+-*/"[op] + "= " + value + ";");
            return;
        }
        if (to->type == kInt && chance(30))
            line(to->text + (chance(50) ? " %= " : " /= ") + std::to_string(from(2, 5)) + ";");
        else if (isNumber && fLoops == 0 && chance(15))
            line(chance(50) ? to->text + (chance(50) ? "++;" : "--;") : "++" + to->text + ";");
        else if (to->type.base == 'm' && chance(30))
            line(to->text +
                 (chance(50) ? " *= " + operand(kFloat, 1, 9) + " * 0.1;" : " *= " + tame(to->type) + " / 4;"));
        else if (to->type.base == 'f' && to->type.size > 1 && !to->isColumn && chance(20))
            line(to->text + " *= " + tame({'m', to->type.size}) + " * 0.25;");
        else if (const auto other = target(); other && other->type == to->type && other->root != to->root && chance(40))
            line(to->text + " = " + other->text + " = " + tame(to->type) + ";");
        else
            line(to->text + " = " + tame(to->type) + ";");
    }

    void declaration()
    {
        const Type type = anyType();
        if (chance(12))
        {
            const unsigned length = chance(40) ? 3 : from(1, 4);
            const std::string name = declare(newName(), type, true, length);
            line(nameOf(type) + " " + name + "[" + count(length) + "];");
            fLocked.insert(name);
            for (unsigned i = 0; i < length; ++i)
                line(name + "[" + std::to_string(i) + "] = " + tame(type) + ";");
            fLocked.erase(name);
            return;
        }
        const bool isConst = chance(15);
        if (!isConst && chance(15))
        {
            const std::string name = declare(newName(), type, true);
            line(nameOf(type) + " " + name + ";");
            fLocked.insert(name);
            line("if (" + operand(kBool, 2) + ")");
            line("    " + name + " = " + tame(type) + ";");
            line("else");
            line("    " + name + " = " + tame(type) + ";");
            fLocked.erase(name);
            return;
        }
        std::string text = (isConst ? "const " : "") + nameOf(type) + " ";
        for (unsigned i = chance(20) ? 2 : 1; i-- > 0;)
        {
            // A name is known behind its own value: the value may call the function, or read the variable, that it hides.
            const std::string value = tame(type);
            const std::string name = newName();
            text += name + " = " + value + (i > 0 ? ", " : ";");
            declare(name, type, !isConst);
        }
        line(text);
    }

    std::string count(unsigned n) { return n == 3 && !visible("kCount") ? "kCount" : std::to_string(n); }

    template <class Body>
    void block(Body body)
    {
        line("{");
        scoped(body);
        line("}");
    }

    template <class Body>
    void scoped(Body body)
    {
        ++fIndent;
        ++fScope;
        const std::size_t known = fVariables.size();
        body();
        fVariables.resize(known);
        --fScope;
        --fIndent;
    }

    void body(unsigned depth)
    {
        if (chance(25))
        {
            // One statement without braces: a declaration would be of no use there.
            const auto to = target();
            ++fIndent;
            line(to ? to->text + " = " + tame(to->type) + ";" : ";");
            --fIndent;
        }
        else
            block([&] { statements(depth > 0 ? depth - 1 : 0); });
    }

    void branch(unsigned depth)
    {
        line("if (" + operand(kBool, 3) + ")");
        body(depth);
        while (chance(35))
        {
            line("else if (" + operand(kBool, 2) + ")");
            body(depth);
        }
        if (chance(50))
        {
            line("else");
            body(depth);
        }
    }

    void loop(unsigned depth)
    {
        // The counter is nobody else's to change: it is declared so.
        const unsigned end = from(1, 4);
        const std::string limit = count(end);
        const std::string i = "i" + std::to_string(fNumber++);
        const auto inside = [&]
        {
            declare(i, kInt, false);
            if (chance(35))
                line("if (" + operand(kBool, 2) + ")" + (chance(50) ? " break;" : " continue;"));
            statements(depth > 0 ? depth - 1 : 0);
        };
        const auto counted = [&]
        {
            line(chance(50) ? "++" + i + ";" : i + " += 1;");
            inside();
        };
        ++fLoops;
        switch (below(6))
        {
        case 0:
            line("int " + i + " = 0;");
            line("while (" + i + " < " + limit + (chance(40) ? " && " + operand(kBool, 2, 4) : "") + ")");
            block(counted);
            break;
        case 1:
            line("int " + i + " = 0;");
            line("do");
            block(counted);
            line("while (" + i + " < " + limit + ");");
            break;
        case 2:
            line("int " + i + " = 0;");
            line(chance(50) ? "while (true)" : "for (;;)");
            block(
                [&]
                {
                    line("if (++" + i + " > " + limit + ") break;");
                    inside();
                });
            break;
        case 3:
            line("int " + i + ";");
            line("for (" + i + " = " + std::to_string(end) + "; " + i + " > 0; " + i + "--)");
            block(inside);
            break;
        case 4:
            line("for (int " + i + " = 0, j" + i + " = 2; " + i + " < " + limit + "; " + i + " += 1)");
            block(inside);
            break;
        default:
            line("for (int " + i + " = 0; " + i + " < " + limit + "; ++" + i + ")");
            block(inside);
            break;
        }
        --fLoops;
    }

    /// Statements whose order of effects the language fixes.
    void effect()
    {
        const auto list =
            variables([](const Variable& v) { return v.isWritable && v.type == kFloat && v.length == 0; });
        if (list.empty() || visible("clamp"))
            return;
        const std::string x = pick(list)->name;
        fLocked.insert(x);
        const std::string step =
            "(" + x + " = clamp(" + x + " + " + operand(kFloat, 2, 7) + ", -1, 1)) > " + literal(kFloat).text;
        const std::string value = operand(kFloat, 1);
        const std::string first = operand(kBool, 2, 4);
        const std::string second = operand(kBool, 2, 4);
        const unsigned kind = below(6);
        const std::string name = kind == 5 ? "n" + std::to_string(fNumber++) : newName();
        fLocked.erase(x);
        switch (kind)
        {
        case 0:
            line("bool " + name + " = " + first + " && " + step + ";");
            declare(name, kBool, true);
            break;
        case 1:
            line("bool " + name + " = " + first + " || (" + second + " && " + step + ");");
            declare(name, kBool, true);
            break;
        case 2:
            line("float " + name + " = " + first + " ? (" + x + " *= 0.5) : " + value + ";");
            declare(name, kFloat, true);
            break;
        case 3:
            line("if (" + first + " && " + step + " || " + second + ")");
            body(0);
            break;
        case 4:
            line(first + " ? " + x + " -= 0.125 : (" + x + " = 0.25);");
            break;
        default:
            line("int " + name + " = 0;");
            line("while (" + name + "++ < 2 && " + step + ")");
            line("    ;");
            declare(name, kInt, false);
            break;
        }
    }

    /// A call of a function that has outputs, all of them different variables that nothing else in the statement reads.
    void outCall()
    {
        std::vector<const Function*> fitting;
        for (const Function& f : fFunctions)
            if (f.hasOutput() && isCallable(f))
                fitting.push_back(&f);
        if (fitting.empty())
            return;
        const Function& function = *pick(fitting);
        std::vector<std::string> outputs;
        std::vector<std::string> locked;
        for (const Parameter& parameter : function.parameters)
        {
            if (parameter.mode == 'i')
                continue;
            const auto to = target();
            if (to && to->type == parameter.type && !to->isColumn && chance(70))
            {
                outputs.push_back(to->text);
                locked.push_back(to->root);
            }
            else
            {
                const std::string name = "o" + std::to_string(fNumber++);
                line(nameOf(parameter.type) + " " + name + " = " + tame(parameter.type) + ";");
                declare(name, parameter.type, true);
                outputs.push_back(name);
                locked.push_back(name);
            }
            if (!fLocked.insert(locked.back()).second)
                locked.pop_back();
        }
        const std::string text = callOf(function, 2, outputs);
        const std::string name = newName();
        for (const std::string& one : locked)
            fLocked.erase(one);
        if (function.result.base == 'v' || chance(20))
            line(text + ";");
        else
        {
            line(nameOf(function.result) + " " + name + " = " + text + ";");
            declare(name, function.result, true);
        }
    }

    void statements(unsigned depth)
    {
        for (unsigned i = from(1, depth > 1 ? 6 : 3); i-- > 0;)
            statement(depth);
    }

    void statement(unsigned depth)
    {
        if (fBudget == 0)
            return;
        --fBudget;
        const unsigned kind = below(100);
        if (kind < 28)
            declaration();
        else if (kind < 58)
            assign();
        else if (kind < 68)
            outCall();
        else if (kind < 76)
            effect();
        else if (kind < 79)
            line(chance(50) ? ";" : "// nothing; to see \"here\"");
        else if (kind < 82 && fKind != 'o')
            leave();
        else if (depth == 0)
            assign();
        else if (kind < 85)
            block([&] { statements(depth - 1); });
        else if (kind < 91)
            branch(depth);
        else if (kind < 96 || fKind != 'm' || fInIlluminance)
        {
            if (fLoops < 2)
                loop(depth);
        }
        else
            illuminance(depth);
    }

    void illuminance(unsigned depth)
    {
        line("illuminance");
        fInIlluminance = true;
        const unsigned loops = std::exchange(fLoops, 1u);
        block(
            [&]
            {
                for (const char* name :
                     {"gLightWorldDir", "gLightAmbientColor", "gLightDiffuseColor", "gLightSpecularColor"})
                    if (chance(70))
                        fVariables.push_back({name, {'f', 3}, 0, false, fScope});
                statements(depth - 1);
                if (visible("gLightDiffuseColor"))
                    line("outRGBA.rgb += 0.2 * gLightDiffuseColor;");
            });
        fLoops = loops;
        fInIlluminance = false;
    }

    void leave()
    {
        const std::string condition = "if (" + operand(kBool, 2, 4) + " && " + operand(kFloat, 1, 6) + " > 0.8) ";
        if (fKind == 'f' && fResult.base != 'v')
            line(condition + (chance(50) ? "return " : "return\n            ") + tame(fResult) + ";");
        else if (fKind == 'm' && chance(30))
            line(condition + "discard;");
        else
            line(condition + "return;");
    }

    // Functions, materials and lights.

    std::string constant()
    {
        fConstantOnly = true;
        const Type type = anyType();
        const std::string name = "kValue" + std::to_string(fNumber++);
        std::string text = "const " + nameOf(type) + " " + name + " = " + wanted(type, 3) + ";\n";
        fConstantOnly = false;
        declare(name, type, false);
        return text;
    }

    void beginBody(unsigned budget)
    {
        fText.clear();
        fIndent = 0;
        fBudget = budget;
    }

    void provided()
    {
        for (const char* name : {"gWorldPos", "gWorldNormal", "gWorldTangent"})
            if (chance(30))
                fVariables.push_back({name, {'f', 3}, 0, false, fScope});
        if (chance(30))
            fVariables.push_back({"gEyePos", {'f', 4}, 0, false, fScope});
    }

    std::string function()
    {
        Function function;
        function.result = chance(15) ? Type{'v', 0} : anyType();
        if (function.result.base == 'b' && function.result.size > 1)
            function.result = kBool;
        function.name = "f" + std::to_string(fNumber++);
        for (unsigned i = below(4); i-- > 0;)
        {
            Parameter parameter{anyType(), "iiiob"[below(5)]};
            if (parameter.type.base == 'b')
                parameter.type = kBool;
            function.parameters.push_back(parameter);
        }
        if (function.result.base == 'v' && !function.hasOutput())
            function.parameters.push_back({kFloat, 'o'});
        if (chance(15))
            function.parameters.push_back({{'s', 0}, 'i'});
        if (chance(30) && !fFunctions.empty())
            function.name = fFunctions.back().name;
        else if (chance(20))
            function.name =
                std::string(pick(std::array<std::string_view, 6>{"sample", "half", "tex2D", "noise", "main", "vec3"}));
        const auto isSame = [&](const Function& f)
        {
            return f.name == function.name &&
                   std::equal(f.parameters.begin(), f.parameters.end(), function.parameters.begin(),
                              function.parameters.end(), [](const auto& a, const auto& b) { return a.type == b.type; });
        };
        if (std::any_of(fFunctions.begin(), fFunctions.end(), isSame))
            function.name = "g" + std::to_string(fNumber++);
        for (Function& other : fFunctions)
            if (other.name == function.name)
                other.isOverloaded = function.isOverloaded = true;

        fKind = 'f';
        fResult = function.result;
        std::string head = nameOf(function.result) + " " + function.name + "(";
        std::string declared = head;
        beginBody(8);
        line("{");
        scoped(
            [&]
            {
                provided();
                for (const Parameter& parameter : function.parameters)
                {
                    const std::string name = parameter.type.base == 's' ? "grain"
                                             : chance(20)
                                                 ? std::string(pick(kOddNames)) + "_" + std::to_string(fNumber++)
                                                 : "p" + std::to_string(fNumber++);
                    const char* mode = parameter.mode == 'o' ? "out " : parameter.mode == 'b' ? "inout " : "";
                    head += (head.ends_with('(') ? "" : ", ") + (mode + nameOf(parameter.type)) + " " + name;
                    declared += (declared.ends_with('(') ? "" : ", ") + (mode + nameOf(parameter.type)) + " q" +
                                std::to_string(fNumber++);
                    if (parameter.mode == 'o')
                        line(name + " = " + tame(parameter.type) + ";");
                    declare(name, parameter.type, parameter.type.base != 's');
                }
                functionBody(function);
            });
        line("}");
        fFunctions.push_back(function);
        return (chance(20) ? declared + ");\n" : "") + head + ")\n" + fText;
    }

    void functionBody(const Function& function)
    {
        const Type result = function.result;
        if (result.base != 'v' && chance(40))
        {
            line("output = " + tame(result) + ";");
            fVariables.push_back({"output", result, 0, true, fScope});
            statements(2);
            if (chance(40))
                line("return " + tame(result) + ";");
            return;
        }
        statements(2);
        if (result.base != 'v')
            line("return " + tame(result) + ";");
    }

    std::string metadata(const std::string& name)
    {
        if (!chance(30))
            return "";
        return " [[ string label = \"The " + name + "\", float min = 0, float max = " + std::to_string(from(1, 4)) +
               " ]]";
    }

    std::string uniform(const std::string& name, Type type)
    {
        std::string text = "uniform " + nameOf(type) + " " + name;
        if (chance(40))
        {
            fConstantOnly = true;
            text += " = " + operand(type, 2);
            fConstantOnly = false;
        }
        text += metadata(name);
        declare(name, type, false);
        return text;
    }

    std::string inputName()
    {
        const std::string name(pick(kOddNames));
        return chance(25) && !visible(name) ? name : "u" + std::to_string(fNumber++);
    }

    std::string material()
    {
        fKind = 'm';
        beginBody(28);
        std::string head = "material m(";
        scoped(
            [&]
            {
                --fIndent;
                for (unsigned i = below(4); i-- > 0;)
                {
                    Type type = anyType();
                    if (type.base == 'b' || (fIsDrawable && type.base == 'i' && type.size > 1))
                        type = kFloat;
                    head += "\n    " + uniform(inputName(), type) + ",";
                }
                if (chance(50))
                {
                    head += "\n    uniform sampler2D grain,";
                    declare("grain", {'s', 0}, false);
                    if (chance(50))
                    {
                        head += "\n    uniform samplerCube sky,";
                        declare("sky", {'c', 0}, false);
                    }
                }
                for (unsigned i = below(3); i-- > 0;)
                {
                    const std::string name = inputName();
                    const Type type{'f', from(1, 4)};
                    head += "\n    vertex " + nameOf(type) + " " + name + ",";
                    declare(name, type, false);
                }
                provided();
                head += "\n    out float4 outRGBA)\n";
                line("{");
                ++fIndent;
                line("outRGBA = float4(" + tame({'f', 3}) + ", 1.0);");
                fVariables.push_back({"outRGBA", {'f', 4}, 0, true, fScope});
                if (chance(20))
                {
                    line("float3 slope = fwidth(gWorldPos) + abs(dFdx(gWorldNormal)) + ddy(gWorldPos);");
                    declare("slope", {'f', 3}, true);
                }
                statements(3);
                statements(3);
                for (const Variable* v : variables(
                         [](const Variable& one) { return one.type.base == 'f' && one.length == 0 && one.scope > 0; }))
                    if (v->name != "outRGBA" && !visible("dot") && chance(60))
                        line("outRGBA += float4(0.2 * dot(" + v->name + ", " + v->name + "), 0.1, 0.3, 0.0);");
                line("outRGBA = float4(abs(sin(outRGBA.rgb)), 1.0);");
                --fIndent;
                ++fIndent;
            });
        line("}");
        return head + fText;
    }

    std::string light(const std::string& name)
    {
        fKind = 'l';
        beginBody(8);
        std::string head = "light " + name + "(";
        line("{");
        scoped(
            [&]
            {
                for (unsigned i = below(3); i-- > 0;)
                    head += "\n    " + uniform(inputName(), {'f', chance(50) ? 3u : 1u}) + ",";
                provided();
                for (const char* output :
                     {"outLightWorldDir", "outLightAmbientColor", "outLightDiffuseColor", "outLightSpecularColor"})
                {
                    head += std::string("\n    out float3 ") + output + ",";
                    line(std::string(output) + " = " + tame({'f', 3}) + ";");
                    fVariables.push_back({output, {'f', 3}, 0, true, fScope});
                }
                statements(2);
            });
        head.pop_back();
        line("}");
        return head + ")\n" + fText;
    }

    std::uint64_t fState;
    bool fIsDrawable;
    std::string fText;
    unsigned fIndent = 0;
    unsigned fNumber = 0;
    unsigned fBudget = 0; ///< statements that may still come
    unsigned fLoops = 0;
    std::size_t fScope = 0;
    char fKind = 'm'; ///< of the body: 'm' material, 'l' light, 'f' function
    Type fResult;
    bool fConstantOnly = false;
    bool fInIlluminance = false;
    bool fHiding = false; ///< the statement has a name that hides another one: another might clash with it
    std::vector<Variable> fVariables;
    std::vector<Function> fFunctions;
    std::set<std::string> fLocked; ///< variables that the statement at hand changes: not to be read elsewhere in it
};

} // namespace

GeneratedProgram generateProgram(std::uint64_t seed, bool isDrawable) { return Generator(seed, isDrawable).make(); }
