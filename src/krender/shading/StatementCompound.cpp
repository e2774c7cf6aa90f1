#include <krender/shading/StatementCompound.h>

#include "krender/shading/private/StatementPrinter.h"

#include <algorithm>
#include <iterator>

namespace krShadingDag
{

StatementCompound::StatementCompound() noexcept = default;

StatementCompound::~StatementCompound() { clear(); }

unsigned StatementCompound::findIndex(const Statement* s, bool& found) const noexcept
{
    const auto place = std::find_if(fStatements.begin(), fStatements.end(),
                                    [s](const std::unique_ptr<Statement>& held) { return held.get() == s; });
    found = place != fStatements.end();
    return found ? static_cast<unsigned>(place - fStatements.begin()) : 0;
}

Statement* StatementCompound::findStatement(StatementType type) const noexcept
{
    for (const std::unique_ptr<Statement>& child : fStatements)
    {
        if (child->type() == type)
            return child.get();
        if (!child->isCompound())
            continue;
        if (Statement* below = child->children().findStatement(type))
            return below;
    }
    return nullptr;
}

krString::CString StatementCompound::toString(const krString::CString& indent, const krString::CString& step) const
{
    std::string text;
    StatementPrinter(text, indent.view(), step.view()).print(*this);
    return krString::CString(std::move(text));
}

Statement* StatementCompound::insertNewStatementBefore(unsigned i)
{
    const auto place = fStatements.begin() + static_cast<std::ptrdiff_t>(i);
    Statement* statement = fStatements.insert(place, std::make_unique<Statement>())->get();
    statement->setParent(this);
    return statement;
}

Statement* StatementCompound::insertNewStatement(const Statement* s, bool after)
{
    bool found = false;
    const unsigned i = findIndex(s, found);
    return found ? insertNewStatementBefore(after ? i + 1 : i) : nullptr;
}

Statement* StatementCompound::appendStatement(Statement* s)
{
    std::unique_ptr<Statement> adopted(s);
    if (!adopted)
        adopted = std::make_unique<Statement>();
    adopted->setParent(this);
    return fStatements.emplace_back(std::move(adopted)).get();
}

Statement* StatementCompound::appendLiteralStatement(const krString::CString& text)
{
    Statement* statement = appendStatement(nullptr);
    statement->setType(StatementType::Literal);
    statement->setText(text, true);
    return statement;
}

Statement* StatementCompound::appendStatementsFrom(const StatementCompound& other)
{
    const std::size_t first = fStatements.size();
    const std::size_t added = other.fStatements.size(); // fixed before copying: the other list may be this one
    fStatements.reserve(first + added);
    for (std::size_t i = 0; i < added; ++i)
        appendStatement(nullptr)->cloneFrom(*other.fStatements[i]);
    for (std::size_t i = first; i < fStatements.size(); ++i)
        fStatements[i]->setParent(this);
    return added > 0 ? fStatements[first].get() : nullptr;
}

void StatementCompound::cloneFrom(const StatementCompound& other)
{
    if (this == &other)
        return;
    clear();
    appendStatementsFrom(other);
}

bool StatementCompound::removeStatements(unsigned first, unsigned last)
{
    if (last >= fStatements.size() || first > last)
        return false;
    fStatements.erase(fStatements.begin() + static_cast<std::ptrdiff_t>(first),
                      fStatements.begin() + static_cast<std::ptrdiff_t>(last) + 1);
    return true;
}

bool StatementCompound::removeStatement(unsigned i) { return removeStatements(i, i); }

bool StatementCompound::removeStatement(const Statement* s)
{
    bool found = false;
    const unsigned i = findIndex(s, found);
    return found && removeStatement(i);
}

void StatementCompound::clear() noexcept
{
    // Trees are taken apart level by level, so that deep ones do not end in deep recursion.
    std::vector<std::unique_ptr<Statement>> pending;
    const auto takeChildren = [&pending](Statement& statement)
    {
        auto& below = statement.children().fStatements;
        pending.insert(pending.end(), std::make_move_iterator(below.begin()), std::make_move_iterator(below.end()));
        below.clear();
    };
    for (const std::unique_ptr<Statement>& statement : fStatements)
        takeChildren(*statement);
    fStatements.clear();
    while (!pending.empty())
    {
        const std::unique_ptr<Statement> statement = std::move(pending.back());
        pending.pop_back();
        takeChildren(*statement);
    }
}

} // namespace krShadingDag
