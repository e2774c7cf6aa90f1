#include <krender/shading/StatementCompound.h>

#include "krender/shading/private/StatementPrinter.h"
#include <krender/platform/String.h>
#include <krender/shading/Statement.h>

#include <algorithm>
#include <cstddef>
#include <string>
#include <utility>

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

Statement* StatementCompound::findStatement(StatementType type) const
{
    struct Place
    {
        const StatementCompound* list;
        unsigned next;
    };
    std::vector<Place> path{{this, 0}};
    while (!path.empty())
    {
        Place& place = path.back();
        if (place.next == place.list->size())
        {
            path.pop_back();
            continue;
        }
        Statement* const candidate = place.list->statement(place.next++);
        if (candidate->type() == type)
            return candidate;
        if (candidate->isCompound() && !candidate->children().empty())
            path.push_back({&candidate->children(), 0});
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
    StatementCompound copies; // complete before this list changes, which other may be a part of
    copies.appendCopies(other);
    const std::size_t first = fStatements.size();
    takeAll(copies);
    return first < fStatements.size() ? fStatements[first].get() : nullptr;
}

void StatementCompound::cloneFrom(const StatementCompound& other)
{
    if (this == &other)
        return;
    StatementCompound copies;
    copies.appendCopies(other);
    clear(); // destroys other when it stands below
    takeAll(copies);
}

/// Appends deep copies of the statements of a list outside this tree.
void StatementCompound::appendCopies(const StatementCompound& source)
{
    struct Pair
    {
        const StatementCompound* from;
        StatementCompound* to;
    };
    std::vector<Pair> pending{{&source, this}};
    while (!pending.empty())
    {
        const auto [from, to] = pending.back();
        pending.pop_back();
        to->fStatements.reserve(to->size() + from->size());
        for (const std::unique_ptr<Statement>& original : from->fStatements)
        {
            Statement* const copy = to->appendStatement(nullptr);
            copy->copyAllButChildren(*original);
            if (!original->children().empty())
                pending.push_back({&original->children(), &copy->children()});
        }
    }
}

/// Moves the statements of another list to the end of this one.
void StatementCompound::takeAll(StatementCompound& from)
{
    fStatements.reserve(fStatements.size() + from.fStatements.size());
    for (std::unique_ptr<Statement>& statement : from.fStatements)
    {
        statement->setParent(this);
        fStatements.push_back(std::move(statement));
    }
    from.fStatements.clear();
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
    // Trees may be deep, so this must not recurse, and it must not fail, so it cannot allocate a stack. The way back up is
    // kept in the tree: on the way down into a statement's children, the statement is taken out of its list and given that
    // list to keep, and the slot that it leaves in the list holds the statement above.
    using List = std::vector<std::unique_ptr<Statement>>;
    List list = std::move(fStatements);
    std::unique_ptr<Statement> above;
    while (above || !list.empty())
    {
        if (list.empty())
        {
            const std::unique_ptr<Statement> done = std::move(above);
            list = std::move(done->fChildren.fStatements);
            above = std::move(list.back());
            list.pop_back();
        }
        else if (list.back()->fChildren.empty())
            list.pop_back();
        else
        {
            List below = std::move(list.back()->fChildren.fStatements);
            std::swap(above, list.back());
            above->fChildren.fStatements = std::move(list);
            list = std::move(below);
        }
    }
    fStatements = std::move(list);
}

} // namespace krShadingDag
