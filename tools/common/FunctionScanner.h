#pragma once
#include <common/Source.h>

#include <krender/shading/ShadingAttribute.h>
#include <krender/shading/Tokenizer.h>

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace krTools
{

/// A token without its text, which stands in the source from `begin` to before `end`.
struct ScannedToken
{
    krShadingDag::TokenType type = krShadingDag::TokenType::EndOfStream;
    DataType dataType = kInvalidType;
    std::uint32_t begin = 0;
    std::uint32_t end = 0;
};

/// An argument of a header; the numbers are places in the function's tokens.
struct ScannedArgument
{
    bool isOutput;
    krShadingDag::CompFreqRange range;
    unsigned first; ///< "out", the range or the type
    unsigned type;
    unsigned name;
};

/// What a statement followed in the same list of statements.
enum class Predecessor : std::uint8_t
{
    None,
    If,
    IfOverBareIf, ///< an if whose body is an if without braces around it
    Else,
    ElseIf, ///< an else whose body is an if without braces around it
    Other,
};

/// A statement of a body, as the parser cuts them.
struct ScannedStatement
{
    enum class Kind : std::uint8_t
    {
        Block,
        Illuminance,
        If, ///< `first` to `last` run from "if" through the ")" of the condition
        Else,
        Opaque, ///< everything else, through its ";"
        Empty,  ///< a ";" that the parser would never get past
    };

    Kind kind;
    Predecessor predecessor;
    std::uint32_t first;
    std::uint32_t last;
};

/// Why a function cannot be read to its end.
struct ScanFailure
{
    enum class Kind
    {
        Rejected,       ///< the parser refuses it too, and has the text
        DuplicateInput, ///< likewise
        Unfinished,     ///< the source ends within it
        TooDeep,        ///< the parser would need too much of the stack
        TooMuch,        ///< more of something than any real source has, at which the parser would take too long
    };

    Kind kind;
    std::size_t position;
    std::string_view text; ///< empty where the parser has one
};

/// One function of a source, as the parser takes it apart. Comments are kept aside.
struct ScannedFunction
{
    std::vector<ScannedToken> tokens;
    std::vector<ScannedToken> comments;

    bool isDefinition = false; ///< has a body
    krShadingDag::CompFreqRange resultRange;
    std::optional<unsigned> resultWord; ///< the token with the result's type or the shader type
    std::optional<unsigned> name;       ///< the token with the name, or with the symbol of an operator
    std::vector<ScannedArgument> arguments;
    std::vector<ScannedStatement> statements; ///< of the body, in the order of their beginning
    std::size_t emptyStatements = 0;          ///< how many there are
    std::optional<ScanFailure> failure;

    void clear();
};

/// Goes through a source the way the parser does, function by function, without recursion and without building
/// anything: it tells where the parser fails, and finds the sources on which the parser would never return.
class FunctionScanner
{
public:
    /// Deeper nesting is refused: parsing, printing and destroying a statement call themselves for each level.
    static constexpr std::size_t kMaxDepth = 5000;
    /// Of one header; its arguments are compared each with each.
    static constexpr std::size_t kMaxHeaderTokens = 50000;
    static constexpr std::size_t kMaxEmptyStatements = 1000;
    /// @param source  borrowed for the scanner's life
    explicit FunctionScanner(const Source& source);

    /// Reads the next function, or the comments behind the last, as a function without a name.
    /// @return  false at the end of the source, and behind a failure
    [[nodiscard]] bool next(ScannedFunction& function);

    /// A token's text, as far as the source goes.
    [[nodiscard]] std::string_view text(const ScannedToken& token) const noexcept;

private:
    struct Level;

    ScannedToken readToken(ScannedFunction& function);
    const ScannedToken& peek(ScannedFunction& function, unsigned ahead = 0);
    [[nodiscard]] bool isClosingByte(const ScannedToken& token) const noexcept;
    [[noreturn]] void failUnclosedToken() const;

    void scanHeader(ScannedFunction& function) const;
    static krShadingDag::CompFreqRange scanRange(const ScannedFunction& function, unsigned& index);
    void scanBody(ScannedFunction& function);
    void beginStatement(ScannedFunction& function, std::vector<Level>& levels);
    static void endStatement(std::vector<Level>& levels, Predecessor ended);
    void scanCondition(ScannedFunction& function);
    void scanOpaque(ScannedFunction& function, const std::vector<Level>& levels);

    const Source& fSource;
    krShadingDag::Tokenizer fTokenizer;
    std::size_t fNext = 0; ///< in the function's tokens: the first that is not consumed
    bool fDone = false;
};

} // namespace krTools
