#pragma once
#include <krender/shading/Statement.h>
#include <krender/shading/StatementCompound.h>

#include <string>
#include <string_view>
#include <vector>

namespace krShadingDag
{

/// Prints statement trees of any depth to the end of one buffer. A subclass may replace how the statements of a list come
/// out, which lets a compiler splice code into a program without copying the trees.
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
    /// What is printed behind the last statement of a list; subclasses number their own from kFirstOwnEnd.
    enum End : unsigned
    {
        kNothing,
        kClosingBrace,
        kFirstOwnEnd,
    };

    /// A statement within a list, its line break included. What a compound one holds is not printed at once, but left to
    /// enter().
    virtual void printListed(const Statement& statement);
    /// Whether the statement is compound and of a known kind: then everything up to its first child has been printed.
    [[nodiscard]] bool openCompound(const Statement& statement);
    /// Has the statements of a list printed next, and then its end.
    void enter(const StatementCompound& list, unsigned end) { fPath.push_back({&list, 0, end}); }
    virtual void printEnd(unsigned end);

    /// A line of generated code within a list, its line break included.
    void printLiteral(std::string_view text);
    /// The opening line of a block; what is printed up to closeBlock() stands one step deeper.
    void openBlock();
    /// The closing brace and its line break.
    void closeBlock();

    [[nodiscard]] const std::string& indent() const noexcept { return fIndent; }

private:
    struct Place
    {
        const StatementCompound* list;
        unsigned next;
        unsigned end;
    };

    void printPath();
    void openLevel(std::string_view brace);

    std::string& fOut;
    std::string fIndent;
    std::string_view fStep;
    std::vector<Place> fPath; ///< from the root to the list being printed
};

/// Appends what indent() returns for the text.
void appendIndented(std::string& out, std::string_view text, std::string_view prefix);

} // namespace krShadingDag
