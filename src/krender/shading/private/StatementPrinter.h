#pragma once
#include <krender/shading/Statement.h>

#include <string>
#include <string_view>

namespace krShadingDag
{

/// Prints statement trees to the end of one buffer. A subclass may replace how single statements of a list come out,
/// which lets a compiler splice code into a program without copying the trees.
class StatementPrinter
{
public:
    /// @param out   appended to; borrowed for the printer's life
    /// @param step  what each level adds to the indent; borrowed likewise
    StatementPrinter(std::string& out, std::string_view indent, std::string_view step);
    StatementPrinter(const StatementPrinter&) = delete;
    StatementPrinter& operator=(const StatementPrinter&) = delete;
    virtual ~StatementPrinter() = default;

    /// A list: each statement followed by a line break.
    void print(const StatementCompound& list);
    /// One statement, without a line break at its end.
    void print(const Statement& statement);

protected:
    /// A statement within a list, its line break included.
    virtual void printListed(const Statement& statement);

    /// A line of generated code within a list, its line break included.
    void printLiteral(std::string_view text);
    /// The opening line of a block; what is printed up to closeBlock() stands one step deeper.
    void openBlock();
    /// The closing brace, without a line break.
    void closeBlock();

    [[nodiscard]] std::string& out() noexcept { return fOut; }

private:
    [[nodiscard]] bool openCompound(const Statement& statement);
    void openLevel(std::string_view brace);

    std::string& fOut;
    std::string fIndent;
    std::string_view fStep;
};

/// Appends the text indented afresh, as indent() returns it.
void appendIndented(std::string& out, std::string_view text, std::string_view prefix);

} // namespace krShadingDag
