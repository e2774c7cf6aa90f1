#include <krender/frontend/SourceQuery.h>

#include "krender/frontend/private/Builtins.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/NameTable.h"
#include "krender/frontend/private/NameWalk.h"
#include "krender/frontend/private/Provided.h"
#include "krender/frontend/private/StmtWalk.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/SyntaxReader.h"
#include "krender/frontend/private/Type.h"
#include <krender/frontend/Module.h>
#include <krender/frontend/SourceSet.h>
#include <krender/shading/ShadingAttribute.h>

#include <algorithm>
#include <array>
#include <memory>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace krFrontend
{
namespace
{

constexpr std::array kFunctionKinds{NameKind::Function, NameKind::Material, NameKind::Light, NameKind::Displacement};
constexpr std::array<std::string_view, 4> kFunctionWords{"", "material ", "light ", "displacement "};

/// Says in KRSL what names stand for.
class Describer
{
public:
    explicit Describer(const ModuleContents& contents) : fContents(contents) {}

    [[nodiscard]] Declaration describe(const Meaning& meaning, SourceRange scope = {}) const
    {
        if (meaning.builtin)
            return describe(*meaning.builtin);
        if (meaning.function)
            return describe(definitionOf(*meaning.function));
        return meaning.symbol ? describe(*meaning.symbol, scope) : Declaration();
    }

    /// Whether two names stand for one thing.
    [[nodiscard]] bool isSame(const Meaning& a, const Meaning& b) const
    {
        if (a.builtin || b.builtin)
            return a.builtin && b.builtin && a.builtin->name == b.builtin->name;
        if (a.function || b.function)
            return a.function && b.function && isSame(*a.function, *b.function);
        return a.symbol == b.symbol ||
               (a.symbol->name == b.symbol->name && isProvided(*a.symbol) && isProvided(*b.symbol));
    }

    /// A value that programs provide, or an argument of a material or light that lists it as used.
    [[nodiscard]] bool isProvided(const Symbol& symbol) const
    {
        return symbol.kind == SymbolKind::Provided ||
               (symbol.kind == SymbolKind::Input && symbol.function && symbol.function->kind != FunctionKind::Regular &&
                isProvidedName(text(symbol.name)));
    }

    [[nodiscard]] static Declaration describe(const Builtin& builtin)
    {
        return {NameKind::BuiltIn, std::string(builtin.name), signatureText(builtin, true), {}, {}};
    }

    [[nodiscard]] static Declaration describe(const ProvidedValue& value)
    {
        return {
            NameKind::Provided, std::string(value.name), typeName(value.type) + " " + std::string(value.name), {}, {}};
    }

private:
    [[nodiscard]] std::string_view text(Name name) const { return fContents.store.names.text(name); }

    [[nodiscard]] static const Function& definitionOf(const Function& function)
    {
        return function.definition ? *function.definition : function;
    }

    [[nodiscard]] static bool isSame(const Function& a, const Function& b)
    {
        const Symbol* left = a.arguments;
        const Symbol* right = b.arguments;
        while (left && right && left->type == right->type)
        {
            left = left->next;
            right = right->next;
        }
        return &a == &b || (a.name == b.name && a.kind == b.kind && !left && !right);
    }

    [[nodiscard]] Declaration describe(const Function& function) const
    {
        const auto kind = static_cast<std::size_t>(function.kind);
        const std::string name(text(function.name));
        std::string signature(kFunctionWords.at(kind));
        signature += kind == 0 ? typeName(function.result) + " " : std::string();
        signature += name + "(";
        for (const Symbol* argument = function.arguments; argument; argument = argument->next)
            signature += (argument == function.arguments ? "" : ", ") + textOf(*argument);
        return {kFunctionKinds.at(kind),
                name,
                signature + ")",
                function.range,
                {0, static_cast<Offset>(fContents.sources.size())}};
    }

    [[nodiscard]] Declaration describe(const Symbol& symbol, SourceRange scope) const
    {
        const std::string name(text(symbol.name));
        switch (symbol.kind)
        {
        case SymbolKind::Constant:
            return {NameKind::Constant,
                    name,
                    textOf(symbol),
                    symbol.range,
                    {0, static_cast<Offset>(fContents.sources.size())}};
        case SymbolKind::Input:
            return {isProvided(symbol) ? NameKind::Provided : NameKind::Input, name, textOf(symbol), symbol.range,
                    scope};
        case SymbolKind::Output:
        case SymbolKind::Inout:
        case SymbolKind::Result:
            return {NameKind::Output, name, textOf(symbol), symbol.range, scope};
        case SymbolKind::Local:
            return {NameKind::Local, name, textOf(symbol), symbol.range, scope};
        case SymbolKind::Provided:
            break;
        }
        return describe(kProvidedValues.at(symbol.provided));
    }

    [[nodiscard]] std::string textOf(const Symbol& symbol) const
    {
        std::string declared = symbol.isConst ? "const " : "";
        declared += symbol.kind == SymbolKind::Output ? "out " : symbol.kind == SymbolKind::Inout ? "inout " : "";
        const krShadingDag::CompFreqRange& range = symbol.frequencies;
        if (range != krShadingDag::kFullRange)
        {
            declared += krShadingDag::compFreqName(range.minFreq);
            if (range.minFreq != range.maxFreq)
                declared += std::string(":") + krShadingDag::compFreqName(range.maxFreq);
            declared += ' ';
        }
        Type element = symbol.type;
        element.arrayLength = 0;
        declared += element.isKnown() ? typeName(element) + " " : std::string();
        declared += text(symbol.name);
        return symbol.type.isArray() ? declared + "[" + std::to_string(symbol.type.arrayLength) + "]" : declared;
    }

    const ModuleContents& fContents;
};

std::optional<NamePlace> placeAt(const ModuleContents& contents, Offset offset)
{
    std::optional<NamePlace> found;
    NameWalk(contents, offset)
        .forEachName(
            [&](const NamePlace& place)
            {
                // Where two names meet, as in "a+b", the one that begins there is meant.
                if (holds(place.range, offset) && (!found || place.range.begin == offset))
                    found = place;
            });
    return found;
}

bool isBefore(SourceRange a, SourceRange b) noexcept { return a.begin < b.begin; }

bool isWithinIlluminance(const ModuleContents& contents, Offset offset)
{
    bool isWithin = false;
    for (const Function* function : contents.tree.functions)
        walkStatements(
            function->body,
            [&](const Stmt& statement)
            { isWithin |= statement.kind == StmtKind::Illuminance && holds(statement.range(), offset); },
            [](const Stmt&) {});
    return isWithin;
}

bool isWithinBody(const ModuleContents& contents, Offset offset)
{
    return std::any_of(contents.tree.functions.begin(), contents.tree.functions.end(),
                       [offset](const Function* function)
                       { return function->body && holds(function->body->range(), offset); });
}

} // namespace

std::vector<Declaration> declarationsOf(const Module& module)
{
    const ModuleContents& contents = module.contents();
    const Describer describer(contents);
    std::vector<Declaration> found;
    NameWalk(contents).forEachName(
        [&](const NamePlace& place)
        {
            if (!place.isDeclaration)
                return;
            found.push_back(describer.describe(place.meaning, place.scope));
            found.back().range = place.range;
        });
    std::stable_sort(found.begin(), found.end(),
                     [](const Declaration& a, const Declaration& b) { return isBefore(a.range, b.range); });
    return found;
}

std::optional<NameUse> nameAt(const Module& module, Offset offset)
{
    const ModuleContents& contents = module.contents();
    const std::optional<NamePlace> place = placeAt(contents, offset);
    if (!place)
        return std::nullopt;
    // A use does not know its declaration's scope.
    SourceRange scope = place->scope;
    if (place->meaning.symbol && !place->isDeclaration)
        NameWalk(contents, offset)
            .forEachName(
                [&](const NamePlace& other)
                {
                    if (other.isDeclaration && other.meaning.symbol == place->meaning.symbol)
                        scope = other.scope;
                });
    return NameUse{place->range, Describer(contents).describe(place->meaning, scope)};
}

std::vector<SourceRange> usesOf(const Module& module, Offset offset)
{
    const ModuleContents& contents = module.contents();
    const Describer describer(contents);
    std::vector<SourceRange> uses;
    const std::optional<NamePlace> place = placeAt(contents, offset);
    if (!place)
        return uses;
    NameWalk(contents).forEachName(
        [&](const NamePlace& other)
        {
            if (describer.isSame(other.meaning, place->meaning))
                uses.push_back(other.range);
        });
    std::sort(uses.begin(), uses.end(), isBefore);
    return uses;
}

std::optional<TypedExpression> expressionAt(const Module& module, Offset offset)
{
    std::optional<TypedExpression> found;
    NameWalk(module.contents(), offset)
        .forEachExpression(
            [&](const Expr& expr)
            {
                if (holds(expr.range(), offset) && expr.type.isKnown() &&
                    (!found || expr.end - expr.begin < found->range.end - found->range.begin))
                    found = {expr.range(), typeName(expr.type)};
            });
    return found;
}

std::vector<Declaration> namesVisibleAt(const Module& module, Offset offset)
{
    const ModuleContents& contents = module.contents();
    const Describer describer(contents);
    std::vector<Declaration> visible;
    std::unordered_map<std::string, NamePlace> variables; // the innermost of each name
    NameWalk(contents, offset)
        .forEachName(
            [&](const NamePlace& place)
            {
                const Meaning& meaning = place.meaning;
                if (!place.isDeclaration || !holds(place.scope, offset))
                    return;
                if (meaning.function)
                {
                    if (meaning.function->kind == FunctionKind::Regular && !meaning.function->isOperator &&
                        !meaning.function->definition)
                        visible.push_back(describer.describe(meaning));
                    return;
                }
                NamePlace& inner = variables[std::string(contents.store.names.text(meaning.symbol->name))];
                if (!inner.meaning.symbol || place.scope.begin >= inner.scope.begin)
                    inner = place;
            });
    for (const auto& [name, place] : variables)
        visible.push_back(describer.describe(place.meaning, place.scope));
    if (isWithinBody(contents, offset))
    {
        const bool hasLight = isWithinIlluminance(contents, offset);
        for (const ProvidedValue& value : kProvidedValues)
            if (!variables.contains(std::string(value.name)) && (hasLight || !value.inIlluminance))
                visible.push_back(Describer::describe(value));
        for (const Builtin& builtin : builtins())
            visible.push_back(Describer::describe(builtin));
    }
    std::stable_sort(visible.begin(), visible.end(),
                     [](const Declaration& a, const Declaration& b) {
                         return std::pair(std::string_view(a.name), a.range.begin) <
                                std::pair(std::string_view(b.name), b.range.begin);
                     });
    return visible;
}

} // namespace krFrontend
