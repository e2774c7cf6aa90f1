#include "krender/shading/private/StatementPrinter.h"

#include <algorithm>

namespace krShadingDag
{

StatementPrinter::StatementPrinter(std::string& out, std::string_view indent, std::string_view step)
    : fOut(out), fIndent(indent), fStep(step)
{
}

void StatementPrinter::print(const StatementCompound& list)
{
    for (unsigned i = 0; i < list.size(); ++i)
        printListed(*list.statement(i));
}

void StatementPrinter::print(const Statement& statement)
{
    if (!statement.isCompound())
    {
        appendIndented(fOut, statement.text().view(), fIndent);
        return;
    }
    if (!openCompound(statement))
    {
        fOut.append("UNRECOGNIZED COMPOUND TYPE!!!");
        return;
    }
    print(statement.children());
    closeBlock();
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
        appendIndented(fOut, statement.text().view(), fIndent);
        fOut += '\n';
        openBlock();
        return true;
    case StatementType::Block:
        openBlock();
        return true;
    case StatementType::Else:
        // No line break after this brace: hosts compare and cache programs by their text, which always had it so.
        fOut.append(fIndent).append("else\n");
        openLevel("{");
        return true;
    case StatementType::Invalid:
    case StatementType::Simple:
    case StatementType::Opaque:
    case StatementType::Literal:
        break;
    }
    return false; // a value outside the enumeration, which numbering keeps room for
}

void StatementPrinter::printListed(const Statement& statement)
{
    print(statement);
    fOut += '\n';
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
    fOut.append(fIndent).append("}");
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
    if (base == text.size())
        return;

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
