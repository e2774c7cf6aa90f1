#include "krender/frontend/private/Lowering.h"

#include "krender/frontend/private/Provided.h"
#include "krender/shading/private/StatementPrinter.h"
#include <krender/shading/Statement.h>

#include <algorithm>

namespace krFrontend
{
namespace
{

using krShadingDag::StatementCompound;
using krShadingDag::StatementPrinter;

/// Prints a function's body and keeps where its lines came from.
class TracedPrinter final : public StatementPrinter
{
public:
    TracedPrinter(std::string& out, const std::unordered_map<const krShadingDag::Statement*, TextOrigin>& origins,
                  std::vector<std::pair<std::size_t, TextOrigin>>& places)
        : StatementPrinter(out, "\t", "\t"), fOrigins(origins), fPlaces(places)
    {
    }

protected:
    void printListed(const krShadingDag::Statement& statement) override
    {
        if (const auto origin = fOrigins.find(&statement); origin != fOrigins.end())
            fPlaces.emplace_back(out().size(), origin->second);
        StatementPrinter::printListed(statement);
    }

private:
    const std::unordered_map<const krShadingDag::Statement*, TextOrigin>& fOrigins;
    std::vector<std::pair<std::size_t, TextOrigin>>& fPlaces;
};

/// Calls the visitor with every variable that the statements declare.
template <class Visitor>
void forEachVariable(const Stmt* first, Visitor visit)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
    {
        for (const Symbol* variable = statement->variables; variable; variable = variable->next)
            visit(*variable);
        if (statement->init)
            forEachVariable(statement->init, visit);
        for (const Stmt* part = statement; part; part = part->otherwise)
        {
            if (part->body)
                forEachVariable(part->body, visit);
            if (part != statement && part->kind != StmtKind::If)
            {
                forEachVariable(part, visit);
                break;
            }
        }
    }
}

/// Calls the visitor with every expression of the statements, its operands not among them.
template <class Visitor>
void forEachExpr(const Stmt* first, Visitor visit)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
        for (const Stmt* part = statement; part; part = part->otherwise)
        {
            for (const Symbol* variable = part->variables; variable; variable = variable->next)
                if (variable->initializer)
                    visit(variable->initializer, variable);
            if (part->init)
                forEachExpr(part->init, visit);
            if (part->expr)
                visit(part->expr, nullptr);
            if (part->step)
                visit(part->step, nullptr);
            if (part->body)
                forEachExpr(part->body, visit);
        }
}

} // namespace

void TracedText::append(std::string_view more, TextOrigin origin, bool follows)
{
    text += more;
    unsigned line = 0;
    const SourceFile* file = origin.sources ? &origin.sources->fileAt(origin.offset) : nullptr;
    for (const char c : more)
    {
        if (c != '\n')
            continue;
        lines.push_back(origin);
        if (!follows || !file)
            continue;
        const std::size_t next = file->text().find('\n', origin.offset - file->begin());
        if (next != std::string_view::npos)
            origin.offset = file->begin() + static_cast<Offset>(next) + 1;
        ++line;
    }
}

const std::string& ProgramFunctions::nameOf(const Function& function, const ModuleContents& module)
{
    const auto [place, isNew] = fFunctionNames.try_emplace(&function);
    if (isNew)
        place->second = fNames.claim(module.store.names.text(function.name));
    return place->second;
}

void ProgramFunctions::needHelper(std::string_view text)
{
    if (fHelpers.emplace(text).second)
        fText.append(std::string(text) + "\n", {}, false);
}

Lowering::Lowering(const ModuleContents& module, ProgramFunctions& program)
    : fModule(module), fProgram(program), fLanguage(program.target().language)
{
}

std::vector<const Function*> Lowering::callees(const Function& shader) const
{
    std::vector<const Function*> found;
    std::unordered_set<const Function*> seen;
    std::vector<const Function*> waiting{&shader};
    while (!waiting.empty())
    {
        const Function& function = *waiting.back();
        waiting.pop_back();
        for (const Function* called : function.calls)
            if (seen.insert(called).second)
            {
                found.push_back(called);
                waiting.push_back(called);
            }
    }
    std::sort(found.begin(), found.end(), [](const Function* a, const Function* b) { return a->order < b->order; });
    return found;
}

void Lowering::writeFunctions(const Function& shader)
{
    for (const Function* function : callees(shader))
        if (fProgram.startFunction(*function))
            writeFunction(*function);
}

void Lowering::collectCalls(const Function& shader, std::unordered_set<std::string>& names)
{
    const auto collect = [&](const Function& function)
    {
        forEachExpr(function.body,
                    [&](Expr* expr, const Symbol*)
                    {
                        fWalk(expr,
                              [&](Expr* e)
                              {
                                  if (e->kind != ExprKind::Call)
                                      return;
                                  const std::string_view spelled =
                                      e->isBuiltin ? e->builtin->spellings[static_cast<unsigned>(fLanguage)].name
                                                   : std::string_view();
                                  names.emplace(spelled.empty() ? nameText(e->name) : spelled);
                              });
                    });
    };
    collect(shader);
    for (const Function* function : callees(shader))
        collect(*function);
}

void Lowering::nameVariable(const Symbol& symbol, const std::unordered_set<std::string>& called)
{
    const std::string name(nameText(symbol.name));
    if (fProgram.names().isReserved(name) || fProgram.names().isTaken(name) || called.contains(name))
        fNames[&symbol] = fProgram.names().invent(name);
}

