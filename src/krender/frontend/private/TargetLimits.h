#pragma once
#include "krender/frontend/private/ConstantFolder.h"
#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Message.h"
#include "krender/frontend/private/Syntax.h"
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>
#include <krender/shadergen/Target.h>

#include <deque>
#include <functional>
#include <initializer_list>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

namespace krFrontend
{

/// A material or light of a program, and the module that it stands in.
struct ShaderUse
{
    const Module* module;
    const Function* function;
};

/// Finds what a target has no room or no form for, at the place in the source that asks for it.
class TargetLimits
{
public:
    using Report = std::function<void(const Module&, Message, SourceRange, std::initializer_list<std::string_view>)>;

    TargetLimits(const Target& target, Report report) : fTarget(target), fReport(std::move(report)) {}

    /// @param shaders  the material, and then the lights
    void check(const std::vector<ShaderUse>& shaders);

private:
    void checkVertexInputs(const ShaderUse& material);
    void checkUniforms(const std::vector<ShaderUse>& shaders);
    void checkBodies(const ShaderUse& shader);
    void checkStatements(const Module& module, const Stmt* first);
    void checkLoop(const Module& module, const Stmt& loop);
    void checkIndices(const Module& module, Expr* root);
    /// The variable that a loop counts in the form that every target takes, or null.
    [[nodiscard]] const Symbol* counterOf(const Stmt& loop);
    [[nodiscard]] bool isChangedIn(const Stmt* first, const Symbol& counter);
    [[nodiscard]] bool isFixedIndex(Expr* index);
    void lack(const Module& module, SourceRange range, std::string_view what);

    const Target& fTarget;
    Report fReport;
    ExprWalk fWalk;
    std::deque<ConstantValue> fKept;
    ConstantFolder fFolder{fKept};
    std::unordered_set<const Symbol*> fCounters; // of loops whose ends can be seen
    std::unordered_set<const Function*> fSeen;
};

} // namespace krFrontend
