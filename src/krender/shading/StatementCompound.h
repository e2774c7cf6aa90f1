#pragma once
#include <krender/platform/String.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace krShadingDag
{

class Statement;

/// The kinds of statements; those above 3 hold children. 6 is kept free.
enum class StatementType : std::uint32_t
{
    Invalid = 0,
    Simple = 1,
    Opaque = 2,  ///< an ordinary statement of a source, up to its ";"
    Literal = 3, ///< a line of generated code
    Block = 4,
    Illuminance = 5,
    If = 7, ///< the text is the header line
    Else = 8,
};

/// An ordered list of statements. It owns them: removing one destroys it with all below it.
class KRENDER_EXPORT StatementCompound
{
public:
    StatementCompound() noexcept;
    StatementCompound(const StatementCompound&) = delete;
    StatementCompound& operator=(const StatementCompound&) = delete;
    ~StatementCompound();

    [[nodiscard]] unsigned size() const noexcept { return static_cast<unsigned>(fStatements.size()); }
    [[nodiscard]] bool empty() const noexcept { return fStatements.empty(); }
    /// The i-th statement, owned by the list; not checked.
    [[nodiscard]] Statement* statement(unsigned i) const noexcept { return fStatements[i].get(); }

    /// The place of a statement; found tells whether it is here, and 0 comes back when it is not.
    [[nodiscard]] unsigned findIndex(const Statement* s, bool& found) const noexcept;
    /// The first statement of a type in the whole subtree, parents before children; null when there is none.
    [[nodiscard]] Statement* findStatement(StatementType type) const noexcept;
    /// The statements as source text, each followed by a line break.
    /// @param indent  put before every line
    /// @param step    added to the indent for each level below
    [[nodiscard]] krString::CString toString(const krString::CString& indent, const krString::CString& step) const;

    /// Makes an empty statement before place i, 0 to size(); not checked.
    Statement* insertNewStatementBefore(unsigned i);
    /// Makes an empty statement directly after or before s; null when s is not here.
    Statement* insertNewStatement(const Statement* s, bool after);
    /// Appends s and adopts it, or an empty statement when s is null.
    Statement* appendStatement(Statement* s);
    /// Appends a line of generated code.
    Statement* appendLiteralStatement(const krString::CString& text);
    /// Appends deep copies of another list's statements.
    /// @return  the first one added, or null when there is none
    Statement* appendStatementsFrom(const StatementCompound& other);
    /// Becomes a deep copy of another list.
    void cloneFrom(const StatementCompound& other);
    /// Destroys the statements first to last, both included; false, and nothing happens, when there is no such range.
    bool removeStatements(unsigned first, unsigned last);
    bool removeStatement(unsigned i);
    bool removeStatement(const Statement* s);
    void clear() noexcept;

private:
    std::vector<std::unique_ptr<Statement>> fStatements;
};

} // namespace krShadingDag
