#pragma once
#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/ConstantFolder.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/SyntaxReader.h"

#include <array>
#include <unordered_map>

namespace krFrontend
{

/// Gives names their declarations and expressions their types, and reports what the language does not allow. Behind it
/// the tree says all that lowering needs.
class Checker
{
public:
    /// @param mainEnd  the end of the file that was asked for: what stands behind it is included, and not warned of as
    ///                 unused
    Checker(const SourceSet& sources, SyntaxStore& store, SyntaxTree& tree, DiagnosticList& diagnostics,
            Offset mainEnd);

    void check();

private:
    // CheckerDeclarations.cpp
    void declareConstants();
    void evaluateConstant(Symbol& constant);
    void declareFunctions();
    void declareFunction(Function& function);
    void checkHeader(Function& function);
    void checkShaderHeader(Function& function);
    void checkArgumentType(const Symbol& argument);
    /// Materials read all that a light can answer with.
    void checkLightOutputs(const Function& light);
    void checkOutput(const Function& function, const Symbol& argument);
    void checkInput(const Function& function, Symbol& argument);
    void checkDefault(Symbol& argument);
    void checkMetadata();
    void checkCalls();
    /// @param circle  each function is called by the one behind it; the last calls the first's way again
    void reportCircle(const std::vector<const Function*>& circle);
    void reportUnused();

    // CheckerStatements.cpp
    void checkBody(Function& function);
    void checkStatements(Stmt* first);
    void checkStatement(Stmt& statement);
    void checkBlock(Stmt& block);
    void checkBody(Stmt& body);
    void checkDeclaration(Stmt& statement);
    void checkVariable(Symbol& variable);
    void checkArraySize(Symbol& variable);
    void checkIf(Stmt& statement);
    void checkLoop(Stmt& statement);
    void checkJump(Stmt& statement);
    void checkReturn(Stmt& statement);
    void checkIlluminance(Stmt& statement);
    void checkCondition(Expr* condition, bool isLoop);
    void checkOutputsSet(SourceRange range);

    // Scopes, and which variables have a value by now.
    class Scope
    {
    public:
        explicit Scope(Checker& checker)
            : fChecker(checker), fOuter(std::exchange(checker.fScopeBegin, checker.fDeclared.size()))
        {
        }
        ~Scope()
        {
            fChecker.closeScope(fChecker.fScopeBegin);
            fChecker.fScopeBegin = fOuter;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;

    private:
        Checker& fChecker;
        std::size_t fOuter;
    };
    void declare(Symbol& symbol);
    void closeScope(std::size_t begin);
    void markSet(Symbol& symbol);
    [[nodiscard]] std::vector<Symbol*> takeSetSince(std::size_t mark);
    void keepCommon(std::vector<Symbol*>& common, const std::vector<Symbol*>& other);

    // CheckerExpressions.cpp
    /// Types the expression; its type is None where it has an error.
    void checkExpr(Expr* expr);
    bool enterExpr(Expr* expr);
    void leaveExpr(Expr* expr);
    void checkName(Expr* expr);
    [[nodiscard]] Symbol* findVariable(Name name);
    void reportUnknown(Expr* expr);
    void checkUnary(Expr* expr);
    void checkBinary(Expr* expr);
    [[nodiscard]] Type arithmeticType(TokenKind op, Expr* left, Expr* right);
    [[nodiscard]] Type comparisonType(TokenKind op, Expr* left, Expr* right);
    void checkAssign(Expr* expr);
    void checkConditional(Expr* expr);
    void checkConstruct(Expr* expr);
    void checkIndex(Expr* expr);
    void checkSwizzle(Expr* expr);
    /// Whether a value can be stored there; reports why not.
    bool checkStorable(Expr* target);
    void noteStored(Expr* target, bool reads);
    /// Makes the value one of the type where that is a conversion that the language does; false where it is not.
    bool convert(Expr* value, const Type& type);
    void makeFloat(Expr* value);
    void reportMismatch(Expr* value, const Type& wanted);

    // CheckerCalls.cpp
    struct Candidate
    {
        Function* function = nullptr;
        const Builtin* builtin = nullptr;
        unsigned size = 1; ///< of a built-in's generic types
        unsigned conversions = 0;
    };
    void checkCall(Expr* expr);
    [[nodiscard]] Function* findExact(Name name, const Expr* call) const;
    void considerFunctions(Expr* call, std::vector<Candidate>& best);
    void considerBuiltins(Expr* call, std::vector<Candidate>& best);
    [[nodiscard]] bool matchBuiltin(const Builtin& builtin, const Expr* call, Candidate& candidate) const;
    void applyFunction(Expr* call, Function& function);
    void applyBuiltin(Expr* call, const Candidate& candidate);
    void reportNoMatch(Expr* call);

    [[nodiscard]] std::string nameText(Name name) const { return std::string(fStore.names.text(name)); }

    const SourceSet& fSources;
    SyntaxStore& fStore;
    SyntaxTree& fTree;
    DiagnosticList& fDiagnostics;
    ConstantFolder fFolder;
    ExprWalk fWalk;
    Offset fMainEnd;

    std::vector<Symbol*> fVisible;     // by name: the innermost variable of the body that is being checked
    std::vector<Symbol*> fConstants;   // by name
    std::vector<Function*> fFunctions; // by name: the first overload
    std::unordered_map<std::string, Function*> fSignatures; // name and argument types
    std::vector<Symbol*> fProvidedByName;

    std::vector<Symbol*> fDeclared; // in the scopes that are open
    std::size_t fScopeBegin = 0;    // the first of the innermost scope
    std::vector<Symbol*> fSet;      // variables in the order in which they got values
    std::vector<Expr*> fUnsetReads; // of the expression that is being checked
    Function* fFunction = nullptr;  // whose body is being checked
    bool fReachable = true;
    bool fInIlluminance = false;
    bool fInConstant = false; // names may be constants alone
    unsigned fLoops = 0;      // around the statement, within its illuminance block
    bool fBreaks = false;     // the innermost loop is left by a break
};

} // namespace krFrontend
