#include "krender/frontend/private/Lowering.h"

#include "krender/frontend/private/ExprWalk.h"
#include "krender/frontend/private/Lexer.h"
#include "krender/frontend/private/ModuleContents.h"
#include "krender/frontend/private/Syntax.h"
#include "krender/frontend/private/TextEdits.h"
#include "krender/frontend/private/Type.h"

#include <krender/frontend/SourceSet.h>
#include <krender/platform/String.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace krFrontend
{
namespace
{

using krShadingDag::StatementType;

bool isSimple(const Stmt& statement) noexcept
{
    return statement.kind == StmtKind::Expression || statement.kind == StmtKind::Break ||
           statement.kind == StmtKind::Continue || statement.kind == StmtKind::Discard;
}

bool beginsWithType(std::string_view text) noexcept
{
    return typeOfWord(text.substr(0, text.find_first_of(" \t\r\n(/"))).isKnown();
}

} // namespace

void Lowering::addText(StatementCompound& list, StatementType type, const std::string& text, Offset origin)
{
    Statement* statement = list.appendStatement(nullptr);
    statement->setType(type);
    statement->setText(krString::CString(std::string_view(text)), true);
    fOrigins->emplace(statement, TextOrigin{&fModule.sources, origin});
}

krShadingDag::StatementCompound& Lowering::addCompound(StatementCompound& list, StatementType type,
                                                       const std::string& text, Offset origin)
{
    addText(list, type, text, origin);
    return list.statement(list.size() - 1)->children();
}

void Lowering::lowerStatements(const Stmt* first, StatementCompound& list)
{
    for (const Stmt* statement = first; statement; statement = statement->next)
        lowerStatement(*statement, list);
}

void Lowering::lowerBody(const Stmt* body, StatementCompound& list)
{
    if (body->kind == StmtKind::Block)
        lowerStatements(body->body, list);
    else
        lowerStatement(*body, list);
}

void Lowering::lowerStatement(const Stmt& statement, StatementCompound& list)
{
    switch (statement.kind)
    {
    case StmtKind::Block:
        lowerStatements(statement.body, addCompound(list, StatementType::Block, "", statement.begin));
        break;
    case StmtKind::Expression:
    {
        const std::string text = textOf(statement, statement.range());
        const bool seemsDeclared = isCg() && beginsWithType(text); // a type's name begins a declaration there
        addText(list, StatementType::Opaque,
                seemsDeclared ? concat({"(", text.substr(0, text.size() - 1), ");"}) : text, statement.begin);
        break;
    }
    case StmtKind::Declaration:
    case StmtKind::Break:
    case StmtKind::Continue:
    case StmtKind::Discard:
        addText(list, StatementType::Opaque, textOf(statement, statement.range()), statement.begin);
        break;
    case StmtKind::If:
        lowerIf(statement, list);
        break;
    case StmtKind::For:
    case StmtKind::While:
    case StmtKind::DoWhile:
        lowerLoop(statement, list);
        break;
    case StmtKind::Return:
        lowerReturn(statement, list);
        break;
    case StmtKind::Illuminance:
        lowerStatements(statement.body->body, addCompound(list, StatementType::Illuminance, "", statement.begin));
        break;
    case StmtKind::Empty:
        break;
    }
}

void Lowering::lowerIf(const Stmt& first, StatementCompound& list)
{
    const bool isLong = first.otherwise && first.otherwise->isChained && first.otherwise->otherwise;
    const Stmt* part = &first;
    for (; part && (part == &first || (isLong && part->isChained)); part = part->otherwise)
    {
        const std::string head = textOf(*part, {part->begin, part->mark});
        lowerBody(part->body,
                  addCompound(list, StatementType::If, part == &first ? head : "else " + head, part->begin));
    }
    if (part)
        lowerBody(part, addCompound(list, StatementType::Else, "", part->begin));
}

void Lowering::lowerLoop(const Stmt& statement, StatementCompound& list)
{
    // What stands on one line in the source stays there; a body of more is a block behind the loop's head.
    const Stmt& body = *statement.body;
    if (statement.kind == StmtKind::DoWhile)
    {
        const SourceRange tail{statement.mark, statement.end};
        if (isSimple(body))
            addText(list, StatementType::Opaque, textOf(body, {statement.begin, body.end}), statement.begin);
        else
        {
            addText(list, StatementType::Literal, "do", statement.begin);
            lowerBody(&body, addCompound(list, StatementType::Block, "", body.begin));
        }
        addText(list, StatementType::Opaque, textOf(statement, tail), statement.mark);
        return;
    }
    if (isSimple(body))
    {
        TextEdits edits;
        editSimple(statement, edits);
        editSimple(body, edits);
        addText(list, StatementType::Opaque, edits.apply(fModule.sources, {statement.begin, body.end}),
                statement.begin);
        return;
    }
    addText(list, StatementType::Literal, textOf(statement, {statement.begin, statement.mark}), statement.begin);
    lowerBody(&body, addCompound(list, StatementType::Block, "", body.begin));
}

void Lowering::lowerReturn(const Stmt& statement, StatementCompound& list)
{
    addText(list, StatementType::Opaque, statement.expr ? textOf(statement, statement.range()) : fReturnText,
            statement.begin);
}

std::string Lowering::textOf(const Stmt& statement, SourceRange range)
{
    TextEdits edits;
    editSimple(statement, edits);
    std::string text = edits.apply(fModule.sources, range);
    return text;
}

void Lowering::editSimple(const Stmt& statement, TextEdits& edits)
{
    if (statement.kind == StmtKind::Declaration)
        editDeclaration(statement, edits);
    if (statement.init)
        editSimple(*statement.init, edits);
    if (statement.expr)
        edit(statement.expr, edits);
    if (statement.step)
        edit(statement.step, edits);
}

bool Lowering::keepsConst(const Stmt& statement)
{
    // The targets want values that they can work out themselves; whether a call is one of these they see differently.
    // "%" becomes a call where the target has none, and a variable that lost the word is none of these values either.
    bool keeps = true;
    const auto consider = [&](const Expr* e)
    { keeps &= e->kind == ExprKind::Variable ? !fUnconst.contains(e->symbol) : isCg() || e->op != TokenKind::Percent; };
    for (const Symbol* variable = statement.variables; variable; variable = variable->next)
    {
        keeps &= variable->value != nullptr;
        if (keeps)
            fWalk(variable->initializer, consider);
    }
    for (const Symbol* variable = statement.variables; variable && !keeps; variable = variable->next)
        fUnconst.insert(variable);
    return keeps;
}

void Lowering::editDeclaration(const Stmt& statement, TextEdits& edits)
{
    const Symbol& first = *statement.variables;
    const std::string word = typeName({first.type.base, first.type.size, 0});
    const std::string_view head = fModule.sources.text({statement.begin, first.range.begin});
    if (first.isConst && !keepsConst(statement))
    {
        const std::size_t type = head.find(word, 5);
        edits.replace({statement.begin, statement.begin + static_cast<Offset>(type)}, "");
    }
    if (const std::string text = typeText(first.type); text != word)
    {
        const Offset at = statement.begin + static_cast<Offset>(head.find(word, first.isConst ? 5 : 0));
        edits.replace({at, at + static_cast<Offset>(word.size())}, text);
    }
    for (const Symbol* variable = statement.variables; variable; variable = variable->next)
    {
        if (const std::string& name = nameOf(*variable); name != nameText(variable->name))
            edits.replace(variable->range, name);
        if (variable->arraySize && variable->arraySize->kind != ExprKind::Number)
            edits.replace(variable->arraySize->range(), std::to_string(variable->type.arrayLength));
        if (variable->initializer)
            edit(variable->initializer, edits);
    }
}

} // namespace krFrontend
