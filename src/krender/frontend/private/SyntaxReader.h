#pragma once
#include "krender/frontend/private/Arena.h"
#include "krender/frontend/private/Constant.h"
#include "krender/frontend/private/DiagnosticList.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>
#include <krender/shading/ShadingAttribute.h>

#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace krFrontend
{

/// An #include that was met.
struct IncludeRequest
{
    SourceRange range; ///< of the directive
    std::string path;  ///< as written
};

/// Where the nodes of a tree live.
struct SyntaxStore
{
    Arena arena;
    std::deque<Function> functions;
    std::deque<ConstantValue> constants;
    NameTable names;
};

/// Reads one file into a tree, by recursive descent. Behind an error it goes on with the next statement or function, so
/// that one cause has one message.
class SyntaxReader
{
public:
    SyntaxReader(const SourceFile& file, SyntaxStore& store, SyntaxTree& tree, DiagnosticList& diagnostics);

    /// @param includes  appended to
    void readFile(std::vector<IncludeRequest>& includes);

private:
    // Tokens.
    [[nodiscard]] TokenKind kind() const noexcept { return fToken.kind; }
    [[nodiscard]] bool is(TokenKind kind) const noexcept { return fToken.kind == kind; }
    void advance();
    bool accept(TokenKind kind);
    /// Passes the token, or reports what was expected in its place; false then.
    bool expect(TokenKind kind, std::string_view what);
    bool expectSemicolon();
    void fail(std::string_view expected);
    [[nodiscard]] std::string_view tokenText() const noexcept { return textOf(fToken.range()); }
    [[nodiscard]] std::string_view textOf(SourceRange range) const noexcept;
    [[nodiscard]] SourceRange previousEnd() const noexcept { return {fPreviousEnd, fPreviousEnd}; }
    void skipStatement();
    void skipDeclaration();
    void skipBraces();

    /// Counts a level of nesting while it lives.
    class Level
    {
    public:
        explicit Level(SyntaxReader& reader);
        ~Level() { --fReader.fDepth; }
        Level(const Level&) = delete;
        Level& operator=(const Level&) = delete;

    private:
        SyntaxReader& fReader;
    };
    void giveUp(Message message, std::string_view limit);

    // File level.
    void readInclude(std::vector<IncludeRequest>& includes);
    void readConstants();
    void readFunction();
    bool readResult(Function& function);
    bool readFunctionName(Function& function);
    bool readArguments(Function& function);
    Symbol* readArgument(Function& function);
    bool readFrequencies(krShadingDag::CompFreqRange& range);
    bool readMetadata(Symbol& argument);
    Symbol* readName(SymbolKind kind, Type type, Offset typeBegin);

    // Statements.
    Stmt* makeStatement(StmtKind kind);
    Stmt* readBlock();
    Stmt* readStatement();
    Stmt* readSimpleStatement();
    Stmt* readKeywordStatement(StmtKind kind);
    Stmt* readDeclaration();
    bool readDeclarators(Stmt& statement);
    Stmt* readIf();
    bool readIfHead(Stmt& statement);
    Stmt* readFor();
    Stmt* readWhile();
    Stmt* readDo();
    Stmt* readIlluminance();
    Stmt* readReturn();
    [[nodiscard]] bool beginsValue() const noexcept;
    Stmt* finishSimple(Stmt* statement);

    // Expressions. A null never comes back: what cannot be read is of kind Bad, and fFailed is set.
    Expr* readExpression();
    Expr* readAssignment();
    Expr* readConditional();
    Expr* readBinary(int least);
    Expr* readUnary();
    Expr* readPostfix();
    Expr* readPrimary();
    Expr* readParenthesized();
    Expr* readNumber();
    Expr* readOperands(Expr* call);
    Expr* readIndex(Expr* value);
    Expr* readSwizzle(Expr* value);
    Expr* makeExpr(ExprKind kind, Offset begin, Offset end);
    Expr* makeOperation(ExprKind kind, TokenKind op, Offset mark, Expr* first, Expr* second);
    Expr* badExpr();
    bool countOperator();

    const SourceFile& fFile;
    SyntaxStore& fStore;
    SyntaxTree& fTree;
    DiagnosticList& fDiagnostics;
    Lexer fLexer;
    LexerToken fToken;
    LexerToken fAhead;
    Offset fPreviousEnd = 0;
    bool fPreviousHasError = false;
    unsigned fDepth = 0;
    unsigned fElseIfs = 0;   ///< ahead of the statement, in its chain and those around it
    unsigned fOperators = 0; ///< of the expression that is being read
    bool fFailed = false;    ///< an error was reported that the statement has not recovered from
    bool fGaveUp = false;    ///< a limit was passed: the rest of the file is not read
};

/// How deep blocks, statements, parentheses, unary operators, calls and indices may stand within each other.
inline constexpr unsigned kDeepestNesting = 256;
/// The `else if`s that may follow one another, those of chains around them counted: targets' compilers nest them, and
/// translations are indented by them.
inline constexpr unsigned kMostElseIfs = 250;
/// The operators that one expression may have.
inline constexpr unsigned kMostOperators = 4096;

} // namespace krFrontend