void Lowering::nameLocals(const Function& function, const std::unordered_set<std::string>& called)
{
    forEachVariable(function.body, [&](const Symbol& variable) { nameVariable(variable, called); });
    if (!isCg())
        return;
    // A name is known there from its declarator on, its own value included.
    forEachExpr(function.body,
                [&](Expr* expr, const Symbol* variable)
                {
                    if (!variable || fNames.contains(variable))
                        return;
                    bool isHidden = false;
                    fWalk(expr,
                          [&](Expr* e)
                          {
                              isHidden |= (e->kind == ExprKind::Variable || e->kind == ExprKind::Call) &&
                                          e->name == variable->name;
                          });
                    if (isHidden)
                        fNames[variable] = fProgram.names().invent(nameText(variable->name));
                });
}

std::string Lowering::zeroOf(const Type& type) const
{
    const ConstantValue zero{type, {}, {}, {}};
    return constantText(zero);
}

std::string Lowering::providedArguments(std::uint8_t provided, bool declares) const
{
    std::string arguments;
    for (unsigned i = 0; i < kPassedValues; ++i)
    {
        if ((provided >> i & 1u) == 0)
            continue;
        arguments += arguments.empty() ? "" : ", ";
        if (declares)
            arguments += typeName(kProvidedValues[i].type) + " ";
        arguments += kProvidedValues[i].name;
    }
    return arguments;
}

void Lowering::writeFunction(const Function& function)
{
    std::unordered_set<std::string> called;
    collectCalls(function, called);
    std::string head = typeText(function.result) + " " + fProgram.nameOf(function, fModule) + "(" +
                       providedArguments(function.provided, true);
    bool isFirst = function.provided == 0;
    for (const Symbol* argument = function.arguments; argument; argument = argument->next)
    {
        nameVariable(*argument, called);
        head += isFirst ? "" : ", ";
        isFirst = false;
        if (argument->kind != SymbolKind::Input)
            head += argument->kind == SymbolKind::Output ? "out " : "inout ";
        head += typeText(argument->type) + " " + nameOf(*argument);
    }
    head += ")\n{\n";
    nameLocals(function, called);

    std::string begin;
    std::string end;
    fReturnText = "return;";
    if (function.output && (function.output->isRead || function.output->isWritten || !function.endsBody))
    {
        const std::string name = fProgram.names().invent("output");
        fNames[function.output] = name;
        begin = "\t" + typeText(function.result) + " " + name + " = " + zeroOf(function.result) + ";\n";
        fReturnText = "return " + name + ";";
        end = function.endsBody ? "" : "\t" + fReturnText + "\n";
    }
    StatementCompound body;
    std::unordered_map<const Statement*, TextOrigin> origins;
    fOrigins = &origins;
    lowerStatements(function.body->body, body);
    writeText(body, head, begin, end + "}\n\n", function.header.begin);
    fOrigins = nullptr;
}

void Lowering::writeText(const StatementCompound& body, std::string_view head, std::string_view begin,
                         std::string_view end, Offset origin)
{
    const TextOrigin from{&fModule.sources, origin};
    fProgram.text().append(head, from, false);
    fProgram.text().append(begin, from, false);
    std::string text;
    std::vector<std::pair<std::size_t, TextOrigin>> places;
    TracedPrinter(text, *fOrigins, places).print(body);
    for (std::size_t i = 0; i < places.size(); ++i)
    {
        const std::size_t next = i + 1 < places.size() ? places[i + 1].first : text.size();
        fProgram.text().append(std::string_view(text).substr(places[i].first, next - places[i].first), places[i].second,
                               true);
    }
    fProgram.text().append(end, from, false);
}

void Lowering::lowerHeader(const Function& shader, LoweredShader& lowered)
{
    krShadingDag::ShadingNodeSpec& spec = *lowered.spec;
    spec.setName(krString::CString(nameText(shader.name)));
    for (const Symbol* argument = shader.arguments; argument; argument = argument->next)
    {
        // A value that programs have anyway is not declared by them again, whatever its header says.
        const bool isProvided = std::any_of(kProvidedValues.begin(), kProvidedValues.end(),
                                            [&](const auto& v) { return v.name == nameText(argument->name); });
        const krShadingDag::CompFreqRange range = isProvided ? krShadingDag::kFullRange : argument->frequencies;
        const krString::CString name{std::string_view(nameOf(*argument))};
        if (argument->kind == SymbolKind::Input)
            spec.addInput(dataType(argument->type), name, range);
        else
            spec.addOutput(dataType(argument->type), name, range);
    }
    spec.setFunctionType(krShadingDag::FunctionType(shader.kind == FunctionKind::Light ? "light" : "material"));
}

LoweredShader Lowering::lowerMaterial(const Function& material, const std::unordered_set<std::string>& called,
                                      const std::unordered_set<std::string>& hiding)
{
    LoweredShader lowered;
    lowered.spec = std::make_unique<krShadingDag::ShadingNodeSpec>(krShadingDag::kDefinition);
    for (const Symbol* argument = material.arguments; argument; argument = argument->next)
    {
        if (argument->kind != SymbolKind::Input || isProvidedName(nameText(argument->name)))
            continue;
        nameVariable(*argument, called);
        fProgram.names().take(nameOf(*argument));
    }
    lowerHeader(material, lowered);
    nameLocals(material, hiding);
    fReturnText = fProgram.target().language == TargetLanguage::Cg ? "return outRGBA;"
                                                                   : "{ gl_FragColor = outRGBA; return; }";
    fOrigins = &lowered.origins;
    StatementCompound& body = addCompound(lowered.spec->body(), krShadingDag::StatementType::Block, "",
                                          material.body->begin);
    lowerStatements(material.body->body, body);
    lowered.spec->updateIlluminanceLoopFlag();
    fOrigins = nullptr;
    return lowered;
}

} // namespace krFrontend
