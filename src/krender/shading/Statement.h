#pragma once
#include <krender/Export.h>
#include <krender/platform/String.h>
#include <krender/shading/StatementCompound.h>
#include <krender/shading/Token.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace krShadingDag
{

/// One statement of a function body. Statements are not interpreted: apart from their type they are text, to be printed.
///
/// A tree may have any depth: it is copied, searched, printed and destroyed without recursion. Nothing here throws unless
/// memory runs out.
class KRENDER_EXPORT Statement
{
public:
    /// A cleared statement, see clear().
    Statement();
    Statement(const Statement&) = delete;
    Statement& operator=(const Statement&) = delete;
    ~Statement();

    [[nodiscard]] StatementType type() const noexcept { return fType; }
    [[nodiscard]] bool isCompound() const noexcept { return fType > StatementType::Literal; }
    /// The statements that a compound one holds; empty for all others.
    [[nodiscard]] const StatementCompound& children() const noexcept { return fChildren; }
    [[nodiscard]] StatementCompound& children() noexcept { return fChildren; }
    /// The list that holds this statement, or null.
    [[nodiscard]] StatementCompound* parent() const noexcept { return fParent; }
    [[nodiscard]] bool hasParent() const noexcept { return fParent != nullptr; }
    [[nodiscard]] const krString::CString& text() const noexcept { return fText; }
    /// Whether the text is the whole statement, as in generated lines and in what the parser has read. Printing ignores it.
    [[nodiscard]] bool isLiteral() const noexcept { return fIsLiteral; }
    /// The tokens set by setTokens() or setSourceText(), whichever was last; none after setText(). The reference is valid
    /// until text or tokens are set.
    [[nodiscard]] const std::vector<Token>& tokens() const;
    /// The statement as source text, without a line break at its end.
    [[nodiscard]] krString::CString toString(const krString::CString& indent, const krString::CString& step) const;

    /// Text and tokens stay as they are.
    void setType(StatementType type) noexcept { fType = type; }
    void setParent(StatementCompound* parent) noexcept { fParent = parent; }
    /// Sets the text, and leaves the statement without tokens.
    void setText(krString::CString text, bool isLiteral);
    /// Keeps a piece of source verbatim and gives the statement its tokens, without comments. If the type is If at the time
    /// of the call, these are the condition's: all but the first two and the last. For any other type they are all but the
    /// ";" at the end; deliberately, the first one is there twice, and a lone ";" gives none. A token that is cut off by
    /// the end of the text is left out.
    /// @param location  where the text begins in its source; the tokens' lines and columns count from there
    /// @param position  the byte index of that place
    void setSourceText(krString::CString text, const FileLocation& location, std::uint64_t position);
    /// Gives the statement tokens, which it has until its text is set.
    void setTokens(std::vector<Token> tokens) noexcept;
    /// Destroys the children and makes this an invalid statement with the text "!!!INVALID!!!\n" and without tokens or
    /// parent. A list that holds the statement keeps it.
    void clear();
    /// Makes this a deep copy of another statement, but without a parent. The other may be below or above this one in the
    /// same tree; if it is this one, nothing changes.
    void cloneFrom(const Statement& other);

private:
    friend class StatementCompound;

    /// Which tokens of a source text are the statement's, and where the text began.
    struct Origin
    {
        bool isCondition;
        FileLocation location;
        std::uint64_t position;
    };

    void copyAllButChildren(const Statement& other);

    StatementType fType = StatementType::Invalid;
    bool fIsLiteral = false;
    StatementCompound fChildren;
    StatementCompound* fParent = nullptr;
    krString::CString fText;
    // Few source statements are asked for their tokens, so these are made on demand; until then there is an origin.
    mutable std::optional<Origin> fOrigin;
    mutable std::vector<Token> fTokens;
};

/// Indents a block of text anew. Each line loses the blanks and tabs at its start, though no more of them than the first
/// line has, and gets the prefix before its first other character. Deliberate: blanks that remain come before the prefix,
/// and blank lines get no prefix. A text of nothing but blanks and tabs gives an empty text.
[[nodiscard]] KRENDER_EXPORT krString::CString indent(const krString::CString& text, const krString::CString& prefix);

} // namespace krShadingDag
