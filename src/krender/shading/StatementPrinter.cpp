#include "krender/shading/private/StatementPrinter.h"

#include <krender/platform/String.h>
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <algorithm>
#include <cstddef>

namespace krShadingDag
{

StatementPrinter::StatementPrinter(std::string& out, std::string_view indent, std::string_view step)
    : fOut(out), fIndent(indent), fStep(step)
{
}

void StatementPrinter::print(const StatementCompound& list)
{
    enter(list, kNothing);
    printPath();
}

void StatementPrinter::print(const Statement& statement)
{
    printListed(statement);
    printPath();
    fOut.pop_back();
}

void StatementPrinter::printPath()
{
    while (!fPath.empty())
    {
        Place& place = fPath.back();
        if (place.next < place.list->size())
        {
            printListed(*place.list->statement(place.next++));
            continue;
        }
        const unsigned end = place.end;
        fPath.pop_back();
        printEnd(end);
    }
}

void StatementPrinter::printListed(const Statement& statement)
{
    if (!statement.isCompound())
        printLiteral(statement.text().view());
    else if (openCompound(statement))
        enter(statement.children(), kClosingBrace);
    else
        fOut.append("UNRECOGNIZED COMPOUND TYPE!!!\n");
}

bool StatementPrinter::openCompound(const Statement& statement)
{
    switch (statement.type())
    {
    case StatementType::Illuminance:
        fOut.append(fIndent).append("illuminance\n");
        openBlock();
        return true;
    case StatementType::If:
        printLiteral(statement.text().view());
        openBlock();
        return true;
    case StatementType::Block:
        openBlock();
        return true;
    case StatementType::Else:
        // Deliberate: no line break after this brace, so the first line of the block follows it.
        fOut.append(fIndent).append("else\n");
        openLevel("{");
        return true;
    case StatementType::Invalid:
    case StatementType::Simple:
    case StatementType::Opaque:
    case StatementType::Literal:
        break;
    }
    return false;
}

void StatementPrinter::printEnd(unsigned end)
{
    if (end == kClosingBrace)
        closeBlock();
}

void StatementPrinter::printLiteral(std::string_view text)
{
    appendIndented(fOut, text, fIndent);
    fOut += '\n';
}

void StatementPrinter::openBlock() { openLevel("{\n"); }

void StatementPrinter::closeBlock()
{
    fIndent.resize(fIndent.size() - fStep.size());
    fOut.append(fIndent).append("}\n");
}

void StatementPrinter::openLevel(std::string_view brace)
{
    fOut.append(fIndent).append(brace);
    fIndent.append(fStep);
}

void appendIndented(std::string& out, std::string_view text, std::string_view prefix)
{
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    std::size_t base = 0;
    while (base < text.size() && isBlank(text[base]))
        ++base;

    std::size_t i = base;
    std::size_t blanks = 0; // leading ones of this line; the first line's were skipped above
    while (i < text.size())
    {
        // At a line's start.
        if (text[i] == '\n')
        {
            out += '\n';
            blanks = 0;
            ++i;
            continue;
        }
        if (isBlank(text[i]))
        {
            if (++blanks > base)
                out += text[i];
            ++i;
            continue;
        }
        const std::size_t lineEnd = std::min(text.find('\n', i), text.size() - 1);
        out.append(prefix).append(text.substr(i, lineEnd + 1 - i));
        blanks = 0;
        i = lineEnd + 1;
    }
}

} // namespace krShadingDag
