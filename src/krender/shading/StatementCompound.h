#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace krShadingDag
{

class Statement;

/// The kinds of statements; those above 3 are compound: they hold others. 6 is kept free.
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

/// An ordered list of statements. It owns them: removing one destroys it with all that it holds.
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

    /// The index of a statement of this list; found is false, and 0 comes back, when it is not one.
    [[nodiscard]] unsigned findIndex(const Statement* s, bool& found) const noexcept;
    /// The first statement of a type, null when there is none. Compound statements are searched depth first, each itself
    /// before its children.
    [[nodiscard]] Statement* findStatement(StatementType type) const;
    /// The statements as source text, each followed by a line break.
    /// @param indent  put before every line
    /// @param step    added to the indent for each level below
    [[nodiscard]] krString::CString toString(const krString::CString& indent, const krString::CString& step) const;

    /// Makes a cleared statement before index i, 0 to size(); not checked.
    Statement* insertNewStatementBefore(unsigned i);
    /// Makes a cleared statement directly after or before s; null when s is not here.
    Statement* insertNewStatement(const Statement* s, bool after);
    /// Appends s and adopts it; a cleared statement when s is null.
    Statement* appendStatement(Statement* s);
    /// Appends a line of generated code.
    Statement* appendLiteralStatement(const krString::CString& text);
    /// Appends deep copies of another list's statements. The other may be this list, or below or above it in the same tree.
    /// @return  the first one added, or null when there is none
    Statement* appendStatementsFrom(const StatementCompound& other);
    /// Makes this a deep copy of another list, which may be below or above this one in the same tree; if it is this one,
    /// nothing changes.
    void cloneFrom(const StatementCompound& other);
    /// Destroys the statements first to last, both included; false, and nothing happens, when there is no such range.
    bool removeStatements(unsigned first, unsigned last);
    bool removeStatement(unsigned i);
    bool removeStatement(const Statement* s);
    /// Destroys every statement; the storage of the list is kept.
    void clear() noexcept;

private:
    friend class Statement;

    void appendCopies(const StatementCompound& source);
    void takeAll(StatementCompound& from);

    std::vector<std::unique_ptr<Statement>> fStatements;
};

} // namespace krShadingDag
