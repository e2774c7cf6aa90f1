#pragma once
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/Lexer.h"
#include <krender/shading/ShadingAttribute.h>

#include <vector>

/// The syntax tree of full KRSL. Nodes live as long as the module that read them; lists are chained through `next`.
namespace krFrontend
{

struct Builtin;
struct Expr;
struct Function;
struct Stmt;

enum class SymbolKind : std::uint8_t
{
    Constant, ///< at file level
    Input,
    Output,
    Inout,
    Local,
    Result,   ///< `output` in a function
    Provided, ///< a value that programs provide
};

/// A variable of any kind.
struct Symbol
{
    SymbolKind kind = SymbolKind::Local;
    bool isConst = false; ///< a local that was declared const
    bool isRead = false;
    bool isWritten = false;    ///< after its declaration
    bool isSet = false;        ///< while a body is walked: has a value by now
    std::uint8_t provided = 0; // of a provided value: its place in the table
    bool isWarned = false;     ///< reported as read before it is set
    bool isInHead = false;     ///< declared in the head of a for
    bool hidesHead = false;    ///< declared in the block behind the head that has its name already
    Type type;
    Name name = 0;
    SourceRange range;           ///< of the name
    Offset typeBegin = 0;        ///< of the declaration's first word
    Expr* initializer = nullptr; ///< of a constant or local, or an input's default
    Expr* arraySize = nullptr;
    Symbol* next = nullptr;       ///< the next argument, or the next name of a declaration
    Symbol* hidden = nullptr;     ///< while a body is walked: the outer variable of this name
    std::size_t scope = 0;        ///< while a body is walked: the number of its scope
    Function* function = nullptr; ///< that declares it
    krShadingDag::CompFreqRange frequencies = krShadingDag::kFullRange; ///< of an argument
    const ConstantValue* value = nullptr; ///< of a constant, a local that is one, or a default, once worked out
    std::uint32_t metadata = 0;           ///< of an input: its place in the module's list, counted from 1
};

enum class ExprKind : std::uint8_t
{
    Bad, ///< reported already
    Number,
    Bool,
    Text,
    Variable,
    Unary,   ///< one operand
    Postfix, ///< ++ or -- behind its operand
    Binary,
    Assign,
    Conditional, ///< condition, value if true, value if false
    Call,        ///< of a function or built-in
    Construct,   ///< type(values)
    Index,       ///< value, index
    Swizzle,
};

/// An expression. Its range includes the parentheses around it.
struct Expr
{
    ExprKind kind = ExprKind::Bad;
    TokenKind op = TokenKind::EndOfFile; ///< of an operator; IntNumber or FloatNumber of a number
    bool toFloat = false;                ///< an int that is wanted as float
    std::uint8_t spread = 0;             ///< a float that is wanted as a vector of so many components
    bool hasEffect = false;              ///< it or an operand assigns, or calls what does
    bool isBuiltin = false;              ///< a call of a built-in function
    bool isTarget = false;               ///< a variable that is set without being read
    std::uint8_t swizzle[4] = {4, 4, 4, 4};
    Type type;
    Offset begin = 0;
    Offset end = 0;
    Offset mark = 0;       ///< the operator, the "(" of a call, the "[", the "." or the ":" of a conditional
    Offset word = 0;       ///< where a name, a type or a number begins, within the parentheses around the expression
    Name name = 0;         ///< of a variable or a called function
    Expr* first = nullptr; ///< operands
    Expr* next = nullptr;
    union
    {
        double number = 0.0;    ///< Number, Bool
        Symbol* symbol;         ///< Variable
        Function* function;     ///< Call, of a function
        const Builtin* builtin; ///< Call, of a built-in
    };

    [[nodiscard]] SourceRange range() const noexcept { return {begin, end}; }
    [[nodiscard]] Expr* second() const noexcept { return first->next; }
    [[nodiscard]] Expr* third() const noexcept { return first->next->next; }
};

enum class StmtKind : std::uint8_t
{
    Block,
    Expression,
    Declaration,
    If,
    For,
    While,
    DoWhile,
    Break,
    Continue,
    Return,
    Discard,
    Illuminance,
    Empty,
};

struct Stmt
{
    StmtKind kind = StmtKind::Empty;
    bool isChained = false; ///< an if directly behind an else
    Offset begin = 0;
    Offset end = 0;  ///< behind its ";" or "}"
    Offset mark = 0; ///< behind the ")" of an if, for or while; the "while" of a do
    Stmt* next = nullptr;
    Stmt* body = nullptr;      ///< of a block the first statement
    Stmt* otherwise = nullptr; ///< else
    Stmt* init = nullptr;      ///< of a for
    Expr* expr = nullptr;      ///< condition or value
    Expr* step = nullptr;      ///< of a for
    Symbol* variables = nullptr;

    [[nodiscard]] SourceRange range() const noexcept { return {begin, end}; }
};

enum class FunctionKind : std::uint8_t
{
    Regular,
    Material,
    Light,
    Displacement,
};

/// A function, material or light.
struct Function
{
    FunctionKind kind = FunctionKind::Regular;
    bool isOperator = false; ///< its name is an operator's
    bool hasReturn = false;  ///< a return statement somewhere
    bool endsBody = false;   ///< no way leads to the end of the body
    bool hasIlluminance = false;
    bool discards = false;
    bool isCalled = false;
    std::uint8_t provided = 0; ///< the provided values that it or what it calls reads, a bit each
    std::uint8_t visit = 0;    ///< while the circle of calls is looked for
    Type result = kVoidType;
    krShadingDag::CompFreqRange resultRange = krShadingDag::kFullRange;
    Name name = 0;
    SourceRange range;  ///< of the name
    SourceRange header; ///< from the first word through ")"
    Symbol* arguments = nullptr;
    unsigned argumentCount = 0;
    Symbol* output = nullptr;       ///< the variable `output`, where the body names it
    Stmt* body = nullptr;           ///< null: a declaration
    Function* definition = nullptr; ///< of a declaration
    Function* nextOverload = nullptr;
    const Builtin* replaced = nullptr;    ///< the built-in that it stands for or replaces
    std::vector<Function*> calls;         ///< each once, in the order of the first call
    const Function* lastCaller = nullptr; ///< while bodies are walked: the last one that called it
    unsigned order = 0;                   ///< callees have lower numbers
};

struct Metadata
{
    Symbol* item = nullptr; ///< its type, name and expression
    ConstantValue value;
};

/// What a set of sources declares.
struct SyntaxTree
{
    bool isComplete = true; ///< all that is included could be read
    std::vector<SourceRange> includes;
    std::vector<Symbol*> constants;
    std::vector<Function*> functions; ///< all kinds, in the order of the sources
    std::vector<std::vector<Metadata>> metadata;
};

} // namespace krFrontend
