#pragma once
#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/ProgramNames.h"
#include "krender/frontend/private/TextEdits.h"
#include <krender/shading/ShadingNodeSpec.h>

#include <unordered_map>
#include <unordered_set>

namespace krFrontend
{

/// Where a line of a program came from.
struct TextOrigin
{
    const SourceSet* sources = nullptr; ///< null: from no source
    Offset offset = 0;
};

/// A piece of program text, and for each of its lines where it came from.
struct TracedText
{
    std::string text;
    std::vector<TextOrigin> lines;

    /// @param origin  of the first line; the others follow it line by line in the source where follows is set
    void append(std::string_view more, TextOrigin origin, bool follows);
};

/// What the functions of one program share: their names, and those that were written already.
class ProgramFunctions
{
public:
    ProgramFunctions(const Target& target, ProgramNames& names) : fTarget(target), fNames(names) {}

    [[nodiscard]] const Target& target() const noexcept { return fTarget; }
    [[nodiscard]] ProgramNames& names() noexcept { return fNames; }
    [[nodiscard]] TracedText& text() noexcept { return fText; }
    [[nodiscard]] const TracedText& text() const noexcept { return fText; }
    /// The name of a function in the program.
    [[nodiscard]] const std::string& nameOf(const Function& function, const ModuleContents& module);
    /// Whether a function of the program has the name.
    [[nodiscard]] bool isFunction(const std::string& name) const { return fUsed.contains(name); }
    /// Whether the function is to be written now: the first time that it is asked for.
    [[nodiscard]] bool startFunction(const Function& function) { return fStarted.insert(&function).second; }
    /// Writes a helper of a built-in's, or of our own, the first time that it is needed.
    void needHelper(std::string_view text);

private:
    const Target& fTarget;
    ProgramNames& fNames;
    TracedText fText;
    std::unordered_map<const Function*, std::string> fFunctionNames;
    std::unordered_set<std::string> fUsed;
    std::unordered_set<const Function*> fStarted;
    std::unordered_set<std::string> fHelpers;
};

/// Names that variables of a shader have to keep clear of.
struct ShadingNames
{
    std::unordered_set<std::string> called; ///< for inputs: every function that the program calls
    std::unordered_set<std::string> hiding; ///< for a material's variables: what the lights' code names
};

/// A material or light as a compiler of the target takes it.
struct LoweredShader
{
    std::unique_ptr<krShadingDag::ShadingNodeSpec> spec;
    std::unordered_map<const krShadingDag::Statement*, TextOrigin> origins;
};

/// What the swizzles of an expression pick from.
[[nodiscard]] const Expr& withoutSwizzles(const Expr& expr) noexcept;

/// Turns functions of one module into what a target takes. The writer's text stays but for single tokens.
class Lowering
{
public:
    Lowering(const ModuleContents& module, ProgramFunctions& program);

    /// Writes the functions that a shader calls, callees first, those that stand already left out.
    void writeFunctions(const Function& shader);
    /// Gives the inputs of a material or light their names in the program.
    void nameInputs(const Function& shader, const ShadingNames& names);
    [[nodiscard]] LoweredShader lowerMaterial(const Function& material, const ShadingNames& names);
    [[nodiscard]] LoweredShader lowerLight(const Function& light, const ShadingNames& names);
    /// Adds the names of the functions that a shader's own code calls, as the target spells them.
    void collectCalls(const Function& shader, std::unordered_set<std::string>& names);
    /// The same, with what its functions call.
    void collectAllCalls(const Function& shader, std::unordered_set<std::string>& names);
    /// Adds the names of functions that lowering puts into a function's text, where the source has others or none.
    void collectInserted(const Function& function, std::unordered_set<std::string>& names);
    /// The name of an input in the program, but for a light's key.
    [[nodiscard]] const std::string& nameOf(const Symbol& symbol);

private:
    using Statement = krShadingDag::Statement;
    using StatementCompound = krShadingDag::StatementCompound;

    [[nodiscard]] std::string_view nameText(Name name) const noexcept { return fModule.store.names.text(name); }
    [[nodiscard]] bool isCg() const noexcept { return fLanguage == TargetLanguage::Cg; }
    [[nodiscard]] std::vector<const Function*> callees(const Function& shader) const;

    // LoweringFunctions.cpp
    void writeFunction(const Function& function);
    void writeText(const StatementCompound& body, std::string_view head, std::string_view begin, std::string_view end,
                   Offset origin);
    void writeLightFunction(const Function& light, LoweredShader& lowered);
    void lowerShaderBody(const Function& shader, LoweredShader& lowered);
    [[nodiscard]] std::string_view spellingOf(const Expr& call) const;
    void lowerHeader(const Function& shader, LoweredShader& lowered);
    [[nodiscard]] std::string providedArguments(std::uint8_t provided, bool declares) const;
    void nameLocals(const Function& function, const std::unordered_set<std::string>& called);
    void nameVariable(const Symbol& symbol, const std::unordered_set<std::string>& called);
    [[nodiscard]] std::string zeroOf(const Type& type) const;

    // LoweringStatements.cpp
    void lowerStatements(const Stmt* first, StatementCompound& list);
    void lowerStatement(const Stmt& statement, StatementCompound& list);
    /// The statements of a body, without the braces that it may have.
    void lowerBody(const Stmt* body, StatementCompound& list);
    void lowerIf(const Stmt& statement, StatementCompound& list);
    void lowerLoop(const Stmt& statement, StatementCompound& list);
    void lowerReturn(const Stmt& statement, StatementCompound& list);
    void addText(StatementCompound& list, krShadingDag::StatementType type, const std::string& text, Offset origin);
    StatementCompound& addCompound(StatementCompound& list, krShadingDag::StatementType type, const std::string& text,
                                   Offset origin);
    void editSimple(const Stmt& statement, TextEdits& edits);
    void editDeclaration(const Stmt& statement, TextEdits& edits);
    [[nodiscard]] bool keepsConst(const Stmt& statement);
    /// The source of a statement, or of a part of it, as the target takes it.
    [[nodiscard]] std::string textOf(const Stmt& statement, SourceRange range);

    // LoweringExpressions.cpp
    /// What stands around an expression in the program: within the parentheses that the source has around it, or outside.
    struct Wrap
    {
        std::string before;
        std::string innerBefore;
        std::string innerAfter;
        std::string after;
    };
    /// Adds the edits that turn an expression into the target's.
    void edit(Expr* expr, TextEdits& edits);
    [[nodiscard]] std::string render(Expr* expr);
    [[nodiscard]] Wrap editNode(const Expr& expr, TextEdits& edits);
    [[nodiscard]] bool replaceWhole(Expr* expr, TextEdits& edits);
    void wrapArgument(const Expr& argument, std::string_view before, std::string_view after);
    void editNumber(const Expr& expr, TextEdits& edits);
    void editVariable(const Expr& expr, TextEdits& edits);
    void editBinary(const Expr& expr, TextEdits& edits, Wrap& wrap);
    void editEquality(const Expr& expr, TextEdits& edits, Wrap& wrap);
    void editAssign(const Expr& expr, TextEdits& edits, Wrap& wrap);
    void editCall(const Expr& expr, TextEdits& edits);
    void editBuiltin(const Expr& expr, TextEdits& edits, Wrap& wrap);
    [[nodiscard]] bool takesScalars(const Expr& call) const;
    void editConstruct(const Expr& expr, TextEdits& edits, Wrap& wrap);
    void editCgMatrix(const Expr& expr, TextEdits& edits, Wrap& wrap);
    void cutLastArgument(const Expr& expr);
    void replaceWord(const Expr& expr, std::string_view word, std::string_view text, TextEdits& edits);
    [[nodiscard]] std::string constantText(const ConstantValue& value) const;
    [[nodiscard]] std::string typeText(const Type& type) const;

    // LoweringCg.cpp: what Cg has no form for
    [[nodiscard]] std::string outlineChoice(Expr* expr);
    [[nodiscard]] std::string storeColumn(Expr* target, std::string_view op, const std::string& value,
                                          const Type& valueType);
    [[nodiscard]] std::string swappedElement(Expr* target);

    const ModuleContents& fModule;
    ProgramFunctions& fProgram;
    TargetLanguage fLanguage;
    ExprWalk fWalk;
    std::unordered_map<const Symbol*, std::string> fNames; // those that differ from the source, and asked-for ones
    std::unordered_map<const Expr*, Wrap> fArgumentWraps;  // of arguments that are yet to be visited
    std::unordered_set<const Symbol*> fUnconst;            // const locals that the program declares without the word
    std::string fReturnText;                               // what a "return;" becomes
    std::unordered_map<const Statement*, TextOrigin>* fOrigins = nullptr; // of the statements that are being made
};

} // namespace krFrontend
